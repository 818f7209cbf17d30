#include "tests/blackbox/project_builder.h"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <cstdio>

namespace qvtest {
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

std::string TelopText(int font_size, int mode, const std::vector<std::string>& lines) {
  std::string text = "TELOP\r\n0,0," + std::to_string(font_size) + ",0xffffff,0x000000,0,0," +
                     std::to_string(mode) + "\r\n";
  for (const auto& line : lines) text += line + "\r\n";
  return text;
}

void ProjectBuilder::Schedule(const Rows& entries, const std::string& file,
                              const std::string& title, const std::string& add) {
  Rows rows{{title}, {add}};
  rows.insert(rows.end(), entries.begin(), entries.end());
  File(file, CsvBytes(rows));
}

void ProjectBuilder::Program(const std::string& folder, const ProgramShape& shape) {
  auto s = [](int v) { return std::to_string(v); };
  Rows rows{
      {shape.title},
      {"0xD4F0FF", s(shape.x), s(shape.y), s(shape.width), s(shape.height), shape.play_time, "0"}};
  for (int n = 0; n <= 8; ++n) {
    // Pane 0, the background, fills the frame; panes not in use are off (but 7 says true).
    bool used = n == 0;
    Pane pane = used ? Pane{0, shape.x, shape.y, shape.width, shape.height} : Pane{n, 0, 0, 0, 0};
    for (const Pane& p : shape.panes)
      if (p.number == n) pane = p, used = true;
    rows.push_back({s(n), "playlist_" + s(n) + ".csv", s(pane.x), s(pane.y), s(pane.width),
                    s(pane.height), used ? shape.background : "0x000000", "false", "0",
                    used || n == 7 ? "true" : "false"});
  }
  File(folder + "/program.csv", CsvBytes(rows));
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
              {i.kind, i.time, "", "false", i.color, i.aspect, "", "0", "0", "0", i.volume,
               i.effect, i.effect_time, "0", m, m, m, m, i.end_code}};
    rows.insert(rows.end(), i.extra.begin(), i.extra.end());
    File(folder + "/information/" + name, CsvBytes(rows));
  }
  File(folder + "/playlist_" + std::to_string(pane) + ".csv", CsvBytes(lines));
}

std::string CleanTelopUtf8() {
  return TelopText(48, 1, {"本日はご来場ありがとうございます。", "午後六時に閉館いたします。"});
}

void BuildCleanProject(ProjectBuilder& p) {
  p.Schedule({ScheduleEntry("2035/01/01", "平日.csv", "true"),
              ScheduleEntry("2035/01/02", "TimeTable_weekend.csv"),
              ScheduleEntry("2035/01/03", "平日.csv")},
             "Schedule.csv", "サンプル スケジュール");
  p.TimeTable(
      "平日.csv", "平日の番組表",
      {ProgramLine("09:00:00", "12:00:00", "ニュース番組"),
       ProgramLine("12:00:00", "18:00:00", "Program_ads"), CommandLine("18:00:00", "3", "HDMI1")});
  p.TimeTable("TimeTable_weekend.csv", "Weekend",
              {ProgramLine("10:00:00", "20:00:00", "Program_ads")});
  Item movie = MovieItem("オープニング.mp4"), logo = ImageItem("ロゴ.png"),
       photo = ImageItem("photo.jpeg", "258", "1000");  // photo: a wipe, upwards
  movie.volume = "80", logo.color = "0xffffff", logo.aspect = "1", photo.aspect = "2";
  // The unused playlists of panes 0 to 7: empty files.
  for (const std::string folder : {"ニュース番組", "Program_ads"})
    for (int n = 0; n <= 7; ++n) p.File(folder + "/playlist_" + std::to_string(n) + ".csv", "");
  p.Program("ニュース番組",
            {.title = "ニュース", .panes = {Pane{1, 0, 0, 1920, 900}, Pane{5, 0, 900, 1920, 180}}});
  p.Playlist("ニュース番組", 1, {movie, logo, photo});
  p.Playlist("ニュース番組", 5, {TelopItem("お知らせ.tlp")});
  p.Program("Program_ads", {.title = "Advertising", .background = "0x000000", .panes = {Pane{1}}});
  p.Playlist("Program_ads", 1, {ImageItem("ロゴ.png"), BlankItem()});
  p.Content("オープニング.mp4", kMovieBytes), p.Content("ロゴ.png", "logo");
  p.Content("photo.jpeg", "photo"), p.Content("お知らせ.tlp", Cp932(CleanTelopUtf8()));
}

void BuildTimeTableProject(ProjectBuilder& p) {
  p.Schedule({ScheduleEntry("2035/01/01", "TimeTable_a.csv", "true"),
              ScheduleEntry("2035/01/02", "時間表b.csv")});
  p.TimeTable("TimeTable_a.csv", "Morning", {CommandLine("06:00:00", "1", "")});
  p.TimeTable("時間表b.csv", "夜", {CommandLine("22:00:00", "2", "VIDEO1")});
}

std::string ScheduleXml(Cell name, Cell inner, Cell table) {
  return "<qv ver=\"1.0\"><sl n=\"" + name + "\">" + inner + "<s dt=\"2035/01/01\" rt=\"" + table +
         "\" df=\"t\"/></sl></qv>";
}

std::string TableXml(Cell program) {
  return "<tt i=\"TM1\"><tl n=\"T\"><tb><pg rp=\"" + program +
         "\" st=\"08:00:00\" et=\"09:00:00\"/></tb></tl></tt>";
}

std::string ProgramXml(Cell playlist, int panes) {
  const std::string region = "<re x=\"0\" y=\"0\" w=\"1920\" h=\"1080\"/>";
  std::string xml = "<pgp i=\"PG1\" n=\"P\"><pgi pgt=\"00:10:00\">" + region + "</pgi><pai>";
  for (int i = 1; i <= panes; ++i)
    xml += "<pa>" + region + "<plf rl=\"" + (i == 1 ? playlist : "PL" + std::to_string(i)) +
           "\"/></pa>";
  return xml + "</pai></pgp>";
}

std::string MovieXml(Cell rc, Cell attr) {
  return "<m rc=\"" + rc + "\" tp=\"mp4\"" + attr + "><pt t=\"00:00:01\"/></m>";
}

void HandPackageTest::Scenario(const std::string& items, int panes) {
  RemoveAll(src_);
  Write("QvS.xml", ScheduleXml());
  Write("QvT/TM1.xml", TableXml());
  Write("QvP/PG1/PG1.xml", ProgramXml("PL1", panes));
  Write("QvP/PG1/PL1.xml", "<pl i=\"PL1\">" + items + "</pl>");
  WriteFile(src_ + "/QvFormat/QvC/CT1.mp4", "movie");
}

std::vector<const XmlNode*> XmlNode::All(const std::string& child) const {
  std::vector<const XmlNode*> out;
  for (const auto& c : children)
    if (c.name == child) out.push_back(&c);
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
  out +=
      (node.text.find_first_not_of(" \t\r\n") != std::string::npos ? ": " + node.text : "") + "\n";
  for (const auto& child : node.children) out += Outline(child, depth + 1);
  return out;
}

namespace {

std::string Utf8(const XMLCh* text) {
  return text ? U8(reinterpret_cast<const char16_t*>(text)) : std::string();
}

XmlNode Convert(const DOMElement* element) {
  XmlNode node{Utf8(element->getTagName()), {}, {}, {}};
  const DOMNamedNodeMap* attrs = element->getAttributes();
  for (XMLSize_t i = 0; attrs && i < attrs->getLength(); ++i)
    node.attrs[Utf8(attrs->item(i)->getNodeName())] = Utf8(attrs->item(i)->getNodeValue());
  for (const DOMNode* k = element->getFirstChild(); k; k = k->getNextSibling()) {
    if (k->getNodeType() == DOMNode::ELEMENT_NODE)
      node.children.push_back(Convert(static_cast<const DOMElement*>(k)));
    if (k->getNodeType() == DOMNode::TEXT_NODE) node.text += Utf8(k->getNodeValue());
  }
  return node;
}

}  // namespace

XmlNode ParseXml(const std::string& path) {
  [[maybe_unused]] static const bool started =
      (XMLPlatformUtils::Initialize(), true);  // for the whole program
  XercesDOMParser parser;
  HandlerBase handler;
  parser.setErrorHandler(&handler);
  parser.setDoNamespaces(true);
  try {
    parser.parse(path.c_str());
    const DOMDocument* doc = parser.getDocument();
    if (doc && doc->getDocumentElement()) return Convert(doc->getDocumentElement());
  } catch (...) {
  }
  ADD_FAILURE() << "no well-formed XML document in " << path;
  return {};
}

void Unzip(const std::string& zip, const std::string& folder) {
  ASSERT_EQ(RunProgram({"7za", "x", "-y", zip, "-o" + folder}).status, 0) << zip;
}

std::string ExitLine(const std::string& log) {
  const std::size_t start = log.rfind('\n', log.size() - 2) + 1;
  const std::size_t text = log.find("] ", start) + 2;
  return log.size() < 2 || text < 2 ? "" : log.substr(text, log.size() - text - 1);
}

std::vector<std::string> RunEnv(const std::string& temp) {
  MakeDirs(temp);
  return {"TMPDIR=" + temp, "LC_ALL=C", "LANG=C", "LC_MESSAGES=C"};
}

std::string BlackBoxTest::Extracted() {
  if (extracted_.empty()) MakeDirs(extracted_ = scratch_.Sub("extracted")), Unzip(zip_, extracted_);
  return extracted_ + "/QvFormat";
}

std::vector<std::string> Unstamped(const std::string& folder) {
  std::vector<std::string> out;
  for (const std::string& file : FilesBelow(folder)) out.push_back(ReplaceStamps(file, "S"));
  std::sort(out.begin(), out.end());
  return out;
}

}  // namespace qvtest
