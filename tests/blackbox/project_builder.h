// Building CSV projects for the black-box tests, and reading back what the
// program made of them.
//
// A project is written the way an authoring tool writes it: every CSV file in
// code page 932 with CR LF line ends, fields escaped with backslashes (a
// backslash as "\\", a comma as "\,"), file and folder names in UTF-8 on disk.
// Fields are given in UTF-8 and converted on the way out.
//
// The reading side parses XML documents (the package's documents and the check
// report) into a small tree, extracts zip files with 7za and reads CSV files
// back into rows.
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

// ---- Writing projects ------------------------------------------------------

// One field with its backslashes and commas escaped.
std::string EscapeField(std::string_view field);
// The bytes of a whole CSV file: escaped fields, code page 932, CR LF after
// every line.
std::string CsvBytes(const Rows& rows);
void WriteCsv(const std::string& path, const Rows& rows);

// A data line of a schedule file.
Row ScheduleEntry(const std::string& date, const std::string& timetable,
                  const std::string& is_default = "false");
// A data line of a time table that starts a program (kind "0").
Row ProgramLine(const std::string& start, const std::string& end, const std::string& folder);
// A data line of a time table that runs a command (kind "1").
Row CommandLine(const std::string& start, const std::string& type, const std::string& input);

// Line 2 of a contents file, 19 columns, with the values that pass the check.
struct ItemLine {
  std::string kind = "1";
  std::string time = "00:00:10";
  std::string color = "0x000000";  // empty: transparent, refused by the check
  std::string aspect = "0";
  std::string volume = "100";
  std::string effect = "0";
  std::string effect_time = "0";
  std::string frame_move = "-1";  // columns 14 to 17
  std::string end_code = "11";
  Row ToRow() const;
};

// One item of a playlist: the cell of line 1 of its contents file, its line 2,
// and any further lines (attached files).
struct Item {
  std::string path_cell;  // e.g. "..\\contents\\a.mp4"; empty for a blank
  ItemLine line;
  Rows extra;
};
Item MovieItem(const std::string& file, const std::string& time = "00:00:30");
Item ImageItem(const std::string& file, const std::string& effect = "0",
               const std::string& effect_time = "0");
Item TelopItem(const std::string& file);
Item BlankItem(const std::string& kind = "8");

// A pane line of a program file.
struct Pane {
  int number = 1;
  int x = 0, y = 0, width = 1920, height = 1080;
  std::string in_use = "true";  // column 9
};

struct ProgramSpec {
  std::string title = "Program";
  int x = 0, y = 0, width = 1920, height = 1080;
  std::string play_time = "00:10:00";
  std::string background = "0x102030";
  std::vector<Pane> panes;  // lines of the panes given; the others are off
};

// The telop file text: a header line, the parameter line (font size in field
// 2, mode in field 7) and the text lines, CR LF after each, in UTF-8 (convert
// with Cp932 for a code page 932 telop).
std::string TelopText(int font_size, int mode, const std::vector<std::string>& lines);

class ProjectBuilder {
 public:
  explicit ProjectBuilder(std::string root);
  const std::string& root() const { return root_; }
  std::string Path(std::string_view relative) const;

  void Schedule(const Rows& entries, const std::string& file = "Schedule.csv",
                const std::string& title = "Schedule", const std::string& add = "false");
  void TimeTable(const std::string& file, const std::string& title, const Rows& lines);
  // program.csv of a program folder, with all nine pane lines.
  void Program(const std::string& folder, const ProgramSpec& spec);
  // playlist_<pane>.csv in the folder and information/contents_<pane>_<k>.csv
  // for each item.
  void Playlist(const std::string& folder, int pane, const std::vector<Item>& items);
  // Empty playlist_<n>.csv for every n from 0 to 7 that is not in `used`.
  void EmptyPlaylists(const std::string& folder, const std::vector<int>& used);
  // A file below contents/.
  void Content(const std::string& name, std::string_view bytes);
  void File(const std::string& relative, std::string_view bytes);

 private:
  std::string root_;
};

// A whole project that the check passes: the shape of the bundled sample.
//   Schedule.csv -> 平日.csv (ニュース番組, Program_ads, a command row),
//                   TimeTable_weekend.csv (Program_ads)
//   Program_ads:  frame playlist: ロゴ.png, a blank (kind 8)
//   ニュース番組: frame playlist: オープニング.mp4, ロゴ.png, photo.jpeg with a
//                 wipe; telop playlist: お知らせ.tlp in code page 932
// Identifiers the conversion gives: TimeTable_weekend.csv TM2, 平日.csv TM1;
// Program_ads PG1, ニュース番組 PG2; ロゴ.png CT1, the blank CT2,
// オープニング.mp4 CT3, photo.jpeg CT4, お知らせ.tlp CT5.
void BuildCleanProject(ProjectBuilder& p);
// The content bytes of BuildCleanProject, by file name.
extern const char kMovieBytes[];
extern const char kLogoBytes[];
extern const char kPhotoBytes[];
// The telop text of BuildCleanProject, in UTF-8.
std::string CleanTelopUtf8();

// A project of a schedule and time tables only, whose time tables run
// commands only: nothing below the time tables is needed.
void BuildTimeTableProject(ProjectBuilder& p);

// A date relative to today, "%04d/%02d/%02d".
std::string DateFromToday(int days);
// A time of day relative to now, "%02d:%02d:%02d", clamped to today.
std::string TimeFromNow(int seconds);

// ---- Reading results back --------------------------------------------------

struct XmlNode {
  std::string name;
  std::map<std::string, std::string> attrs;
  std::vector<XmlNode> children;  // elements only, in document order
  std::string text;               // text content, concatenated

  bool Has(const std::string& attr) const { return attrs.count(attr) != 0; }
  std::string Attr(const std::string& attr) const;
  // Children with that element name.
  std::vector<const XmlNode*> All(const std::string& child) const;
  // The first child with that name, or null.
  const XmlNode* First(const std::string& child) const;
  // The first child with that name; an empty node (and a test failure) when
  // there is none, so that chains of lookups never crash.
  const XmlNode& At(const std::string& child) const;
  // Child element number i; an empty node (and a test failure) past the end.
  const XmlNode& Nth(size_t i) const;
};

// Parses an XML file; fails the test (and returns an empty node) on error.
XmlNode ParseXml(const std::string& path);

// Extracts a zip file into a folder with 7za.
void Unzip(const std::string& zip, const std::string& folder);

// Reads a CSV file in code page 932 back into rows of UTF-8 fields
// (unescaped). Fails the test on a line end other than CR LF.
Rows ReadCsv(const std::string& path);

// All plain files below a folder, as relative paths with "/", sorted.
std::vector<std::string> FilesBelow(const std::string& folder);

// The folders a run left in the temporary folder's "QvConv".
std::vector<std::string> WorkFolders(const std::string& temp);

// The environment for a run: an own temporary folder and a message language.
std::vector<std::string> RunEnv(const std::string& temp, const std::string& locale = "C");

// ---- A fixture for whole runs ------------------------------------------------

// A scratch folder with a project folder, an own temporary folder for the
// program (so that its work folders can be watched) and places for a package,
// a report and extracted results.
class BlackBoxTest : public ::testing::Test {
 protected:
  ScratchDir scratch_;
  std::string temp_ = scratch_.Sub("tmp");
  std::string project_ = scratch_.Sub("project");
  std::string zip_ = scratch_.Sub("out.zip");
  std::string report_ = scratch_.Sub("report.xml");
  ProjectBuilder p_{project_};
  std::string locale_ = "C";

  // qvConvApp <input> -package<zip_>; the input defaults to project_.
  RunResult Package(const std::string& input = "");
  // qvConvApp <input> -check<report_>.
  RunResult Check(const std::string& input = "");
  // qvConvApp <zip> -unpackage<destination>.
  RunResult Unpackage(const std::string& zip, const std::string& destination);
  // Extracts zip_ (once) and returns the path of its QvFormat folder.
  std::string Extracted();
  XmlNode Doc(const std::string& relative) { return ParseXml(Extracted() + "/" + relative); }
  XmlNode Report() { return ParseXml(report_); }

 private:
  std::string extracted_;
};

}  // namespace qvtest

#endif  // QV_TESTS_BLACKBOX_PROJECT_BUILDER_H_
