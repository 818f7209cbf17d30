#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "app/run/run_control.h"
#include "base/qv_conv_exception.h"
#include "base/qv_conv_run_config.h"
#include "tests/support/test_support.h"

namespace {

using namespace quorvane::qvconv::converter;

ArgumentTable Table(const std::vector<const char*>& arguments) {
  ArgumentTable table;
  table.slots[0] = u"qvConvApp";
  int i = 1;
  for (const char* argument : arguments) table.slots[i++] = qvtest::U16(argument);
  return table;
}

TEST(OptionValue, QuotesAndBlanks) {
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"-packageout.zip", u"out.zip"},
      {u"-package\"out.zip\"", u"out.zip"},
      {u"-package\"out.zip'", u"out.zip"},  // kinds need not match
      {u"-package\" a b \t\"", u"a b"},     // blanks inside quotes go
      {u"-package \"a\"", u"\"a"},          // a quote behind a blank stays
      {u"-package\"\"\"", u"\""},           // one quote each end only
      {u"-package''", u""},
  };
  for (const auto& [argument, value] : cases)
    EXPECT_EQ(OptionValue(u"-package", argument), value) << qvtest::U8(argument);
  EXPECT_EQ(OptionValue(u"-td", u"-td\r\n(1,2,3,4)\v\f"), u"(1,2,3,4)");
  for (const char16_t* empty : {u"-package", u"-package\"", u"-package'"})
    EXPECT_THROW(OptionValue(u"-package", empty), std::out_of_range) << qvtest::U8(empty);
}

TEST(CommandLine, AcceptedLinesAndRefusalsWithMinusOne) {
  QvConvRunConfig config = ParseCommandLine(Table({"-package'out.zip'", "proj"}));
  EXPECT_EQ(config.InputPath() + u" " + config.OutputPath(), u"proj out.zip");
  EXPECT_FALSE(config.CheckOnly() || config.Unpackage());
  EXPECT_EQ(config.DisplayRegion().width + config.DisplayRegion().height, 3840 + 2160);

  // -check and -unpackage overwrite the output; -checkfile is -check "file".
  config = ParseCommandLine(Table({"proj", "-packagea.zip", "-checkfile"}));
  EXPECT_TRUE(config.CheckOnly());
  EXPECT_EQ(config.OutputPath(), u"file");
  EXPECT_EQ(config.CheckPath(), u"file");
  config = ParseCommandLine(Table({"a.zip", "-checkr.xml", "-unpackagey"}));
  EXPECT_EQ(config.CheckPath(), u"r.xml");
  EXPECT_EQ(config.OutputPath(), u"y");

  const std::vector<std::vector<const char*>> refused = {
      {"a", "-package'"},
      {"a", "-unpackageb", "-packagea"},  // output already set
      {"a", "-packagea", "-packagea"},
      {"a", "-td1,2,3,4", "-td1,2,3,4"},
      {"a", "-td"},        // not the default region
      {"a", "-PACKAGEx"},  // names are case-exact
      {"a", "-paramx", "-paramy"},
      {"a", "-logx", "-logy"},
      {"a", "-log''"},
  };
  for (const auto& line : refused)
    EXPECT_EQ(qvtest::CodeOf([&] { ParseCommandLine(Table(line)); }), -1) << line[1];
}

// The log is found before the option loop runs: the first -log value, up to an empty argument.
TEST(CommandLine, LogPathIsTheFirstLogValue) {
  EXPECT_EQ(LogPathOf(Table({"a", "-packageb", "-log'run.log'", "-logother"})), u"run.log");
  EXPECT_EQ(LogPathOf(Table({"-bad", "-logrun.log"})), u"run.log");  // a bad line is logged too
  EXPECT_EQ(LogPathOf(Table({"a", "-log", "-logrun.log"})), u"");
  EXPECT_EQ(LogPathOf(Table({"a", "", "-logrun.log"})), u"");
  EXPECT_EQ(ParseCommandLine(Table({"a", "-packageb", "-logc"})).OutputPath(), u"b");
}

TEST(DisplayRegion, FieldsAndConversion) {
  const std::pair<const char16_t*, std::vector<int>> cases[] = {
      {u"1,2,3,4", {1, 2, 3, 4}},
      {u"x,y,z,w", {0, 0, 0, 0}},
      {u",,,,", {0, 0, 0, 0}},
      {u"(-5, +6,7px,  8)", {-5, 6, 7, 8}},
      {u"1,2,3,4,", {1, 2, 3, 4}},      // a trailing comma adds no field
      {u"((1),2,3,4))", {1, 2, 3, 4}},  // every parenthesis goes
      {u"99999999999,-99999999999,1,2", {2147483647, -2147483647 - 1, 1, 2}},
      {u"\u30001,\u00A02,\u20033,\u200B4", {1, 2, 3, 0}},  // Windows' white space, not U+200B
  };
  for (const auto& [text, expected] : cases) {
    QvConvRunConfig config;
    SetDisplayRegion(text, &config);
    const QvConvDisplayRegion r = config.DisplayRegion();
    EXPECT_EQ(std::vector<int>({r.x, r.y, r.width, r.height}), expected) << qvtest::U8(text);
  }
  for (const char16_t* bad : {u"()", u"1,2,3,4,5", u"1,2,3,4,,", u",,,", u"1;2;3;4"})
    EXPECT_EQ(qvtest::CodeOf([&] {
                QvConvRunConfig config;
                SetDisplayRegion(bad, &config);
              }),
              -1)
        << qvtest::U8(bad);
  QvConvRunConfig untouched;
  SetDisplayRegion(u"", &untouched);  // empty text changes nothing
  EXPECT_EQ(untouched.DisplayRegion().width, 0);
}

TEST(QvConvException, IsNotCaughtAsStandardException) {
  try {
    try {
      throw QvConvException(-500);
    } catch (const std::exception&) {
      ADD_FAILURE();
    }
  } catch (const QvConvException& e) {
    EXPECT_EQ(e.code(), -500);
  }
}

TEST(DispatchDeathTest, UnknownKindsEndWith997) {
  QvConvRunConfig bad_kind(u"in", u"out");
  bad_kind.SetOutputKind(3);
  EXPECT_EXIT(Dispatch(bad_kind), testing::ExitedWithCode(-997 & 0xff), "");
  bad_kind.SetOutputKind(KindProject);
  bad_kind.SetInputKind(-1);
  EXPECT_EXIT(Dispatch(bad_kind), testing::ExitedWithCode(-997 & 0xff), "");
}

}  // namespace
