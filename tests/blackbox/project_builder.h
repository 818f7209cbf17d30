// CSV projects for the black-box tests as an authoring tool writes them (code page 932, CR LF,
// "\\" and "\," escapes), and reading back what the program made: XML, zip files, CSV.
#ifndef QV_TESTS_BLACKBOX_PROJECT_BUILDER_H_
#define QV_TESTS_BLACKBOX_PROJECT_BUILDER_H_

#include <map>

#include "tests/support/test_support.h"

namespace qvtest {

using Row = std::vector<std::string>;
using Rows = std::vector<Row>;
using Cell = const std::string&;  // a field in UTF-8

// A whole CSV file: fields given in UTF-8, escaped, in code page 932, CR LF.
std::string CsvBytes(const Rows& rows);
inline Row ScheduleEntry(Cell date, Cell timetable, Cell is_default = "false") {
  return {date, timetable, is_default};
}
inline Row ProgramLine(Cell start, Cell end, Cell folder) {
  return {start, end, "0", folder, "0", ""};
}
inline Row CommandLine(Cell start, Cell type, Cell input) {
  return {start, "", "1", "", type, input};
}

// A playlist item: line 1 of its contents file ("..\\contents\\a.mp4", empty for a blank), line 2
// (19 columns that pass the check), further lines.
struct Item {
  std::string path_cell = {}, kind = "1", time = "00:00:10";
  std::string color = "0x000000";  // empty: transparent, refused by the check
  std::string aspect = "0", volume = "100", effect = "0", effect_time = "0";
  std::string frame_move = "-1", end_code = "11";  // frame_move: columns 14 to 17
  Rows extra = {};
};
inline Item MovieItem(Cell file, Cell time = "00:00:30") {
  return {.path_cell = "..\\contents\\" + file, .time = time};
}
inline Item ImageItem(Cell file, Cell effect = "0", Cell effect_time = "0") {
  return {.path_cell = "..\\contents\\" + file, .effect = effect, .effect_time = effect_time};
}
inline Item TelopItem(Cell file) { return MovieItem(file, "00:00:20"); }
inline Item BlankItem(Cell kind = "8") { return {.kind = kind, .time = "00:00:03"}; }

struct Pane {  // a pane in use
  int number = 1, x = 0, y = 0, width = 1920, height = 1080;
};
struct ProgramShape {
  std::string title = "Program";
  int x = 0, y = 0, width = 1920, height = 1080;
  std::string play_time = "00:10:00", background = "0x102030";
  std::vector<Pane> panes;  // the other pane lines are off
};

// A telop file in UTF-8: a header line, the parameters (font size, mode), the text lines.
std::string TelopText(int font_size, int mode, const std::vector<std::string>& lines);

class ProjectBuilder {
 public:
  explicit ProjectBuilder(std::string root) : root_(std::move(root)) { MakeDirs(root_); }
  const std::string& root() const { return root_; }
  std::string Path(std::string_view relative) const { return root_ + "/" + std::string(relative); }

  void Schedule(const Rows& entries, const std::string& file = "Schedule.csv",
                const std::string& title = "Schedule", const std::string& add = "false");
  void TimeTable(const std::string& file, const std::string& title, const Rows& lines) {
    Schedule(lines, file, title, "0xD4F0FF");  // the same shape: a title, a colour, the rows
  }
  void Program(const std::string& folder, const ProgramShape& shape);  // all nine pane lines
  // A schedule of one day whose time table TimeTable_1.csv plays `folder` from 8 to 9 o'clock.
  void OneProgram(const std::string& folder, const ProgramShape& shape) {
    Schedule({ScheduleEntry("2035/05/05", "TimeTable_1.csv", "true")});
    TimeTable("TimeTable_1.csv", "T", {ProgramLine("08:00:00", "09:00:00", folder)});
    Program(folder, shape);
  }
  // playlist_<pane>.csv and information/contents_<pane>_<k>.csv per item.
  void Playlist(const std::string& folder, int pane, const std::vector<Item>& items);
  void Content(const std::string& name, std::string_view bytes) { File("contents/" + name, bytes); }
  void File(const std::string& relative, std::string_view bytes) {
    WriteFile(Path(relative), bytes);
  }

 private:
  std::string root_;
};

// A project that the check passes, shaped like the bundled sample. The conversion numbers 平日.csv
// TM1, TimeTable_weekend.csv TM2; Program_ads PG1 (ロゴ.png CT1 and a blank, CT2), ニュース番組
// PG2 (frame: オープニング.mp4 CT3, ロゴ.png, photo.jpeg CT4 with a wipe; telop pane 5:
// お知らせ.tlp CT5 in code page 932).
void BuildCleanProject(ProjectBuilder& p);
inline constexpr char kMovieBytes[] = "movie: not really an mp4";
std::string CleanTelopUtf8();
// A schedule and two time tables of command rows only.
void BuildTimeTableProject(ProjectBuilder& p);
inline const std::string kSample = std::string(QV_SOURCE_DIR) + "/examples/sample";

struct XmlNode {
  std::string name;
  std::map<std::string, std::string> attrs;
  std::vector<XmlNode> children;  // elements only
  std::string text;

  std::string Attr(const std::string& attr) const {
    return attrs.count(attr) ? attrs.at(attr) : "";
  }
  std::vector<const XmlNode*> All(const std::string& child) const;
  const XmlNode& At(const std::string& child) const;  // the first; if none, a failure
};
// The tree as text, one element a line, indented one space a level: "name a=1 b=2: text"
// (attributes sorted, text only when not blank).
std::string Outline(const XmlNode& node, int depth = 0);
XmlNode ParseXml(const std::string& path);  // a test failure and an empty node on error
void Unzip(const std::string& zip, const std::string& folder);
// The files below a folder with the stamps of their names as "S", sorted: two runs compare.
std::vector<std::string> Unstamped(const std::string& folder);
// The work folders runs left in <temp>/QvConv; the environment of a run: TMPDIR, the C locale.
inline std::vector<std::string> WorkFolders(const std::string& temp) {
  return ListDir(temp + "/QvConv");
}
std::vector<std::string> RunEnv(const std::string& temp);

// The last line of a run's log, without its process id and line end.
std::string ExitLine(const std::string& log);

// A scratch folder with a project, an own temporary folder and places for a package and a report.
class BlackBoxTest : public ::testing::Test {
 protected:
  ScratchDir scratch_;
  std::string temp_ = scratch_.Sub("tmp"), project_ = scratch_.Sub("project");
  std::string zip_ = scratch_.Sub("out.zip"), report_ = scratch_.Sub("report.xml");
  ProjectBuilder p_{project_};

  // Runs on project_ (or `input`) with the own temporary folder.
  RunResult Package(const std::string& input = "") { return RunOn(input, "-package" + zip_); }
  RunResult Check(const std::string& input = "") { return RunOn(input, "-check" + report_); }
  RunResult Unpackage(const std::string& zip, const std::string& to) {
    return RunOn(zip, "-unpackage" + to);
  }
  // The same into a destination made first, as callers do.
  RunResult UnpackageTo(const std::string& zip, const std::string& to) {
    return MakeDirs(to), Unpackage(zip, to);
  }
  std::string Extracted();  // zip_ extracted (once): the path of its QvFormat folder
  XmlNode Doc(const std::string& relative) { return ParseXml(Extracted() + "/" + relative); }
  XmlNode Report() { return ParseXml(report_); }

 private:
  RunResult RunOn(const std::string& input, const std::string& option) {
    return RunQv({input.empty() ? project_ : input, option}, RunEnv(temp_));
  }
  std::string extracted_;
};

// Documents of a hand-written package: a schedule of one entry naming `table` (behind `inner`), a
// time table naming `program`, a program of `panes` full panes naming PL1 and on (the first
// `playlist`), a movie item.
std::string ScheduleXml(Cell name = "S", Cell inner = "", Cell table = "TM1");
std::string TableXml(Cell program = "PG1");
std::string ProgramXml(Cell playlist = "PL1", int panes = 1);
std::string MovieXml(Cell rc, Cell attr = "");

// A hand-written package in src_, packed into zip_ and opened into back_.
class HandPackageTest : public BlackBoxTest {
 protected:
  std::string src_ = scratch_.Sub("src"), back_ = scratch_.Sub("back");

  void Write(const std::string& relative, const std::string& body) {
    WriteFile(src_ + "/QvFormat/" + relative, "<?xml version=\"1.0\"?>" + body);
  }
  // A scenario afresh: the playlist PL1 of `items`, the content CT1.mp4.
  void Scenario(const std::string& items = MovieXml("CT1"), int panes = 1);
  RunResult PackAndBack() {
    RemoveAll(zip_), RemoveAll(back_), ZipFolderContents(src_, zip_);
    return UnpackageTo(zip_, back_);
  }
};

}  // namespace qvtest

#endif  // QV_TESTS_BLACKBOX_PROJECT_BUILDER_H_
