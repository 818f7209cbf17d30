#include "platform/env.h"

#include "platform/system_calls.h"
#include "platform/system_info.h"

namespace quorvane::platform {
namespace {

class SystemEnv final : public Env {
 public:
  bool ReadFile(std::u16string_view path, std::string* bytes) override {
    return system::ReadFile(path, bytes);
  }
  bool ReadFilePrefix(std::u16string_view path, std::size_t limit, std::string* bytes) override {
    return system::ReadFilePrefix(path, limit, bytes);
  }
  bool WriteFile(std::u16string_view path, std::string_view bytes) override {
    return system::WriteFile(path, bytes);
  }
  std::unique_ptr<WritableFile> NewWritableFile(std::u16string_view path) override {
    return system::NewWritableFile(path);
  }
  bool CopyFile(std::u16string_view source, std::u16string_view destination) override {
    return system::CopyFile(source, destination);
  }
  MakeDirResult MakeDirectory(std::u16string_view path) override {
    return system::MakeDirectory(path);
  }
  bool ListDirectory(std::u16string_view path, std::vector<DirEntry>* entries) override {
    return system::ListDirectory(path, entries);
  }
  bool RemoveFile(std::u16string_view path) override { return system::RemoveFile(path); }
  bool RemoveDirectory(std::u16string_view path) override {
    return system::RemoveDirectory(path);
  }
  bool MakeWritable(std::u16string_view path) override { return system::MakeWritable(path); }
  bool PathExists(std::u16string_view path) override { return system::PathExists(path); }
  bool IsDirectory(std::u16string_view path) override { return system::IsDirectory(path); }
  bool IsRegularFile(std::u16string_view path) override { return system::IsRegularFile(path); }
  ProcessResult RunProcess(const std::vector<std::u16string>& argv,
                           std::string* output) override {
    return system::RunProcess(argv, output);
  }
  std::tm LocalNow() override { return system::LocalNow(); }
  std::time_t MakeTime(std::tm* time) override { return std::mktime(time); }
  std::u16string TempDirectory() override { return system::TempDirectory(); }
  std::string MessageLocaleName() override { return system::MessageLocaleName(); }
};

Env* g_current = nullptr;

}  // namespace

Env* Env::Default() {
  static SystemEnv* const kSystem = new SystemEnv;  // never deleted
  return kSystem;
}

Env* Env::Current() { return g_current != nullptr ? g_current : Default(); }

Env* Env::Install(Env* env) {
  Env* const previous = Current();
  g_current = env;
  return previous;
}

// The free functions of the public headers, through the current Env.

bool ReadFile(std::u16string_view path, std::string* bytes) {
  return Env::Current()->ReadFile(path, bytes);
}
bool ReadFilePrefix(std::u16string_view path, std::size_t limit, std::string* bytes) {
  return Env::Current()->ReadFilePrefix(path, limit, bytes);
}
bool WriteFile(std::u16string_view path, std::string_view bytes) {
  return Env::Current()->WriteFile(path, bytes);
}
bool CopyFile(std::u16string_view source, std::u16string_view destination) {
  return Env::Current()->CopyFile(source, destination);
}
MakeDirResult MakeDirectory(std::u16string_view path) {
  return Env::Current()->MakeDirectory(path);
}
bool ListDirectory(std::u16string_view path, std::vector<DirEntry>* entries) {
  return Env::Current()->ListDirectory(path, entries);
}
bool RemoveFile(std::u16string_view path) { return Env::Current()->RemoveFile(path); }
bool RemoveDirectory(std::u16string_view path) { return Env::Current()->RemoveDirectory(path); }
bool MakeWritable(std::u16string_view path) { return Env::Current()->MakeWritable(path); }
bool PathExists(std::u16string_view path) { return Env::Current()->PathExists(path); }
bool IsDirectory(std::u16string_view path) { return Env::Current()->IsDirectory(path); }
bool IsRegularFile(std::u16string_view path) { return Env::Current()->IsRegularFile(path); }
ProcessResult RunProcess(const std::vector<std::u16string>& argv) {
  return Env::Current()->RunProcess(argv, nullptr);
}

ProcessResult RunProcess(const std::vector<std::u16string>& argv, std::string& output) {
  return Env::Current()->RunProcess(argv, &output);
}
std::tm LocalNow() { return Env::Current()->LocalNow(); }

OutputFile::~OutputFile() { Close(); }

bool OutputFile::Open(std::u16string_view path) {
  Close();
  file_ = Env::Current()->NewWritableFile(path);
  return file_ != nullptr;
}

void OutputFile::Append(std::string_view bytes) {
  if (file_) file_->Append(bytes);
}

bool OutputFile::Close() {
  if (!file_) return false;
  const bool written = file_->Close();
  file_.reset();
  return written;
}
std::time_t MakeLocalTime(std::tm* time) { return Env::Current()->MakeTime(time); }
std::u16string TempDirectory() { return Env::Current()->TempDirectory(); }
std::string MessageLocaleName() { return Env::Current()->MessageLocaleName(); }

}  // namespace quorvane::platform
