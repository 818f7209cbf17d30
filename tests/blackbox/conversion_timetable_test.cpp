// Whole runs of `qvConvApp <project> -package<zip>` on projects of a schedule
// and time tables: which files are schedules, what the package holds, which
// failure ends a run, and what a run leaves in the temporary folder.
#include <algorithm>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

bool Contains(const std::vector<std::string>& list, const std::string& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

class ConversionTimeTable : public BlackBoxTest {};

TEST_F(ConversionTimeTable, PackagesScheduleAndTimeTables) {
  BuildTimeTableProject(p_);
  RunResult r = Package();
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_EQ(r.output, "") << "nothing is printed in normal use";

  std::vector<std::string> members = ZipMembers(zip_);
  EXPECT_TRUE(Contains(members, "QvFormat/QvS.xml"));
  EXPECT_TRUE(Contains(members, "QvFormat/QvT/TM1.xml"));
  EXPECT_TRUE(Contains(members, "QvFormat/QvT/TM2.xml"));
  EXPECT_FALSE(Contains(members, "QvFormat/QvT/TM3.xml"));
  for (const auto& m : members) {
    EXPECT_EQ(m.rfind("QvFormat", 0), 0u) << "member outside QvFormat: " << m;
    EXPECT_EQ(m.find("Temp"), std::string::npos) << "the Temp folder is not packed: " << m;
  }
  EXPECT_TRUE(WorkFolders(temp_).empty()) << "the work folder is removed after delivery";
}

TEST_F(ConversionTimeTable, ScheduleDocumentInCompactVocabulary) {
  BuildTimeTableProject(p_);
  ASSERT_EQ(Package().status, 0);
  XmlNode qv = Doc("QvS.xml");
  EXPECT_EQ(qv.name, "qv");
  EXPECT_EQ(qv.Attr("ver"), "1.0");
  ASSERT_EQ(qv.children.size(), 1u);
  const XmlNode& sl = qv.children[0];
  EXPECT_EQ(sl.name, "sl");
  EXPECT_EQ(sl.Attr("n"), "Schedule");
  EXPECT_EQ(sl.Attr("ad"), "f");
  auto entries = sl.All("s");
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0]->Attr("dt"), "2035/01/01");
  EXPECT_EQ(entries[0]->Attr("rt"), "TM1");
  EXPECT_EQ(entries[0]->Attr("df"), "t");
  EXPECT_EQ(entries[1]->Attr("dt"), "2035/01/02");
  EXPECT_EQ(entries[1]->Attr("rt"), "TM2");
  EXPECT_EQ(entries[1]->Attr("df"), "f");
}

TEST_F(ConversionTimeTable, TimeTableDocumentsCarryTheirIdsAndRows) {
  BuildTimeTableProject(p_);
  ASSERT_EQ(Package().status, 0);
  XmlNode tt = Doc("QvT/TM2.xml");
  EXPECT_EQ(tt.name, "tt");
  EXPECT_EQ(tt.Attr("i"), "TM2");
  const XmlNode* tl = tt.First("tl");
  ASSERT_NE(tl, nullptr);
  EXPECT_EQ(tl->Attr("n"), "夜");
  auto rows = tl->All("tb");
  ASSERT_EQ(rows.size(), 1u);
  const XmlNode* co = rows[0]->First("co");
  ASSERT_NE(co, nullptr) << "a kind 1 line is a command row";
  EXPECT_EQ(co->Attr("st"), "22:00:00");
  EXPECT_EQ(co->Attr("tp"), "2");
  EXPECT_EQ(co->Attr("ti"), "VIDEO1");

  // An empty target input is still written in the compact vocabulary.
  XmlNode first = Doc("QvT/TM1.xml");
  const XmlNode* co1 = first.At("tl").At("tb").First("co");
  ASSERT_NE(co1, nullptr);
  EXPECT_TRUE(co1->Has("ti"));
  EXPECT_EQ(co1->Attr("ti"), "");
}

TEST_F(ConversionTimeTable, TimeTablesAreNumberedInOrderOfTheSchedule) {
  // The file named first gets TM1 even though it sorts last.
  p_.Schedule({ScheduleEntry("2035/03/01", "zz.csv"), ScheduleEntry("2035/03/02", "aa.csv"),
               ScheduleEntry("2035/03/03", "zz.csv")});
  p_.TimeTable("zz.csv", "ZZ", {CommandLine("01:00:00", "1", "")});
  p_.TimeTable("aa.csv", "AA", {CommandLine("02:00:00", "1", "")});
  ASSERT_EQ(Package().status, 0);
  EXPECT_EQ(Doc("QvT/TM1.xml").At("tl").Attr("n"), "ZZ");
  EXPECT_EQ(Doc("QvT/TM2.xml").At("tl").Attr("n"), "AA");
  XmlNode qv = Doc("QvS.xml");
  auto entries = qv.At("sl").All("s");
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[2]->Attr("rt"), "TM1") << "one file, one identifier";
}

TEST_F(ConversionTimeTable, MissingTimeTableIsSkippedWithoutFailure) {
  BuildTimeTableProject(p_);
  p_.Schedule({ScheduleEntry("2035/01/01", "TimeTable_a.csv"),
               ScheduleEntry("2035/01/02", "時間表b.csv"),
               ScheduleEntry("2035/01/03", "Nowhere.csv")});
  RunResult r = Package();
  ASSERT_EQ(r.status, 0) << r.output;
  std::vector<std::string> members = ZipMembers(zip_);
  EXPECT_TRUE(Contains(members, "QvFormat/QvT/TM1.xml"));
  EXPECT_TRUE(Contains(members, "QvFormat/QvT/TM2.xml"));
  EXPECT_FALSE(Contains(members, "QvFormat/QvT/TM3.xml"));
  XmlNode qv = Doc("QvS.xml");
  auto entries = qv.At("sl").All("s");
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[2]->Attr("rt"), "TM3") << "the schedule still names it";
}

TEST_F(ConversionTimeTable, ScheduleFileInSubfolderIsNotSeen) {
  BuildTimeTableProject(p_);
  p_.File("old/Schedule2.csv", CsvBytes({{"x"}, {"false"}}));
  EXPECT_EQ(Package().status, 0);
}

TEST_F(ConversionTimeTable, OnlyExactScheduleNamesCount) {
  struct Case {
    const char* what;
    const char* schedule_name;
  } cases[] = {{"lower case", "schedule.csv"},
               {"hidden", ".Schedule.csv"},
               {"prefix elsewhere", "MySchedule.csv"}};
  for (const auto& c : cases) {
    ScratchDir dir;
    ProjectBuilder p(dir.Sub("project"));
    BuildTimeTableProject(p);
    RemoveAll(p.Path("Schedule.csv"));
    p.File(c.schedule_name, CsvBytes({{"S"}, {"false"}}));
    RunResult r = RunQv({p.root(), "-package" + dir.Sub("out.zip")}, RunEnv(dir.Sub("tmp")));
    EXPECT_EQ(r.status, Status(-101)) << c.what;
    EXPECT_FALSE(Exists(dir.Sub("out.zip"))) << c.what;
  }
  // A folder called Schedule is no schedule file either.
  BuildTimeTableProject(p_);
  RemoveAll(p_.Path("Schedule.csv"));
  MakeDirs(p_.Path("Schedule"));
  EXPECT_EQ(Package().status, Status(-101));
}

TEST_F(ConversionTimeTable, AnyNameBeginningWithScheduleIsTheSchedule) {
  BuildTimeTableProject(p_);
  std::string bytes = ReadFile(p_.Path("Schedule.csv"));
  RemoveAll(p_.Path("Schedule.csv"));
  p_.File("Schedule_20240101_120000_001.csv", bytes);
  EXPECT_EQ(Package().status, 0);
}

TEST_F(ConversionTimeTable, NoScheduleFileFailsAndLeavesTheWorkFolder) {
  BuildTimeTableProject(p_);
  RemoveAll(p_.Path("Schedule.csv"));
  RunResult r = Package();
  EXPECT_EQ(r.status, Status(-101));
  EXPECT_EQ(r.output, "");
  EXPECT_FALSE(Exists(zip_));
  EXPECT_EQ(WorkFolders(temp_).size(), 1u) << "a failed run leaves its work folder";
}

TEST_F(ConversionTimeTable, MissingProjectFolderIsNoSchedule) {
  RunResult r = Package(scratch_.Sub("no such project"));
  EXPECT_EQ(r.status, Status(-101));
  EXPECT_FALSE(Exists(zip_));
  EXPECT_EQ(WorkFolders(temp_).size(), 1u) << "the work folder is made before the schedule is looked for";
}

TEST_F(ConversionTimeTable, TwoScheduleFilesFail) {
  BuildTimeTableProject(p_);
  p_.File("Schedule2.csv", ReadFile(p_.Path("Schedule.csv")));
  EXPECT_EQ(Package().status, Status(-103));
  EXPECT_FALSE(Exists(zip_));
}

TEST_F(ConversionTimeTable, BadEscapeInTimeTableIsUnreadable) {
  BuildTimeTableProject(p_);
  // A backslash before a letter is no escape.
  p_.File("TimeTable_a.csv", Cp932("Morning\r\n0xD4F0FF\r\n06:00:00,a\\b,1,,1,\r\n"));
  RunResult r = Package();
  EXPECT_EQ(r.status, Status(-102));
  EXPECT_FALSE(Exists(zip_));
}

TEST_F(ConversionTimeTable, BadEscapeInScheduleIsUnreadable) {
  BuildTimeTableProject(p_);
  p_.File("Schedule.csv", "S\r\nfalse\r\n2035/01/01,Time\\Table_a.csv,true\r\n");
  EXPECT_EQ(Package().status, Status(-102));
}

TEST_F(ConversionTimeTable, InterruptFileIsAnErrorAndStopsDelivery) {
  BuildTimeTableProject(p_);
  p_.File("Interrupt_1.csv", "");
  RunResult r = Package();
  EXPECT_EQ(r.status, 2);
  EXPECT_FALSE(Exists(zip_)) << "an error stops the delivery";
  EXPECT_EQ(WorkFolders(temp_).size(), 1u) << "code 2 leaves the work folder";
}

TEST_F(ConversionTimeTable, WarningsStillDeliverWithExitOne) {
  BuildTimeTableProject(p_);
  // An entry in the past is a warning; the package is made all the same.
  p_.Schedule({ScheduleEntry(DateFromToday(-3), "TimeTable_a.csv"),
               ScheduleEntry("2035/01/02", "時間表b.csv")});
  RunResult r = Package();
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Exists(zip_));
  EXPECT_TRUE(Contains(ZipMembers(zip_), "QvFormat/QvT/TM1.xml"));
  EXPECT_TRUE(WorkFolders(temp_).empty());
  EXPECT_FALSE(Exists(report_)) << "a plain conversion writes no report";
}

TEST_F(ConversionTimeTable, UnwritableOutputIsNotNoticed) {
  BuildTimeTableProject(p_);
  // A parent that is a plain file: the archive tool cannot write there.
  WriteFile(scratch_.Sub("plain"), "x");
  std::string zip = scratch_.Sub("plain/out.zip");
  RunResult r = RunQv({project_, "-package" + zip}, RunEnv(temp_));
  EXPECT_EQ(r.status, 0) << "the archive tool's status is not looked at";
  EXPECT_FALSE(Exists(zip));
  EXPECT_TRUE(WorkFolders(temp_).empty());
}

TEST_F(ConversionTimeTable, PackingOntoAnExistingZipAddsToIt) {
  BuildTimeTableProject(p_);
  std::string old = scratch_.Sub("old");
  WriteFile(old + "/keep.txt", "kept");
  ZipFolderContents(old, zip_);
  ASSERT_EQ(Package().status, 0);
  std::vector<std::string> members = ZipMembers(zip_);
  EXPECT_TRUE(Contains(members, "keep.txt"));
  EXPECT_TRUE(Contains(members, "QvFormat/QvS.xml"));
}

TEST_F(ConversionTimeTable, QuotedPackagePathIsTheSamePath) {
  BuildTimeTableProject(p_);
  RunResult r = RunQv({project_, "-package\"" + zip_ + "\""}, RunEnv(temp_));
  EXPECT_EQ(r.status, 0);
  EXPECT_TRUE(Exists(zip_));
}

}  // namespace
}  // namespace qvtest

namespace qvtest {
namespace {

class ConversionTimeTableText : public BlackBoxTest {};

TEST_F(ConversionTimeTableText, DefaultFlagAndFileNamesAreReadAsWritten) {
  // The default column is true in any case of the word, and only then; the
  // name of the list keeps its escaped comma and backslash.
  p_.Schedule({ScheduleEntry("2035/01/01", "TimeTable_a.csv", "TRUE"),
               ScheduleEntry("2035/01/02", "TimeTable_a.csv", "1"),
               {"2035/01/03", "TimeTable_a.csv"}},
              "Schedule.csv", "a,b\\c", "1");
  p_.TimeTable("TimeTable_a.csv", "A", {CommandLine("06:00:00", "1", "x")});
  ASSERT_EQ(Package().status, 0);
  XmlNode qv = Doc("QvS.xml");
  const XmlNode& sl = qv.At("sl");
  EXPECT_EQ(sl.Attr("n"), "a,b\\c");
  EXPECT_EQ(sl.Attr("ad"), "t");
  auto entries = sl.All("s");
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[0]->Attr("df"), "t");
  EXPECT_EQ(entries[1]->Attr("df"), "f");
  EXPECT_EQ(entries[2]->Attr("df"), "f") << "two columns: not the default";
}

TEST_F(ConversionTimeTableText, OverlongLineEndsTheFile) {
  p_.Schedule({ScheduleEntry("2035/01/01", "TimeTable_a.csv")});
  std::string text = Cp932("A\r\n0xD4F0FF\r\n06:00:00,,1,,1,first\r\n") + "07:00:00,,1,,1," +
                     std::string(2000, 'x') + "\r\n08:00:00,,1,,1,third\r\n";
  p_.File("TimeTable_a.csv", text);
  ASSERT_EQ(Package().status, 0);
  XmlNode tt = Doc("QvT/TM1.xml");
  auto rows = tt.At("tl").All("tb");
  ASSERT_EQ(rows.size(), 1u) << "a line of 1024 bytes or more ends the read, quietly";
  EXPECT_EQ(rows[0]->At("co").Attr("ti"), "first");
}

}  // namespace
}  // namespace qvtest
