// The command line, the display region and the parameter file: what each accepts, sets and
// refuses; a full disk (faked through the Env) while a conversion writes its XML documents: an
// unknown failure that delivers nothing.
#include <type_traits>

#include "app/run/parameter_file.h"
#include "app/run/run_control.h"
#include "base/qv_conv_exception.h"
#include "base/qv_conv_run_config.h"
#include "tests/support/test_support.h"

namespace {

using namespace quorvane::qvconv::converter;
using qvtest::CodeOf, qvtest::U16, qvtest::U8;

// The table of a command line whose arguments are separated by single spaces.
ArgumentTable Table(const std::string& line) {
  ArgumentTable table;
  table.slots[0] = u"qvConvApp";
  std::size_t i = 1, at = 0;
  for (std::size_t end; (end = line.find(' ', at)) != line.npos; at = end + 1)
    table.slots[i++] = U16(line.substr(at, end - at));
  table.slots[i] = U16(line.substr(at));
  return table;
}

TEST(CommandLine, OptionValuesQuotesAndBlanks) {
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
    EXPECT_EQ(OptionValue(u"-package", argument), value) << U8(argument);
  EXPECT_EQ(OptionValue(u"-td", u"-td\r\n(1,2,3,4)\v\f"), u"(1,2,3,4)");
  for (const char16_t* empty : {u"-package", u"-package\"", u"-package'"})
    EXPECT_THROW(OptionValue(u"-package", empty), std::out_of_range) << U8(empty);
}

TEST(CommandLine, AcceptedLinesAndRefusalsWithMinusOne) {
  QvConvRunConfig config = ParseCommandLine(Table("-package'out.zip' proj"));
  EXPECT_EQ(config.InputPath() + u" " + config.OutputPath(), u"proj out.zip");
  EXPECT_FALSE(config.CheckOnly() || config.Unpackage());
  EXPECT_EQ(config.DisplayRegion().width + config.DisplayRegion().height, 3840 + 2160);
  // -check and -unpackage overwrite the output; -checkfile is -check "file".
  config = ParseCommandLine(Table("proj -packagea.zip -checkfile"));
  EXPECT_TRUE(config.CheckOnly());
  EXPECT_EQ(config.OutputPath() + config.CheckPath(), u"filefile");
  config = ParseCommandLine(Table("a.zip -checkr.xml -unpackagey"));
  EXPECT_EQ(config.CheckPath() + config.OutputPath(), u"r.xmly");

  // Refused: an output already set, a second region, -td without a value (not the default
  // region), names in another case, a second parameter or log file, an empty log.
  for (const char* line : {"a -package'", "a -unpackageb -packagea", "a -packagea -packagea",
                           "a -td1,2,3,4 -td1,2,3,4", "a -td", "a -PACKAGEx", "a -paramx -paramy",
                           "a -logx -logy", "a -log''"})
    EXPECT_EQ(CodeOf([&] { ParseCommandLine(Table(line)); }), -1) << line;
}

// The x, y, width and height that `text` sets on a fresh config.
std::vector<int> Region(const char16_t* text) {
  QvConvRunConfig config;
  SetDisplayRegion(text, &config);
  const QvConvDisplayRegion r = config.DisplayRegion();
  return {r.x, r.y, r.width, r.height};
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
      {u"", {0, 0, 0, 0}},                                 // empty text changes nothing
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(Region(text), expected) << U8(text);
  for (const char16_t* bad : {u"()", u"1,2,3,4,5", u"1,2,3,4,,", u",,,", u"1;2;3;4"})
    EXPECT_EQ(CodeOf([&] { Region(bad); }), -1) << U8(bad);
}

// Reads `text` (wrapped in the root element unless `bare`) as a parameter file into `config`: the
// failure code, or 0.
int ReadParameters(const std::string& text, QvConvRunConfig& config, bool bare = false) {
  qvtest::ScratchDir scratch;
  qvtest::WriteFile(scratch.Sub("p.xml"),
                    bare ? text : "<QvConvParameter>" + text + "</QvConvParameter>");
  config = QvConvRunConfig();
  return CodeOf([&] { ReadParameterFile(U16(scratch.Sub("p.xml")), &config); });
}

TEST(ParameterFile, AllowedValuesDefaultsAndFailures) {
  // Input kind, output kind, input archive, output archive, compress.
  const std::pair<const char*, std::vector<int>> cases[] = {
      {"", {KindProject, KindCompact, 0, 1, 0}},
      {"<Input format='application/x-qvf-debug' archive='yes'/>"
       "<Output format='application/x-quorvane' archive='no' compress='yes'/>",
       {KindDebug, KindProject, 1, 0, 1}},
      {"<Input format='application/x-qvf' archive='no'/>"
       "<Output format='application/x-qvf-debug' archive='yes' compress='no'/>",
       {KindCompact, KindDebug, 0, 1, 0}},
      // Later elements win per attribute; an empty value keeps the earlier one; other elements,
      // nested ones and unknown attributes are passed over.
      {"text<Output format='application/x-qvf-debug' archive='no'/><!-- c --><Other format='bad'/>"
       "<Input unknown='x'/><Output compress='yes' format=''/><Group><Input format='bad'/></Group>",
       {KindProject, KindDebug, 0, 0, 1}},
  };
  QvConvRunConfig c;
  for (const auto& [xml, state] : cases) {
    EXPECT_EQ(ReadParameters(xml, c), 0) << xml;
    EXPECT_EQ(std::vector<int>({c.InputKind(), c.OutputKind(), c.InputArchive(), c.OutputArchive(),
                                c.Compress()}),
              state)
        << xml;
  }
  // Wrong values are -201, unreadable files -300.
  for (const char* xml : {"<Input format='application/x-qvf '/>", "<Input archive='Yes'/>",
                          "<Output format='application/x-QVF'/>", "<Output archive='true'/>"})
    EXPECT_EQ(ReadParameters(xml, c), -201) << xml;
  EXPECT_EQ(ReadParameters("<QvConvParameter version='2.0'/>", c, true), -201);
  EXPECT_EQ(ReadParameters("<qvconvparameter/>", c, true), -201);
  // The format is set before a bad compress value stops the read.
  EXPECT_EQ(ReadParameters("<Output format='application/x-qvf-debug' compress='maybe'/>", c), -201);
  EXPECT_EQ(c.OutputKind(), KindDebug);
  EXPECT_EQ(ReadParameters("<Input>", c), -300);
  EXPECT_EQ(ReadParameters("", c, true), -300);
}

// The failure codes pass every handler of standard exceptions on their way out.
static_assert(!std::is_convertible_v<QvConvException*, std::exception*>);

// A disk with room for `room` bytes of whole files written, whose temporary folder is `temp`: a
// file that does not fit fails and writes nothing, and so does everything after it.
class SmallDisk : public qvtest::FakeEnv {
 public:
  SmallDisk(std::size_t room, const std::string& temp) : room_(room), temp_(U16(temp)) {}
  std::u16string TempDirectory() override { return temp_; }
  bool WriteFile(std::u16string_view path, std::string_view bytes) override {
    full_ = full_ || bytes.size() > room_;
    room_ -= full_ ? 0 : bytes.size();
    return !full_ && target()->WriteFile(path, bytes);
  }

 private:
  std::size_t room_;
  std::u16string temp_;
  bool full_ = false;
};

// The schedule fits, a later document does not; with room the same run packs the sample.
TEST(FullDiskDeathTest, XmlDocumentsThatDoNotFitEndAsUnknownFailure) {
  qvtest::ScratchDir scratch;
  const std::string temp = scratch.Sub("temp"), zip = scratch.Sub("out.zip");
  qvtest::MakeDirs(temp);
  const ArgumentTable table = Table(std::string(QV_SOURCE_DIR) + "/examples/sample -package" + zip);
  auto run_on_disk_of = [&](std::size_t room) {
    SmallDisk disk(room, temp + "/");
    Dispatch(ParseCommandLine(table));
    std::exit(0);
  };
  EXPECT_EXIT(run_on_disk_of(1024), testing::ExitedWithCode(-999 & 0xff), "");
  EXPECT_FALSE(qvtest::Exists(zip));
  EXPECT_EXIT(run_on_disk_of(1 << 20), testing::ExitedWithCode(0), "");
  EXPECT_TRUE(qvtest::Exists(zip));
}

}  // namespace
