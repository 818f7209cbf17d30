#include "tests/support/test_support.h"

#include <fcntl.h>
#include <iconv.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <codecvt>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <locale>
#include <random>
#include <sstream>

extern char** environ;

namespace qvtest {
namespace fs = std::filesystem;

namespace {

std::string TempRoot() {
  const char* t = std::getenv("TMPDIR");
  std::string root = (t && *t) ? t : "/tmp";
  while (root.size() > 1 && root.back() == '/') root.pop_back();
  return root;
}

std::string Convert(std::string_view in, const char* to, const char* from) {
  iconv_t cd = iconv_open(to, from);
  if (cd == reinterpret_cast<iconv_t>(-1)) {
    ADD_FAILURE() << "iconv_open " << from << " -> " << to;
    return {};
  }
  std::string out(in.size() * 4 + 16, '\0');
  char* src = const_cast<char*>(in.data());
  size_t src_left = in.size();
  char* dst = out.data();
  size_t dst_left = out.size();
  if (iconv(cd, &src, &src_left, &dst, &dst_left) == static_cast<size_t>(-1)) {
    ADD_FAILURE() << "iconv cannot convert text to " << to;
  }
  iconv_close(cd);
  out.resize(out.size() - dst_left);
  return out;
}

}  // namespace

ScratchDir::ScratchDir() {
  std::random_device rd;
  for (int i = 0; i < 100; ++i) {
    std::ostringstream name;
    name << TempRoot() << "/qvtest-" << std::hex << rd() << rd();
    if (::mkdir(name.str().c_str(), 0700) == 0) {
      path_ = name.str();
      return;
    }
  }
  ADD_FAILURE() << "cannot make a scratch folder";
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
  fs::path p(path);
  if (p.has_parent_path()) {
    std::error_code ec;
    fs::create_directories(p.parent_path(), ec);
  }
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) ADD_FAILURE() << "cannot write " << path;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    ADD_FAILURE() << "cannot read " << path;
    return {};
  }
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

bool Exists(const std::string& path) {
  struct stat st;
  return ::lstat(path.c_str(), &st) == 0;
}

bool IsDir(const std::string& path) {
  std::error_code ec;
  return fs::is_directory(path, ec);
}

void MakeDirs(const std::string& path) {
  std::error_code ec;
  fs::create_directories(path, ec);
}

void RemoveAll(const std::string& path) {
  std::error_code ec;
  fs::remove_all(path, ec);
}

std::vector<std::string> ListDir(const std::string& path) {
  std::vector<std::string> names;
  std::error_code ec;
  for (const auto& e : fs::directory_iterator(path, ec)) {
    names.push_back(e.path().filename().string() + (e.is_directory() ? "/" : ""));
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string Cp932(std::string_view utf8) { return Convert(utf8, "CP932", "UTF-8"); }
std::string Utf8FromCp932(std::string_view cp932) { return Convert(cp932, "UTF-8", "CP932"); }

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

RunResult Run(const std::vector<std::string>& args, const std::vector<std::string>& env) {
  RunResult result;
  std::vector<std::string> env_strings;
  for (char** e = environ; *e; ++e) {
    std::string entry(*e);
    std::string key = entry.substr(0, entry.find('='));
    bool replaced = std::any_of(env.begin(), env.end(), [&](const std::string& x) {
      return x.substr(0, x.find('=')) == key;
    });
    if (!replaced) env_strings.push_back(entry);
  }
  for (const auto& e : env) env_strings.push_back(e);
  std::vector<char*> envp;
  for (auto& e : env_strings) envp.push_back(e.data());
  envp.push_back(nullptr);
  std::vector<std::string> argv_strings(args);
  std::vector<char*> argv;
  for (auto& a : argv_strings) argv.push_back(a.data());
  argv.push_back(nullptr);

  int pipefd[2];
  if (::pipe(pipefd) != 0) return result;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipefd[1], 1);
  posix_spawn_file_actions_adddup2(&actions, pipefd[1], 2);
  posix_spawn_file_actions_addclose(&actions, pipefd[0]);
  pid_t pid = 0;
  // An environment that changes PATH must also be the one searched.
  std::string saved_path = std::getenv("PATH") ? std::getenv("PATH") : "";
  for (const auto& e : env) {
    if (e.rfind("PATH=", 0) == 0) ::setenv("PATH", e.c_str() + 5, 1);
  }
  int rc = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), envp.data());
  ::setenv("PATH", saved_path.c_str(), 1);
  posix_spawn_file_actions_destroy(&actions);
  ::close(pipefd[1]);
  if (rc != 0) {
    ::close(pipefd[0]);
    result.output = std::string("spawn failed: ") + std::strerror(rc);
    return result;
  }
  char buffer[4096];
  ssize_t n;
  while ((n = ::read(pipefd[0], buffer, sizeof buffer)) > 0) result.output.append(buffer, n);
  ::close(pipefd[0]);
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  return result;
}

RunResult RunQv(const std::vector<std::string>& args, const std::vector<std::string>& env) {
  std::vector<std::string> full{QV_BINARY};
  full.insert(full.end(), args.begin(), args.end());
  return Run(full, env);
}

namespace {

std::size_t FindStamp(const std::string& text, std::size_t from) {
  auto digits = [&](std::size_t at, std::size_t n) {
    for (std::size_t i = at; i < at + n; ++i) {
      if (text[i] < '0' || text[i] > '9') return false;
    }
    return true;
  };
  for (std::size_t i = from; i + 15 <= text.size(); ++i) {
    if (digits(i, 8) && text[i + 8] == '_' && digits(i + 9, 6)) return i;
  }
  return std::string::npos;
}

}  // namespace

std::string ReplaceStamps(std::string text, const std::string& with) {
  for (std::size_t at = FindStamp(text, 0); at != std::string::npos; at = FindStamp(text, at + with.size())) {
    text.replace(at, 15, with);
  }
  return text;
}

std::string FirstStamp(const std::string& text) {
  const std::size_t at = FindStamp(text, 0);
  return at == std::string::npos ? std::string() : text.substr(at, 15);
}

std::string EraseAll(std::string text, const std::vector<std::string>& pieces) {
  for (const std::string& piece : pieces) {
    for (std::size_t at; (at = text.find(piece)) != std::string::npos;) text.erase(at, piece.size());
  }
  return text;
}

void ZipFolderContents(const std::string& folder, const std::string& zip) {
  // 7za stores entries relative to the current folder when given "*".
  std::string abs_zip = fs::absolute(zip).string();
  std::string saved = fs::current_path().string();
  fs::current_path(folder);
  RunResult r = Run({"7za", "a", "-r", "-tzip", abs_zip, "*"});
  fs::current_path(saved);
  ASSERT_EQ(r.status, 0) << r.output;
}

std::vector<std::string> ZipMembers(const std::string& zip) {
  RunResult r = Run({"7za", "l", "-slt", "-ba", zip});
  std::vector<std::string> names;
  std::istringstream lines(r.output);
  std::string line;
  while (std::getline(lines, line)) {
    if (line.rfind("Path = ", 0) == 0) {
      std::string name = line.substr(7);
      std::replace(name.begin(), name.end(), '\\', '/');
      names.push_back(name);
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace qvtest
