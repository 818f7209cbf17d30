#include <gtest/gtest.h>

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/qv_conv_exception.h"
#include "app/qv_conv_run_config.h"
#include "app/run/run_control.h"
#include "tests/support/test_support.h"

namespace {

using namespace quorvane::qvconv::converter;

ArgumentTable Table(std::initializer_list<const char*> arguments) {
  ArgumentTable table;
  table.slots[0] = u"qvConvApp";
  int i = 1;
  for (const char* argument : arguments) table.slots[i++] = qvtest::U16(argument);
  return table;
}

// The code that the command line is refused with, or 0 if it is accepted.
int RefusalCode(const ArgumentTable& table) {
  try {
    ParseCommandLine(table);
  } catch (QvConvException* failure) {
    const int code = failure->code();
    delete failure;
    return code;
  }
  return 0;
}

TEST(OptionValue, QuotesAndBlanks) {
  EXPECT_EQ(OptionValue(u"-package", u"-packageout.zip"), u"out.zip");
  EXPECT_EQ(OptionValue(u"-package", u"-package\"out.zip\""), u"out.zip");
  EXPECT_EQ(OptionValue(u"-package", u"-package'out.zip'"), u"out.zip");
  EXPECT_EQ(OptionValue(u"-package", u"-package\"out.zip'"), u"out.zip");  // kinds need not match
  EXPECT_EQ(OptionValue(u"-package", u"-package\" a b \t\""), u"a b");    // blanks inside quotes go
  EXPECT_EQ(OptionValue(u"-package", u"-package \"a\""), u"\"a");         // a quote behind a blank stays
  EXPECT_EQ(OptionValue(u"-package", u"-package\"\"\""), u"\"");          // one quote each end only
  EXPECT_EQ(OptionValue(u"-package", u"-package''"), u"");                // two quotes: an empty value
  EXPECT_EQ(OptionValue(u"-td", u"-td\r\n(1,2,3,4)\v\f"), u"(1,2,3,4)");
}

TEST(OptionValue, NoValueIsOutOfRange) {
  EXPECT_THROW(OptionValue(u"-package", u"-package"), std::out_of_range);
  EXPECT_THROW(OptionValue(u"-package", u"-package\""), std::out_of_range);
  EXPECT_THROW(OptionValue(u"-package", u"-package'"), std::out_of_range);
}

TEST(CommandLine, PlainRunsAndDefaults) {
  const QvConvRunConfig config = ParseCommandLine(Table({"proj", "-packageout.zip"}));
  EXPECT_EQ(config.InputPath(), u"proj");
  EXPECT_EQ(config.OutputPath(), u"out.zip");
  EXPECT_FALSE(config.CheckOnly() || config.Unpackage());
  EXPECT_EQ(config.InputKind(), KindProject);
  EXPECT_EQ(config.OutputKind(), KindCompact);
  const QvConvDisplayRegion region = config.DisplayRegion();
  EXPECT_EQ(std::vector<int>({region.x, region.y, region.width, region.height}),
            std::vector<int>({0, 0, 3840, 2160}));

  // The order of the arguments is free; the input may come last.
  const QvConvRunConfig later = ParseCommandLine(Table({"-package'out.zip'", "proj"}));
  EXPECT_EQ(later.InputPath(), u"proj");
  EXPECT_EQ(later.OutputPath(), u"out.zip");
}

TEST(CommandLine, CheckAndUnpackageOverwriteTheOutput) {
  QvConvRunConfig config = ParseCommandLine(Table({"proj", "-packagea.zip", "-checkb.xml"}));
  EXPECT_TRUE(config.CheckOnly());
  EXPECT_EQ(config.OutputPath(), u"b.xml");
  EXPECT_EQ(config.CheckPath(), u"b.xml");

  config = ParseCommandLine(Table({"a.zip", "-unpackagex", "-unpackagey"}));
  EXPECT_TRUE(config.Unpackage());
  EXPECT_EQ(config.OutputPath(), u"y");

  config = ParseCommandLine(Table({"a.zip", "-checkr.xml", "-unpackagey"}));
  EXPECT_TRUE(config.CheckOnly());
  EXPECT_EQ(config.CheckPath(), u"r.xml");
  EXPECT_EQ(config.OutputPath(), u"y");

  // -checkfile is -check with the value "file".
  config = ParseCommandLine(Table({"proj", "-checkfile"}));
  EXPECT_EQ(config.CheckPath(), u"file");
}

TEST(CommandLine, RefusedWithMinusOne) {
  EXPECT_EQ(RefusalCode(Table({"a", "b"})), -1);                       // two inputs
  EXPECT_EQ(RefusalCode(Table({"a", "-package"})), -1);                // no value
  EXPECT_EQ(RefusalCode(Table({"a", "-package'"})), -1);               // only a quote
  EXPECT_EQ(RefusalCode(Table({"a", "-checkb", "-packagea"})), -1);    // output already set
  EXPECT_EQ(RefusalCode(Table({"a", "-unpackageb", "-packagea"})), -1);
  EXPECT_EQ(RefusalCode(Table({"a", "-packagea", "-packagea"})), -1);
  EXPECT_EQ(RefusalCode(Table({"a", "-td1,2,3,4", "-td1,2,3,4"})), -1);
  EXPECT_EQ(RefusalCode(Table({"a", "-td"})), -1);                     // not the default region
  EXPECT_EQ(RefusalCode(Table({"a", "-td1,2,3"})), -1);
  EXPECT_EQ(RefusalCode(Table({"a", "-td(1,2,3,4,5)"})), -1);
  EXPECT_EQ(RefusalCode(Table({"a", "-"})), -1);
  EXPECT_EQ(RefusalCode(Table({"a", "-unknown"})), -1);
  EXPECT_EQ(RefusalCode(Table({"a", "-PACKAGEx"})), -1);               // names are case-exact
  EXPECT_EQ(RefusalCode(Table({"a", "-paramx", "-paramy"})), -1);
}

TEST(CommandLine, EmptyArgumentEndsTheCommandLine) {
  const QvConvRunConfig config = ParseCommandLine(Table({"proj", "-packagea", "", "-unknown", "b"}));
  EXPECT_EQ(config.InputPath(), u"proj");
  EXPECT_EQ(config.OutputPath(), u"a");
}

TEST(CommandLine, FullTableIsBoundedAndOverflowIsRefused) {
  ArgumentTable table;
  table.slots[0] = u"qvConvApp";
  table.slots[1] = u"proj";
  for (int i = 2; i < kArgumentSlots; ++i) table.slots[i] = u"-td1,2,3,4";
  EXPECT_EQ(RefusalCode(table), -1);  // the repeated -td, read up to the last slot

  for (int i = 2; i < kArgumentSlots; ++i) table.slots[i] = u"-checkr.xml";
  EXPECT_EQ(ParseCommandLine(table).CheckPath(), u"r.xml");
  table.overflow = true;
  EXPECT_EQ(RefusalCode(table), -1);
  table.slots[50] = u"";  // an empty argument ends the line before the overflow matters
  EXPECT_EQ(RefusalCode(table), 0);
}

TEST(DisplayRegion, FieldsAndConversion) {
  struct Case {
    const char16_t* text;
    QvConvDisplayRegion region;
  };
  const Case cases[] = {
      {u"(0,0,3840,2160)", {0, 0, 3840, 2160}},
      {u"1,2,3,4", {1, 2, 3, 4}},                    // parentheses are optional
      {u"x,y,z,w", {0, 0, 0, 0}},                    // no digits give 0
      {u"(-5, +6,7px,  8)", {-5, 6, 7, 8}},
      {u"1,2,3,4,", {1, 2, 3, 4}},                   // a trailing comma adds no field
      {u"((1),2,3,4))", {1, 2, 3, 4}},               // every parenthesis goes
      {u",,,,", {0, 0, 0, 0}},
      {u"99999999999,-99999999999,1,2", {2147483647, -2147483647 - 1, 1, 2}},
  };
  for (const Case& c : cases) {
    QvConvRunConfig config;
    config.SetDisplayRegion(c.text);
    const QvConvDisplayRegion r = config.DisplayRegion();
    EXPECT_EQ(std::vector<int>({r.x, r.y, r.width, r.height}),
              std::vector<int>({c.region.x, c.region.y, c.region.width, c.region.height}))
        << qvtest::U8(c.text);
  }

  for (const char16_t* bad : {u"()", u"1,2,3", u"1,2,3,4,5", u"1,2,3,4,,", u",,,", u"1;2;3;4"}) {
    QvConvRunConfig config;
    try {
      config.SetDisplayRegion(bad);
      ADD_FAILURE() << qvtest::U8(bad);
    } catch (QvConvException* failure) {
      EXPECT_EQ(failure->code(), -1) << qvtest::U8(bad);
      delete failure;
    }
  }

  QvConvRunConfig untouched;
  untouched.SetDisplayRegion(u"");  // empty text changes nothing
  EXPECT_EQ(untouched.DisplayRegion().width, 0);
}

TEST(QvConvException, IsNotCaughtAsStandardException) {
  bool standard = false;
  bool own = false;
  try {
    try {
      throw QvConvException(-500);
    } catch (const std::exception&) {
      standard = true;
    }
  } catch (const QvConvException& e) {
    own = e.code() == -500;
  }
  EXPECT_FALSE(standard);
  EXPECT_TRUE(own);
}

// Dispatch ends the process itself on every failure.
TEST(DispatchDeathTest, EndsWithTheFailureCode) {
  QvConvRunConfig no_input(u"", u"out", u"");
  EXPECT_EXIT(Dispatch(no_input), testing::ExitedWithCode(255), "");

  QvConvRunConfig no_output(u"in", u"", u"");
  EXPECT_EXIT(Dispatch(no_output), testing::ExitedWithCode(255), "");

  QvConvRunConfig bad_kind(u"in", u"out", u"");
  bad_kind.SetOutputKind(3);
  EXPECT_EXIT(Dispatch(bad_kind), testing::ExitedWithCode(-997 & 0xff), "");
  bad_kind.SetOutputKind(KindProject);
  bad_kind.SetInputKind(-1);
  EXPECT_EXIT(Dispatch(bad_kind), testing::ExitedWithCode(-997 & 0xff), "");
}

}  // namespace
