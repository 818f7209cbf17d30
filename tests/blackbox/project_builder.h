// Building CSV projects for the black-box tests, as an authoring tool writes
// them (code page 932, CR LF, "\\" and "\," escapes, UTF-8 names on disk), and
// reading back what the program made of them: XML documents, zip files, CSV.
#ifndef QV_TESTS_BLACKBOX_PROJECT_BUILDER_H_
#define QV_TESTS_BLACKBOX_PROJECT_BUILDER_H_

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/test_support.h"

namespace qvtest {

using Row = std::vector<std::string>;
using Rows = std::vector<Row>;

// A whole CSV file: fields given in UTF-8, escaped, in code page 932, CR LF.
std::string CsvBytes(const Rows& rows);

Row ScheduleEntry(const std::string& date, const std::string& timetable,
                  const std::string& is_default = "false");
Row ProgramLine(const std::string& start, const std::string& end, const std::string& folder);
Row CommandLine(const std::string& start, const std::string& type, const std::string& input);

// One playlist item: line 1 of its contents file ("..\\contents\\a.mp4", empty
// for a blank), line 2 (19 columns, values that pass the check), further lines.
struct Item {
  std::string path_cell;
  std::string kind = "1";
  std::string time = "00:00:10";
  std::string color = "0x000000";  // empty: transparent, refused by the check
  std::string aspect = "0";
  std::string volume = "100";
  std::string effect = "0";
  std::string effect_time = "0";
  std::string frame_move = "-1";  // columns 14 to 17
  std::string end_code = "11";
  Rows extra;
};
Item MovieItem(const std::string& file, const std::string& time = "00:00:30");
Item ImageItem(const std::string& file, const std::string& effect = "0",
               const std::string& effect_time = "0");
Item TelopItem(const std::string& file);
Item BlankItem(const std::string& kind = "8");

struct Pane {  // a pane in use
  int number = 1;
  int x = 0, y = 0, width = 1920, height = 1080;
};

struct ProgramSpec {
  std::string title = "Program";
  int x = 0, y = 0, width = 1920, height = 1080;
  std::string play_time = "00:10:00";
  std::string background = "0x102030";
  std::vector<Pane> panes;  // the other pane lines are off
};

// A telop file in UTF-8: a header line, the parameter line (font size, mode)
// and the text lines, CR LF after each.
std::string TelopText(int font_size, int mode, const std::vector<std::string>& lines);

class ProjectBuilder {
 public:
  explicit ProjectBuilder(std::string root);
  const std::string& root() const { return root_; }
  std::string Path(std::string_view relative) const;

  void Schedule(const Rows& entries, const std::string& file = "Schedule.csv",
                const std::string& title = "Schedule", const std::string& add = "false");
  void TimeTable(const std::string& file, const std::string& title, const Rows& lines);
  void Program(const std::string& folder, const ProgramSpec& spec);  // all nine pane lines
  // playlist_<pane>.csv and information/contents_<pane>_<k>.csv per item.
  void Playlist(const std::string& folder, int pane, const std::vector<Item>& items);
  void EmptyPlaylists(const std::string& folder, const std::vector<int>& used);
  void Content(const std::string& name, std::string_view bytes);
  void File(const std::string& relative, std::string_view bytes);

 private:
  std::string root_;
};

// A project that the check passes, shaped like the bundled sample. The
// conversion numbers 平日.csv TM1, TimeTable_weekend.csv TM2; Program_ads PG1,
// ニュース番組 PG2 (frame: オープニング.mp4 CT3, ロゴ.png CT1, photo.jpeg CT4
// with a wipe; telop pane 5: お知らせ.tlp CT5 in code page 932); Program_ads
// plays ロゴ.png and a blank (CT2).
void BuildCleanProject(ProjectBuilder& p);
extern const char kMovieBytes[];
std::string CleanTelopUtf8();

// A schedule and two time tables of command rows only.
void BuildTimeTableProject(ProjectBuilder& p);

// A date relative to today, "%04d/%02d/%02d".
std::string DateFromToday(int days);

struct XmlNode {
  std::string name;
  std::map<std::string, std::string> attrs;
  std::vector<XmlNode> children;  // elements only
  std::string text;

  std::string Attr(const std::string& attr) const;
  std::vector<const XmlNode*> All(const std::string& child) const;
  // The first child of that name; an empty node and a test failure if none.
  const XmlNode& At(const std::string& child) const;
};

// The tree as text, one element a line, indented one space a level:
// "name a=1 b=2: text" (attributes sorted, text only when not blank).
std::string Outline(const XmlNode& node, int depth = 0);

// Parses an XML file; a test failure and an empty node on error.
XmlNode ParseXml(const std::string& path);
void Unzip(const std::string& zip, const std::string& folder);
// Plain files below a folder, relative, sorted.
std::vector<std::string> FilesBelow(const std::string& folder);
// The work folders a run left in <temp>/QvConv.
std::vector<std::string> WorkFolders(const std::string& temp);
// An own temporary folder and a message language.
std::vector<std::string> RunEnv(const std::string& temp, const std::string& locale = "C");

// A scratch folder with a project, an own temporary folder and places for a
// package and a report.
class BlackBoxTest : public ::testing::Test {
 protected:
  ScratchDir scratch_;
  std::string temp_ = scratch_.Sub("tmp");
  std::string project_ = scratch_.Sub("project");
  std::string zip_ = scratch_.Sub("out.zip");
  std::string report_ = scratch_.Sub("report.xml");
  ProjectBuilder p_{project_};
  std::string locale_ = "C";

  RunResult Package(const std::string& input = "");  // input defaults to project_
  RunResult Check(const std::string& input = "");
  RunResult Unpackage(const std::string& zip, const std::string& destination);
  // zip_ extracted (once): the path of its QvFormat folder.
  std::string Extracted();
  XmlNode Doc(const std::string& relative) { return ParseXml(Extracted() + "/" + relative); }
  XmlNode Report() { return ParseXml(report_); }

 private:
  std::string extracted_;
};

}  // namespace qvtest

#endif  // QV_TESTS_BLACKBOX_PROJECT_BUILDER_H_
