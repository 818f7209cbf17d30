// The run's own account, kept only when the command line names a file with
// -log<path>: plain UTF-8 lines appended to that file, one line per event,
// each written when it happens (a killed run keeps the lines of what it did).
//
// The log never changes a run: a log that cannot be opened or written is let
// go without a word, no call throws, and without a log every call is one test
// of a flag.
//
// Every line begins with "[<process id>] ", so that runs sharing one log can
// be told apart.  The lines, in the order of a run:
//   start 2024-01-31 23:59:59: qvConvApp "<argument>" ...
//   work in "<folder>"              the work folder of the run
//   check "<path>"                  the checker walks a file
//   read "<path>"                   a reader takes a file
//   write "<path>"                  a file of the result is written
//   copy "<from>" to "<to>"         a content file
//   deliver "<from>" to "<to>"      a file (or the package) reaches the destination
//   <what> "<path>" <why>           a loss that the format passes over in silence
//   exit <code>: <what decided it>  the last line
#ifndef QV_WORKSPACE_RUN_LOG_H_
#define QV_WORKSPACE_RUN_LOG_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane::qvconv::converter::run_log {

// Opens the log (appending) and writes the start line: the local time and the
// arguments, the program's name first.  Does nothing if the path is empty.
void Open(const std::u16string& path, const std::vector<std::u16string>& arguments);
bool IsOpen();
// Stops logging (for tests: a process holds one log).
void Close();

// A step of the run on a file: the line "<verb> "<path>"", or
// "<verb> "<from>" to "<to>"".  The last step is what the exit line names
// when the run fails.
void Step(std::string_view verb, std::u16string_view path);
void Step(std::string_view verb, std::u16string_view from, std::u16string_view to);
// A step that writes no line of its own (a folder made on the way), but is
// named by the exit line when it fails.
void Attempt(std::string_view verb, std::u16string_view path);

// A loss that the format passes over without a code:
// the line "<what> "<path>" <why>".
void Loss(std::string_view what, std::u16string_view path, std::string_view why);
// The same loss, when `path` is no plain file; looked at only with a log.
void LossIfMissing(std::string_view what, std::u16string_view path, std::string_view why);
// Line `number` of the file of the last step is too long to be read: it
// ends the read of that file.
void LineTooLong(std::size_t number);

// What decides the failure about to be thrown, where the last step does not
// say it: "<text> "<path>"" (no quotes for an empty path) becomes the text
// of the exit line.
void Cause(std::string_view text, std::u16string_view path);
// The run stops early and is about to end with 0, without its output.
void Stopped(std::string_view why);

// The last line: the exit code and what decided it.  `by_failure`: the code
// comes from a failure, not from the end of the run (a code 0 then says that
// a guard stopped the run).
void Finish(std::int32_t code, bool by_failure);

}  // namespace quorvane::qvconv::converter::run_log

#endif  // QV_WORKSPACE_RUN_LOG_H_
