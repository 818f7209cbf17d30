// The spine of a run: the entry point copies the arguments into a table, the
// option loop builds the run configuration from it, Dispatch runs one
// conversion, and every way of ending becomes the exit code of the process.
//
// With -log<path> the run appends an account of itself to <path>
// (workspace/run_log.h), its exit code last; nothing else changes.
//
// Only Dispatch and RunGuarded end the process; nothing else calls exit.
#ifndef QV_APP_RUN_RUN_CONTROL_H_
#define QV_APP_RUN_RUN_CONTROL_H_

#include <string>

#include "app/run/command_line.h"
#include "base/qv_conv_run_config.h"

namespace quorvane::qvconv::converter {

// The entry point: copies each argument (the program's name included) into
// the table and calls RunGuarded.  Never returns.
[[noreturn]] void Main(int argc, char** argv);

// Calls ParseAndRun and ends the process: 0 on return, the code of a
// QvConvException pointer, -999 for anything else.
[[noreturn]] void RunGuarded(const ArgumentTable& table);

// Opens the log of -log, then the option loop, the configuration, Dispatch.
void ParseAndRun(const ArgumentTable& table);

// Runs the conversion that the pair of input and output kinds selects, after
// opening an archive for -unpackage.  Ends the process itself on a failure:
// the code of a QvConvException pointer, -999 for anything else.
void Dispatch(QvConvRunConfig config);

}  // namespace quorvane::qvconv::converter

#endif  // QV_APP_RUN_RUN_CONTROL_H_
