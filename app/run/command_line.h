// The command line of a run and the configuration it gives:
//   qvConvApp <input> [-package<path>] [-check<path>] [-unpackage<path>]
//             [-td<region>] [-param<path>] [-log<path>]
// An option's value stands directly behind its name ("-packageout.zip",
// "-package\"out.zip\""); the next argument is never taken as a value.  An
// empty argument ends the command line.  A bad command line throws a
// QvConvException pointer with -1.
#ifndef QV_APP_RUN_COMMAND_LINE_H_
#define QV_APP_RUN_COMMAND_LINE_H_

#include <array>
#include <string>
#include <string_view>

#include "base/qv_conv_run_config.h"

namespace quorvane::qvconv::converter {

// The argument table: a fixed number of slots, all empty at the start.
inline constexpr int kArgumentSlots = 99;
struct ArgumentTable {
  std::array<std::u16string, kArgumentSlots> slots;
  // More arguments were given than there are slots; the command line is
  // refused with -1 unless an empty argument ends it within the table.
  bool overflow = false;
};

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

// Parses "(x,y,width,height)" (parentheses optional) into the display region
// of `config`.  Empty text changes nothing; a text of other than four fields
// throws -1.
void SetDisplayRegion(const std::u16string& text, QvConvRunConfig* config);

}  // namespace quorvane::qvconv::converter

#endif  // QV_APP_RUN_COMMAND_LINE_H_
