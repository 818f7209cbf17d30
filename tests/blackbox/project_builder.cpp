#include "tests/blackbox/project_builder.h"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLString.hpp>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>

namespace qvtest {
namespace fs = std::filesystem;
using namespace xercesc;

std::string CsvBytes(const Rows& rows) {
  std::string text;
  for (const Row& row : rows) {
    for (size_t i = 0; i < row.size(); ++i) {
      if (i) text += ',';
      for (char c : row[i]) text += c == '\\' ? "\\\\" : c == ',' ? "\\," : std::string(1, c);
    }
    text += "\r\n";
  }
  return Cp932(text);
}

Row ScheduleEntry(const std::string& date, const std::string& timetable, const std::string& is_default) {
  return {date, timetable, is_default};
}
Row ProgramLine(const std::string& start, const std::string& end, const std::string& folder) {
  return {start, end, "0", folder, "0", ""};
}
Row CommandLine(const std::string& start, const std::string& type, const std::string& input) {
  return {start, "", "1", "", type, input};
}

Item MovieItem(const std::string& file, const std::string& time) {
  Item item;
  item.path_cell = "..\\contents\\" + file;
  item.time = time;
  return item;
}

Item ImageItem(const std::string& file, const std::string& effect,
               const std::string& effect_time) {
  Item item = MovieItem(file, "00:00:10");
  item.effect = effect;
  item.effect_time = effect_time;
  return item;
}

Item TelopItem(const std::string& file) { return MovieItem(file, "00:00:20"); }

Item BlankItem(const std::string& kind) {
  Item item;
  item.kind = kind;
  item.time = "00:00:03";
  return item;
}

std::string TelopText(int font_size, int mode, const std::vector<std::string>& lines) {
  std::string text = "TELOP\r\n0,0," + std::to_string(font_size) + ",0xffffff,0x000000,0,0," +
                     std::to_string(mode) + "\r\n";
  for (const auto& line : lines) text += line + "\r\n";
  return text;
}

ProjectBuilder::ProjectBuilder(std::string root) : root_(std::move(root)) { MakeDirs(root_); }

std::string ProjectBuilder::Path(std::string_view relative) const {
  return root_ + "/" + std::string(relative);
}

void ProjectBuilder::Schedule(const Rows& entries, const std::string& file, const std::string& title,
                              const std::string& add) {
  Rows rows{{title}, {add}};
  rows.insert(rows.end(), entries.begin(), entries.end());
  WriteFile(Path(file), CsvBytes(rows));
}

void ProjectBuilder::TimeTable(const std::string& file, const std::string& title, const Rows& lines) {
  Schedule(lines, file, title, "0xD4F0FF");  // the same shape: a title, a colour, the rows
}

void ProjectBuilder::Program(const std::string& folder, const ProgramSpec& spec) {
  auto s = [](int v) { return std::to_string(v); };
  Rows rows{{spec.title},
            {"0xD4F0FF", s(spec.x), s(spec.y), s(spec.width), s(spec.height), spec.play_time, "0"},
            {"0", "playlist_0.csv", s(spec.x), s(spec.y), s(spec.width), s(spec.height),
             spec.background, "false", "0", "true"}};
  for (int n = 1; n <= 8; ++n) {
    auto it = std::find_if(spec.panes.begin(), spec.panes.end(),
                           [n](const Pane& p) { return p.number == n; });
    const std::string file = "playlist_" + s(n) + ".csv";
    if (it != spec.panes.end()) {
      rows.push_back({s(n), file, s(it->x), s(it->y), s(it->width), s(it->height), spec.background, "false",
                      "0", "true"});
    } else {
      rows.push_back({s(n), file, "0", "0", "0", "0", "0x000000", "false", "0", n == 7 ? "true" : "false"});
    }
  }
  WriteFile(Path(folder + "/program.csv"), CsvBytes(rows));
}

void ProjectBuilder::Playlist(const std::string& folder, int pane, const std::vector<Item>& items) {
  Rows lines;
  for (size_t k = 1; k <= items.size(); ++k) {
    char name[64];
    std::snprintf(name, sizeof name, "contents_%d_%03zu.csv", pane, k);
    lines.push_back({std::string("information\\") + name});
    const Item& i = items[k - 1];
    const std::string& m = i.frame_move;
    Rows rows{{i.path_cell},
              {i.kind, i.time, "", "false", i.color, i.aspect, "", "0", "0", "0", i.volume, i.effect,
               i.effect_time, "0", m, m, m, m, i.end_code}};
    rows.insert(rows.end(), i.extra.begin(), i.extra.end());
    WriteFile(Path(folder + "/information/" + name), CsvBytes(rows));
  }
  WriteFile(Path(folder + "/playlist_" + std::to_string(pane) + ".csv"), CsvBytes(lines));
}

void ProjectBuilder::EmptyPlaylists(const std::string& folder, const std::vector<int>& used) {
  for (int n = 0; n <= 7; ++n) {
    if (std::find(used.begin(), used.end(), n) == used.end()) {
      WriteFile(Path(folder + "/playlist_" + std::to_string(n) + ".csv"), "");
    }
  }
}

void ProjectBuilder::Content(const std::string& name, std::string_view bytes) {
  WriteFile(Path("contents/" + name), bytes);
}

void ProjectBuilder::File(const std::string& relative, std::string_view bytes) {
  WriteFile(Path(relative), bytes);
}

const char kMovieBytes[] = "movie: not really an mp4";

std::string CleanTelopUtf8() {
  return TelopText(48, 1, {"本日はご来場ありがとうございます。", "午後六時に閉館いたします。"});
}

void BuildCleanProject(ProjectBuilder& p) {
  p.Schedule({ScheduleEntry("2035/01/01", "平日.csv", "true"),
              ScheduleEntry("2035/01/02", "TimeTable_weekend.csv"),
              ScheduleEntry("2035/01/03", "平日.csv")},
             "Schedule.csv", "サンプル スケジュール");
  p.TimeTable("平日.csv", "平日の番組表",
              {ProgramLine("09:00:00", "12:00:00", "ニュース番組"),
               ProgramLine("12:00:00", "18:00:00", "Program_ads"),
               CommandLine("18:00:00", "3", "HDMI1")});
  p.TimeTable("TimeTable_weekend.csv", "Weekend",
              {ProgramLine("10:00:00", "20:00:00", "Program_ads")});

  ProgramSpec news;
  news.title = "ニュース";
  news.panes = {Pane{1, 0, 0, 1920, 900}, Pane{5, 0, 900, 1920, 180}};
  p.Program("ニュース番組", news);
  Item movie = MovieItem("オープニング.mp4");
  movie.volume = "80";
  Item logo = ImageItem("ロゴ.png");
  logo.color = "0xffffff";
  logo.aspect = "1";
  Item photo = ImageItem("photo.jpeg", "258", "1000");  // wipe, upwards
  photo.aspect = "2";
  p.Playlist("ニュース番組", 1, {movie, logo, photo});
  p.Playlist("ニュース番組", 5, {TelopItem("お知らせ.tlp")});
  p.EmptyPlaylists("ニュース番組", {1, 5});

  ProgramSpec ads;
  ads.title = "Advertising";
  ads.background = "0x000000";
  ads.panes = {Pane{1, 0, 0, 1920, 1080}};
  p.Program("Program_ads", ads);
  p.Playlist("Program_ads", 1, {ImageItem("ロゴ.png"), BlankItem()});
  p.EmptyPlaylists("Program_ads", {1});

  p.Content("オープニング.mp4", kMovieBytes);
  p.Content("ロゴ.png", "logo");
  p.Content("photo.jpeg", "photo");
  p.Content("お知らせ.tlp", Cp932(CleanTelopUtf8()));
}

void BuildTimeTableProject(ProjectBuilder& p) {
  p.Schedule({ScheduleEntry("2035/01/01", "TimeTable_a.csv", "true"),
              ScheduleEntry("2035/01/02", "時間表b.csv")});
  p.TimeTable("TimeTable_a.csv", "Morning", {CommandLine("06:00:00", "1", "")});
  p.TimeTable("時間表b.csv", "夜", {CommandLine("22:00:00", "2", "VIDEO1")});
}

std::string DateFromToday(int days) {
  const std::time_t when = std::time(nullptr) + static_cast<std::time_t>(days) * 86400;
  std::tm tm{};
  localtime_r(&when, &tm);
  char buffer[32];
  std::strftime(buffer, sizeof buffer, "%Y/%m/%d", &tm);
  return buffer;
}

std::string XmlNode::Attr(const std::string& attr) const {
  auto it = attrs.find(attr);
  return it == attrs.end() ? std::string() : it->second;
}

std::vector<const XmlNode*> XmlNode::All(const std::string& child) const {
  std::vector<const XmlNode*> out;
  for (const auto& c : children) {
    if (c.name == child) out.push_back(&c);
  }
  return out;
}

const XmlNode& XmlNode::At(const std::string& child) const {
  static const XmlNode empty;
  const auto all = All(child);
  if (all.empty()) ADD_FAILURE() << "<" << name << "> has no child <" << child << ">";
  return all.empty() ? empty : *all[0];
}

std::string Outline(const XmlNode& node, int depth) {
  std::string out = std::string(depth, ' ') + node.name;
  for (const auto& [k, v] : node.attrs) out += " " + k + "=" + v;
  if (node.text.find_first_not_of(" \t\r\n") != std::string::npos) out += ": " + node.text;
  out += "\n";
  for (const auto& child : node.children) out += Outline(child, depth + 1);
  return out;
}

namespace {

std::string Utf8(const XMLCh* text) {
  return text ? U8(reinterpret_cast<const char16_t*>(text)) : std::string();
}

XmlNode Convert(const DOMElement* element) {
  XmlNode node;
  node.name = Utf8(element->getTagName());
  const DOMNamedNodeMap* attrs = element->getAttributes();
  for (XMLSize_t i = 0; attrs && i < attrs->getLength(); ++i) {
    const DOMNode* a = attrs->item(i);
    node.attrs[Utf8(a->getNodeName())] = Utf8(a->getNodeValue());
  }
  const DOMNodeList* kids = element->getChildNodes();
  for (XMLSize_t i = 0; i < kids->getLength(); ++i) {
    const DOMNode* k = kids->item(i);
    if (k->getNodeType() == DOMNode::ELEMENT_NODE) {
      node.children.push_back(Convert(static_cast<const DOMElement*>(k)));
    } else if (k->getNodeType() == DOMNode::TEXT_NODE) {
      node.text += Utf8(k->getNodeValue());
    }
  }
  return node;
}

}  // namespace

XmlNode ParseXml(const std::string& path) {
  static const bool started = (XMLPlatformUtils::Initialize(), true);  // for the whole program
  (void)started;
  XercesDOMParser parser;
  HandlerBase handler;
  parser.setErrorHandler(&handler);
  parser.setDoNamespaces(true);
  DOMDocument* doc = nullptr;
  try {
    parser.parse(path.c_str());
    doc = parser.getDocument();
  } catch (...) {
  }
  if (!doc || !doc->getDocumentElement()) {
    ADD_FAILURE() << "no well-formed XML document in " << path;
    return {};
  }
  return Convert(doc->getDocumentElement());
}

void Unzip(const std::string& zip, const std::string& folder) {
  RunResult r = Run({"7za", "x", "-y", zip, "-o" + folder});
  ASSERT_EQ(r.status, 0) << r.output;
}

std::vector<std::string> FilesBelow(const std::string& folder) {
  std::vector<std::string> out;
  std::error_code ec;
  for (auto it = fs::recursive_directory_iterator(folder, ec);
       !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
    if (it->is_regular_file()) out.push_back(fs::relative(it->path(), folder).string());
  }
  std::sort(out.begin(), out.end());
  return out;
}

std::vector<std::string> WorkFolders(const std::string& temp) {
  return IsDir(temp + "/QvConv") ? ListDir(temp + "/QvConv") : std::vector<std::string>{};
}

std::vector<std::string> RunEnv(const std::string& temp, const std::string& locale) {
  MakeDirs(temp);
  return {"TMPDIR=" + temp, "LC_ALL=" + locale, "LANG=" + locale, "LC_MESSAGES=" + locale};
}

RunResult BlackBoxTest::Package(const std::string& input) {
  return RunQv({input.empty() ? project_ : input, "-package" + zip_}, RunEnv(temp_, locale_));
}
RunResult BlackBoxTest::Check(const std::string& input) {
  return RunQv({input.empty() ? project_ : input, "-check" + report_}, RunEnv(temp_, locale_));
}
RunResult BlackBoxTest::Unpackage(const std::string& zip, const std::string& destination) {
  return RunQv({zip, "-unpackage" + destination}, RunEnv(temp_, locale_));
}

std::string BlackBoxTest::Extracted() {
  if (extracted_.empty()) {
    extracted_ = scratch_.Sub("extracted");
    MakeDirs(extracted_);
    Unzip(zip_, extracted_);
  }
  return extracted_ + "/QvFormat";
}

}  // namespace qvtest
