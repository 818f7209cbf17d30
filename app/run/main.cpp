// qvConvApp: converts, checks and opens digital-signage scenarios.  Nothing
// is printed; the exit code is the status.
#include "app/run/run_control.h"

int main(int argc, char** argv) { quorvane::qvconv::converter::Main(argc, argv); }
