// Helpers shared by the unit and black-box tests: a scratch folder per test, whole files, code
// page 932 text, zips, running a program, and Envs (platform/env.h) that tests install.  Tests may
// call the system directly; the product may not.
#ifndef QV_TESTS_SUPPORT_TEST_SUPPORT_H_
#define QV_TESTS_SUPPORT_TEST_SUPPORT_H_

// GoogleTest and the standard headers that every test uses come with this header.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/qv_conv_exception.h"
#include "platform/env.h"

namespace qvtest {

// A fresh, empty folder below $TMPDIR (or /tmp), removed at destruction; path() has no "/" at
// the end.
class ScratchDir {
 public:
  ScratchDir();
  ~ScratchDir();
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  const std::string& path() const { return path_; }
  std::string Sub(std::string_view relative) const;

 private:
  std::string path_;
};

// Writes bytes to a file, making the parent folders first.
void WriteFile(const std::string& path, std::string_view bytes);
// The whole file; fails the test (and returns empty) when it cannot be read.
std::string ReadFile(const std::string& path);
bool Exists(const std::string& path);
bool IsDir(const std::string& path);
void MakeDirs(const std::string& path);
void RemoveAll(const std::string& path);
// Plain file names in a folder, sorted; folders end in "/".
std::vector<std::string> ListDir(const std::string& path);
// The plain files below a folder, hidden ones included, relative and sorted; Contents() gives
// them as "path=bytes".
std::vector<std::string> FilesBelow(const std::string& folder);
std::vector<std::string> Contents(const std::string& folder);

// UTF-8 <-> code page 932 (Windows-31J) and UTF-16, by iconv.
std::string Cp932(std::string_view utf8);
std::string Utf8FromCp932(std::string_view cp932);
std::u16string U16(std::string_view utf8);
std::string Utf16Le(std::string_view utf8);  // with its byte order mark
std::string U8(std::u16string_view text);

struct RunResult {
  int status = -1;     // exit status 0..255, or -1 when the program did not exit normally
  std::string output;  // stdout and stderr together
};

// Runs a program (args[0], searched in PATH) to its end, with "NAME=value" entries added to (or
// replacing those of) the environment.  RunQv runs the built qvConvApp.
RunResult RunProgram(const std::vector<std::string>& args,
                     const std::vector<std::string>& env = {});
RunResult RunQv(const std::vector<std::string>& args, const std::vector<std::string>& env = {});

// Every stamp "YYYYMMDD_hhmmss" of a written project name replaced by `with`;
// the first one in `text` (empty if none).
std::string ReplaceStamps(std::string text, const std::string& with);
std::string FirstStamp(const std::string& text);
// `text` without any of the pieces; with every `from` replaced by `to`.
std::string EraseAll(std::string text, const std::vector<std::string>& pieces);
std::string Replaced(std::string text, const std::string& from, const std::string& to);

// The 8-bit status a POSIX caller sees for one of our exit codes.
inline int Status(int code) { return code & 0xff; }

// The code of the QvConvException pointer that `call` throws, 0 if none.
template <typename Call>
std::int32_t CodeOf(Call call) try {
  return call(), 0;
} catch (quorvane::qvconv::converter::QvConvException* e) {
  return std::unique_ptr<quorvane::qvconv::converter::QvConvException>(e)->code();
}

// Sets an environment variable for the life of the object, then restores it.
class EnvOverride {
 public:
  EnvOverride(const char* name, const std::string& value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    ::setenv(name, value.c_str(), 1);
  }
  ~EnvOverride() { old_ ? ::setenv(name_.c_str(), old_->c_str(), 1) : ::unsetenv(name_.c_str()); }

 private:
  std::string name_;
  std::optional<std::string> old_;
};

// A date `days` from today in the schedule's form, "%04d/%02d/%02d"; a local time of the given
// year, month (1 to 12), day and time of day.
std::string DateFromToday(int days);
std::tm Tm(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

// Packs what `folder` holds (names relative to it) into a zip file with 7za; the member names
// that 7za lists (with "/" separators), sorted.
void ZipFolderContents(const std::string& folder, const std::string& zip);
std::vector<std::string> ZipMembers(const std::string& zip);

// An entry of a zip file of stored entries, written byte by byte as any tool may: any name bytes
// ("../x", "a\b", code page 932), any Unix mode (0: made by MS-DOS; 0120777: a symbolic link to
// `data`), the UTF-8 flag (general purpose bit 11) as asked.
struct ZipEntry {
  std::string name, data;
  std::uint32_t mode = 0;
  bool utf8 = false;
};
std::string StoredZip(const std::vector<ZipEntry>& entries);
// The names of a zip file's central directory, in order, with their UTF-8 flags.
std::vector<std::pair<std::string, bool>> ZipNames(const std::string& zip);

// The system's Env, current while this lives, with the calls a test overrides: a clock that stands
// still, files that stand but cannot be read.  Every call they do not fake reaches the system.
class FakeEnv : public quorvane::platform::EnvWrapper {
 public:
  FakeEnv() : EnvWrapper(quorvane::platform::Env::Default()), scope_(this) {}

 private:
  quorvane::platform::ScopedEnv scope_;
};
class FixedClock : public FakeEnv {
 public:
  explicit FixedClock(const std::tm& now) : now_(now) {}
  std::tm LocalNow() override { return now_; }

 private:
  std::tm now_;
};
class UnreadableFiles : public FakeEnv {
 public:
  bool ReadFile(std::u16string_view, std::string*) override { return false; }
  bool ReadFilePrefix(std::u16string_view, std::size_t, std::string*) override { return false; }
};

}  // namespace qvtest

#endif  // QV_TESTS_SUPPORT_TEST_SUPPORT_H_
