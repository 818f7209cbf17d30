#include "tests/support/test_support.h"

#include <iconv.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <regex>
#include <sstream>

namespace qvtest {
namespace fs = std::filesystem;

namespace {

thread_local std::error_code ignored;  // of calls whose failure the test sees otherwise

std::string Convert(std::string_view in, const char* to, const char* from) {
  std::string out(in.size() * 4 + 16, '\0');
  char *src = const_cast<char*>(in.data()), *dst = out.data();
  std::size_t src_left = in.size(), dst_left = out.size();
  iconv_t cd = iconv_open(to, from);
  if (cd == reinterpret_cast<iconv_t>(-1) ||
      iconv(cd, &src, &src_left, &dst, &dst_left) == static_cast<std::size_t>(-1))
    ADD_FAILURE() << "iconv cannot convert text from " << from << " to " << to;
  if (cd != reinterpret_cast<iconv_t>(-1)) iconv_close(cd);
  out.resize(out.size() - dst_left);
  return out;
}

}  // namespace

ScratchDir::ScratchDir() {
  const char* temp = std::getenv("TMPDIR");
  path_ = fs::path(temp && *temp ? temp : "/tmp") / "qvtest-XXXXXX";
  if (::mkdtemp(path_.data()) == nullptr) ADD_FAILURE() << "cannot make " << path_, path_.clear();
}

ScratchDir::~ScratchDir() {
  if (!path_.empty()) {
    // Make everything writable first: tests leave read-only files behind.
    std::error_code ec;
    for (auto it = fs::recursive_directory_iterator(path_, ec);
         !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
      fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
    }
    fs::remove_all(path_, ec);
  }
}

std::string ScratchDir::Sub(std::string_view relative) const {
  return path_ + "/" + std::string(relative);
}

void WriteFile(const std::string& path, std::string_view bytes) {
  if (fs::path(path).has_parent_path()) MakeDirs(fs::path(path).parent_path());
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) ADD_FAILURE() << "cannot write " << path;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) ADD_FAILURE() << "cannot read " << path;
  std::ostringstream s;
  s << in.rdbuf();
  return in ? s.str() : "";
}

bool Exists(const std::string& path) {
  struct stat st;
  return ::lstat(path.c_str(), &st) == 0;
}
bool IsDir(const std::string& path) { return fs::is_directory(path, ignored); }
void MakeDirs(const std::string& path) { fs::create_directories(path, ignored); }
void RemoveAll(const std::string& path) { fs::remove_all(path, ignored); }

std::vector<std::string> ListDir(const std::string& path) {
  std::vector<std::string> names;
  for (const auto& e : fs::directory_iterator(path, ignored))
    names.push_back(e.path().filename().string() + (e.is_directory() ? "/" : ""));
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> FilesBelow(const std::string& folder) {
  std::vector<std::string> out;
  std::error_code ec;
  for (auto it = fs::recursive_directory_iterator(folder, ec);
       !ec && it != fs::recursive_directory_iterator(); it.increment(ec))
    if (it->is_regular_file()) out.push_back(fs::relative(it->path(), folder).string());
  std::sort(out.begin(), out.end());
  return out;
}

std::vector<std::string> Contents(const std::string& folder) {
  std::vector<std::string> out;
  for (const std::string& file : FilesBelow(folder))
    out.push_back(file + "=" + ReadFile(folder + "/" + file));
  return out;
}

std::string Cp932(std::string_view utf8) { return Convert(utf8, "CP932", "UTF-8"); }
std::string Utf8FromCp932(std::string_view cp932) { return Convert(cp932, "UTF-8", "CP932"); }

std::string Utf16Le(std::string_view utf8) {
  return "\xFF\xFE" + Convert(utf8, "UTF-16LE", "UTF-8");
}

std::u16string U16(std::string_view utf8) {
  std::string bytes = Convert(utf8, "UTF-16LE", "UTF-8");
  std::u16string out(bytes.size() / 2, u'\0');
  std::memcpy(out.data(), bytes.data(), out.size() * 2);
  return out;
}

std::string U8(std::u16string_view text) {
  std::string_view bytes(reinterpret_cast<const char*>(text.data()), text.size() * 2);
  return Convert(bytes, "UTF-8", "UTF-16LE");
}

RunResult RunProgram(const std::vector<std::string>& args, const std::vector<std::string>& env) {
  // Through the shell and env(1), which sets the entries (PATH among them, also for the search),
  // every word quoted whole; standard error joins standard output.
  std::string command = "exec env --";
  for (const auto* words : {&env, &args})
    for (const std::string& word : *words) command += " '" + Replaced(word, "'", "'\\''") + "'";
  RunResult result;
  FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
  char buffer[4096];
  for (std::size_t n; pipe && (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
    result.output.append(buffer, n);
  const int status = pipe ? ::pclose(pipe) : -1;
  if (status != -1 && WIFEXITED(status)) result.status = WEXITSTATUS(status);
  return result;
}

RunResult RunQv(const std::vector<std::string>& args, const std::vector<std::string>& env) {
  std::vector<std::string> full{QV_BINARY};
  full.insert(full.end(), args.begin(), args.end());
  return RunProgram(full, env);
}

// The stamp of a written project name: "YYYYMMDD_hhmmss".
const std::regex& StampPattern() {
  static const std::regex stamp("[0-9]{8}_[0-9]{6}");
  return stamp;
}

std::string ReplaceStamps(std::string text, const std::string& with) {
  return std::regex_replace(text, StampPattern(), with);
}

std::string FirstStamp(const std::string& text) {
  std::smatch match;
  return std::regex_search(text, match, StampPattern()) ? match.str() : std::string();
}

std::string EraseAll(std::string text, const std::vector<std::string>& pieces) {
  for (const std::string& piece : pieces) text = Replaced(text, piece, "");
  return text;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; !from.empty() && (at = text.find(from, at)) != std::string::npos;
       at += to.size())
    text.replace(at, from.size(), to);
  return text;
}

std::tm Tm(int year, int month, int day, int hour, int minute, int second) {
  std::tm t{};
  t.tm_year = year - 1900, t.tm_mon = month - 1, t.tm_mday = day;
  t.tm_hour = hour, t.tm_min = minute, t.tm_sec = second;
  return t;
}

std::string DateFromToday(int days) {
  const std::time_t when = std::time(nullptr) + static_cast<std::time_t>(days) * 86400;
  std::tm tm{};
  char buffer[32];
  return std::string(buffer,
                     std::strftime(buffer, sizeof buffer, "%Y/%m/%d", localtime_r(&when, &tm)));
}

void ZipFolderContents(const std::string& folder, const std::string& zip) {
  // 7za stores entries relative to the current folder when given "*".
  const RunResult r = RunProgram(
      {"sh", "-c", "cd \"$0\" && 7za a -r -tzip \"$1\" '*'", folder, fs::absolute(zip).string()});
  ASSERT_EQ(r.status, 0) << r.output;
}

std::vector<std::string> ZipMembers(const std::string& zip) {
  std::istringstream lines(RunProgram({"7za", "l", "-slt", "-ba", zip}).output);
  std::vector<std::string> names;
  for (std::string line; std::getline(lines, line);)
    if (line.rfind("Path = ", 0) == 0) names.push_back(Replaced(line.substr(7), "\\", "/"));
  std::sort(names.begin(), names.end());
  return names;
}

namespace {

// Little-endian fields of (value, width in bytes).
std::string Le(std::initializer_list<std::pair<std::uint64_t, int>> fields) {
  std::string out;
  for (const auto& [value, width] : fields)
    for (int i = 0; i < width; ++i) out.push_back(static_cast<char>(value >> (8 * i)));
  return out;
}

std::uint64_t Field(std::string_view bytes, std::size_t at, int width) {
  std::uint64_t value = 0;
  for (int i = width - 1; i >= 0 && at + i < bytes.size(); --i)
    value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

}  // namespace

std::string StoredZip(const std::vector<ZipEntry>& entries) {
  std::string body, directory;
  for (const auto& [name, data, mode, utf8] : entries) {
    std::uint32_t crc = ~0u;
    for (unsigned char byte : data)
      for (int k = 0; k < 8; ++k, byte >>= 1)
        crc = (crc >> 1) ^ (0xEDB88320u & -((crc ^ byte) & 1u));
    // From "version needed" to the extra field's length, in both headers.
    const std::string common = Le({{20, 2}, {utf8 ? 0x800 : 0, 2}, {0, 4}, {0x21, 2}, {~crc, 4}}) +
                               Le({{data.size(), 4}, {data.size(), 4}, {name.size(), 2}, {0, 2}});
    // Made by Unix (3) when a mode is given, so that the mode counts.
    directory += Le({{0x02014b50, 4}, {mode != 0 ? 0x0314u : 20u, 2}}) + common +
                 Le({{0, 6}, {mode << 16, 4}, {body.size(), 4}}) + name;
    body += Le({{0x04034b50, 4}}) + common + name + data;
  }
  return body + directory +
         Le({{0x06054b50, 4}, {0, 4}, {entries.size(), 2}, {entries.size(), 2}}) +
         Le({{directory.size(), 4}, {body.size(), 4}, {0, 2}});
}

std::vector<std::pair<std::string, bool>> ZipNames(const std::string& zip) {
  const std::string bytes = ReadFile(zip);
  const std::size_t end = bytes.rfind("PK\x05\x06");
  std::vector<std::pair<std::string, bool>> names;
  if (end == std::string::npos) return names;
  std::size_t at = Field(bytes, end + 16, 4);
  for (std::uint64_t n = Field(bytes, end + 10, 2); n > 0 && at + 46 <= bytes.size(); --n) {
    const std::size_t length = Field(bytes, at + 28, 2);
    names.emplace_back(bytes.substr(at + 46, length), (Field(bytes, at + 8, 2) & 0x800) != 0);
    at += 46 + length + Field(bytes, at + 30, 2) + Field(bytes, at + 32, 2);
  }
  return names;
}

}  // namespace qvtest
