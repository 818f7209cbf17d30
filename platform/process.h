// Starting a helper program (the archive tool) and waiting for it.
#ifndef QV_PLATFORM_PROCESS_H_
#define QV_PLATFORM_PROCESS_H_

#include <string>
#include <vector>

namespace quorvane::platform {

struct ProcessResult {
  bool started = false;  // false: the program could not be found or started
  int exit_status = -1;  // its exit status once it has ended (-1: killed by a signal)
};

// Runs argv[0] (a name without a folder is looked for as Windows looks for
// it: beside this program, in the current folder, then on PATH) with the given
// argument list (no shell), the caller's environment and current folder, its
// standard streams on /dev/null.  Waits without a time limit.  The program
// ends with its caller: if the caller is killed, so is the program, so that
// no run leaves a helper behind that goes on writing.
ProcessResult RunProcess(const std::vector<std::u16string>& argv);

// The same, with what the program writes on its standard output read into
// `output` (replacing what it held) while it runs.
ProcessResult RunProcess(const std::vector<std::u16string>& argv, std::string& output);

// The id of this process.
int CurrentProcessId();

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_PROCESS_H_
