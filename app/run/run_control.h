// The spine of a run: the entry point copies the arguments into a table, the
// option loop builds the run configuration from it, Dispatch runs one
// conversion, and every way of ending becomes the exit code of the process.
//
// The command line:
//   qvConvApp <input> [-package<path>] [-check<path>] [-unpackage<path>]
//             [-td<region>] [-param<path>] [-log<path>]
// An option's value stands directly behind its name ("-packageout.zip",
// "-package\"out.zip\""); the next argument is never taken as a value.  An
// empty argument ends the command line.
//
// With -log<path> the run appends an account of itself to <path>
// (workspace/run_log.h), its exit code last; nothing else changes.
//
// Only Dispatch and RunGuarded end the process; nothing else calls exit.
#ifndef QV_APP_RUN_RUN_CONTROL_H_
#define QV_APP_RUN_RUN_CONTROL_H_

#include <array>
#include <string>
#include <string_view>

#include "app/qv_conv_run_config.h"

namespace quorvane::qvconv::converter {

// The argument table: a fixed number of slots, all empty at the start.
inline constexpr int kArgumentSlots = 99;
struct ArgumentTable {
  std::array<std::u16string, kArgumentSlots> slots;
  // More arguments were given than there are slots; the command line is
  // refused with -1 unless an empty argument ends it within the table.
  bool overflow = false;
};

// The entry point: copies each argument (the program's name included) into
// the table and calls RunGuarded.  Never returns.
[[noreturn]] void Main(int argc, char** argv);

// Calls ParseAndRun and ends the process: 0 on return, the code of a
// QvConvException pointer, -999 for anything else.
[[noreturn]] void RunGuarded(const ArgumentTable& table);

// Opens the log of -log, then the option loop, the configuration, Dispatch.
void ParseAndRun(const ArgumentTable& table);

// The value of the first -log argument of the command line (up to its end),
// empty when there is none or it has no value.  The log is opened before
// the option loop, so that a bad command line is told too; the loop refuses
// a second -log and an empty one with -1, as for the other options.
std::u16string LogPathOf(const ArgumentTable& table);

// The option loop and the configuration of ParseAndRun, without the dispatch:
// throws a QvConvException pointer with -1 for a bad command line.
QvConvRunConfig ParseCommandLine(const ArgumentTable& table);

// The value of an option: the rest of `argument` behind `option`, with one
// leading and one trailing quote (either kind) dropped and blanks trimmed at
// both ends.  Throws std::out_of_range when nothing is left before the
// trailing quote test, i.e. when the option has no value.
std::u16string OptionValue(std::u16string_view option, const std::u16string& argument);

// Runs the conversion that the pair of input and output kinds selects, after
// opening an archive for -unpackage.  Ends the process itself on a failure:
// the code of a QvConvException pointer, -999 for anything else.
void Dispatch(QvConvRunConfig config);

}  // namespace quorvane::qvconv::converter

#endif  // QV_APP_RUN_RUN_CONTROL_H_
