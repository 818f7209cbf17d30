// Projects made on Windows, then renamed, padded, moved or copied as users do: each converts as it
// does on Windows, where names have no case, a trailing blank is dropped and a listing holds only
// what can be a file name there.  Zips as Windows tools write them, opened with -unpackage: names
// in code page 932 without the UTF-8 flag (Explorer, Lhaplus), "\" between folders (PowerShell);
// each name comes out as 7-Zip on Japanese Windows makes it, hostile names stay inside, and a later
// -unpackage empties the folder whatever names it holds.
#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>

#include "tests/blackbox/project_builder.h"

namespace qvtest {
namespace {

namespace fs = std::filesystem;

class WindowsProjects : public BlackBoxTest {
 protected:
  // Every file of a package with its bytes.
  std::vector<std::string> Members(const std::string& zip) {
    const std::string folder = scratch_.Sub("unzipped" + std::to_string(++unzipped_));
    return Unzip(zip, folder), Contents(folder);
  }
  int unzipped_ = 0;
};

// Names changed as a user changes them on Windows: the package is the same, to the byte.
TEST_F(WindowsProjects, RenamedOrPaddedNamesConvertWhole) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  const auto reference = Members(zip_);
  const std::string pristine = scratch_.Sub("pristine");
  fs::copy(project_, pristine, fs::copy_options::recursive);
  // Each change: in `file` the first `from` becomes `to`, or without a file, `from` is renamed.
  using Change = std::array<std::string, 3>;
  const std::pair<const char*, std::vector<Change>> cases[] = {
      {"a time table stored in another case",
       {{"", "TimeTable_weekend.csv", "timetable_WEEKEND.csv"}}},
      {"a program folder and its information folder in another case",
       {{"", "Program_ads", "PROGRAM_ADS"},
        {"", "PROGRAM_ADS/information", "PROGRAM_ADS/Information"}}},
      {"the content folder and a content file in another case",
       {{"", "contents", "Contents"}, {"", "Contents/photo.jpeg", "Contents/PHOTO.Jpeg"}}},
      {"names in cells padded with a blank or a dot",
       {{"Schedule.csv", "TimeTable_weekend.csv", "TimeTable_weekend.csv "},
        {"平日.csv", "Program_ads", "Program_ads."},
        {"TimeTable_weekend.csv", "Program_ads", "Program_ads."},
        {"Program_ads/playlist_1.csv", "_001.csv", "_001.csv  "},
        {"Program_ads/playlist_1.csv", "_002.csv", "_002.csv."}}},
      {"a step through a folder that is not there",
       {{"Program_ads/playlist_1.csv", "contents_1_001", "old\\\\..\\\\contents_1_001"},
        {"Program_ads/playlist_1.csv", "information\\\\contents_1_002",
         "information/./contents_1_002"}}},
  };
  for (const auto& [what, changes] : cases) {
    RemoveAll(project_), RemoveAll(zip_);
    fs::copy(pristine, project_, fs::copy_options::recursive);
    for (const auto& [file, from, to] : changes) {
      std::string bytes = file.empty() ? "" : ReadFile(p_.Path(file));
      file.empty() ? fs::rename(p_.Path(from), p_.Path(to))
                   : WriteFile(p_.Path(file), bytes.replace(bytes.find(from), from.size(), to));
    }
    EXPECT_EQ(Package().status, 0) << what;
    EXPECT_EQ(Members(zip_), reference) << what;
  }
  // The project folder named in another case.
  RemoveAll(zip_);
  EXPECT_EQ(Package(scratch_.Sub("PROJECT")).status, 0);
  EXPECT_EQ(Members(zip_), reference);
}

// What a copy of a downloaded project leaves beside each file is no second schedule; of two
// interrupt files the first in NTFS order is named, whatever their case.
TEST_F(WindowsProjects, ListingAsWindowsGivesIt) {
  BuildTimeTableProject(p_);
  p_.File("Schedule.csv:Zone.Identifier", "[ZoneTransfer]\r\nZoneId=3\r\n");
  p_.File("Interrupt_x.csv:Zone.Identifier", "");
  EXPECT_TRUE(Package().status == 0 && Exists(zip_));
  p_.File("Interrupt_Fire.csv", ""), p_.File("Interrupt_alarm.csv", "");
  EXPECT_EQ(Check().status, 2);
  const XmlNode files = Report().At("CheckInfo").At("CheckFileInfo");
  ASSERT_EQ(files.All("CheckFile").size(), 4u);
  EXPECT_EQ(files.children.back().Attr("src"), project_ + "\\Interrupt_alarm.csv");
}

// A "/" inside a name from a project file is part of that name, as on Windows: a program kept in a
// subfolder still finds its playlists and contents.  Content kept beside the project
// ("..\..\media\logo.png" from a program folder) goes into the package, and its playlist names it.
TEST_F(WindowsProjects, SlashInsideANameAndContentBesideTheProject) {
  p_.OneProgram("Programs/Lobby", {.panes = {Pane{1}}});
  p_.Playlist("Programs/Lobby", 1, {MovieItem("clip.mp4")});
  p_.Content("clip.mp4", kMovieBytes);
  ASSERT_EQ(Package().status, 0);
  EXPECT_EQ(Doc("QvP/PG1/PG1.xml").Attr("i") + Doc("QvP/PG1/PL1.xml").At("m").Attr("rc"), "PG1CT1");
  EXPECT_EQ(ReadFile(Extracted() + "/QvC/CT1.mp4"), kMovieBytes);

  RemoveAll(project_), RemoveAll(zip_), RemoveAll(scratch_.Sub("extracted"));
  p_.OneProgram("Program_1", {.panes = {Pane{1}}});
  Item shared = ImageItem("x");
  shared.path_cell = "..\\..\\media\\logo.png";
  p_.Playlist("Program_1", 1, {shared, MovieItem("clip.mp4")});
  p_.Content("clip.mp4", kMovieBytes);
  WriteFile(scratch_.Sub("media/logo.png"), "shared logo");
  ASSERT_EQ(Package().status, 0);
  EXPECT_EQ(
      (Unzip(zip_, scratch_.Sub("beside")), Contents(scratch_.Sub("beside/QvFormat/QvC"))),
      (std::vector<std::string>{"CT1.png=shared logo", "CT2.mp4=" + std::string(kMovieBytes)}));
}

// Content copies keep the times of the user's files, both ways, and a folder made on the way back
// where one of another case stands is that folder.
TEST_F(WindowsProjects, CopiesKeepTheirTimesAndFoldersAreNotMadeTwice) {
  BuildCleanProject(p_);
  const time_t when = 1614834368;  // 2021-03-04, an even second for the zip's clock
  const struct timespec times[2] = {{when, 0}, {when, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, p_.Path("contents/オープニング.mp4").c_str(), times, 0), 0);
  ASSERT_EQ(Package().status, 0);
  auto mtime = [](const std::string& path) {
    struct stat st;
    return ::stat(path.c_str(), &st) == 0 ? st.st_mtim.tv_sec : 0;
  };
  EXPECT_NEAR(mtime(Extracted() + "/QvC/CT3.mp4"), when, 2);
  const std::string back = scratch_.Sub("back");
  MakeDirs(back + "/Contents");
  ASSERT_EQ(Unpackage(zip_, back).status, 0);
  EXPECT_FALSE(Exists(back + "/contents")) << "the contents go into the folder that is there";
  EXPECT_NEAR(mtime(back + "/Contents/CT3.mp4"), when, 2);
  EXPECT_EQ(ReadFile(back + "/Contents/CT3.mp4"), kMovieBytes);
}

// The archive tool knows nothing of case: it is given the package and the destination as the
// program finds them, so a package typed in another case opens, into the folder that is there; a
// plain archive typed so removes the folder that is there, and the tool makes it again as typed.
TEST_F(WindowsProjects, PackageAndDestinationTypedInAnotherCaseOpen) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  fs::rename(zip_, scratch_.Sub("pkg.zip"));
  const std::string back = scratch_.Sub("Back");
  MakeDirs(back);
  ASSERT_EQ(Unpackage(scratch_.Sub("PKG.ZIP"), scratch_.Sub("BACK")).status, 0);
  EXPECT_FALSE(Exists(scratch_.Sub("BACK")));
  EXPECT_EQ(ReadFile(back + "/contents/CT3.mp4"), kMovieBytes);

  ZipFolderContents(back, scratch_.Sub("plain.zip"));
  WriteFile(back + "/stale.txt", "stale");
  ASSERT_EQ(Unpackage(scratch_.Sub("Plain.Zip"), scratch_.Sub("BACK")).status, 0);
  EXPECT_FALSE(Exists(back) || Exists(scratch_.Sub("BACK/stale.txt")));
  EXPECT_EQ(ReadFile(scratch_.Sub("BACK/contents/CT3.mp4")), kMovieBytes);
}

// How a tool writes a path with "/" between folders (UTF-8) into a zip: in code page 932, with
// "\" (and the UTF-8 flag), or both.
enum Style { kExplorer = 1, kPowerShell = 2, kBoth = 3 };

class ArchiveNames : public BlackBoxTest {
 protected:
  // The files below `folder` zipped in `style` into windows_zip_.
  void ZipAs(Style style, const std::string& folder) {
    std::vector<ZipEntry> entries;
    for (const std::string& file : FilesBelow(folder)) {
      const std::string name = style & kPowerShell ? Replaced(file, "/", "\\") : file;
      entries.push_back({style & kExplorer ? Cp932(name) : name, ReadFile(folder + "/" + file), 0,
                         style == kPowerShell});
    }
    WriteFile(windows_zip_, StoredZip(entries));
  }

  std::string dest_ = scratch_.Sub("dest"), windows_zip_ = scratch_.Sub("windows.zip");
};

// Not a time table, program or content file is lost on the way.
TEST_F(ArchiveNames, ProjectZippedOnWindowsOpensWholeAndConverts) {
  BuildCleanProject(p_);
  ASSERT_EQ(Package().status, 0);
  const std::vector<std::string> members = ZipMembers(zip_);
  for (const Style style : {kExplorer, kPowerShell, kBoth}) {
    ZipAs(style, project_);
    ASSERT_EQ(Unpackage(windows_zip_, dest_).status, 0) << style;
    EXPECT_EQ(Contents(dest_), Contents(project_)) << style;
    RemoveAll(zip_);
    ASSERT_EQ(RunQv({dest_, "-package" + zip_}, RunEnv(temp_)).status, 0) << style;
    EXPECT_EQ(ZipMembers(zip_), members) << style;
  }
}

// The tool writes a link that climbs as an empty file; the other links are not kept.
TEST_F(ArchiveNames, HostileNamesStayInside) {
  const std::string deep = scratch_.Sub("a/b/dest");
  WriteFile(scratch_.Sub("secret.txt"), "secret");
  WriteFile(windows_zip_, StoredZip({{"..\\..\\x1", "1"},
                                     {"C:\\x2", "2"},
                                     {"\\x3", "3"},
                                     {"../x4", "4"},
                                     {"/x5", "5"},
                                     {"\\\\srv\\share\\x6", "6"},
                                     {"in\\..\\..\\..\\x7", "7"},
                                     {"lnk", "/", 0120777},
                                     {"lnk\\x8", "8"},
                                     {"secret", "../../../secret.txt", 0120777},
                                     {"..\\..\\secret.txt", "9"}}));
  ASSERT_EQ(Unpackage(windows_zip_, deep).status, 0);
  EXPECT_EQ(Contents(deep),
            (std::vector<std::string>{"in/x7=7", "lnk/x8=8", "secret=", "secret.txt=9",
                                      "srv/share/x6=6", "x1=1", "x2=2", "x3=3", "x4=4", "x5=5"}));
  EXPECT_EQ(ReadFile(scratch_.Sub("secret.txt")), "secret");
  for (const std::string& file : FilesBelow(scratch_.path()))
    EXPECT_TRUE(file.starts_with("a/b/dest/") || file == "windows.zip" || file == "secret.txt")
        << file;
}

// What raw extraction left: names that are not UTF-8, a read-only file in a locked folder, and a
// name kept in its bytes since it is too long to be decoded.
TEST_F(ArchiveNames, LaterUnpackageEmptiesTheFolderWhateverItsNames) {
  WriteFile(dest_ + "/" + Cp932("平日.csv"), "old");
  WriteFile(dest_ + "/\x95\\/\xff.txt", "old");
  ::chmod((dest_ + "/\x95\\/\xff.txt").c_str(), 0444);
  ::chmod((dest_ + "/\x95\\").c_str(), 0500);
  WriteFile(windows_zip_, StoredZip({{std::string(200, '\x8a'), "long"}}));
  ASSERT_EQ(Unpackage(windows_zip_, dest_ + "/inner").status, 0);
  EXPECT_EQ(ListDir(dest_ + "/inner"), std::vector<std::string>{std::string(200, '\x8a')});
  WriteFile(windows_zip_, StoredZip({{Cp932("新.csv"), "new"}}));
  ASSERT_EQ(Unpackage(windows_zip_, dest_).status, 0);
  EXPECT_EQ(Contents(dest_), std::vector<std::string>{"新.csv=new"});
}

}  // namespace
}  // namespace qvtest
