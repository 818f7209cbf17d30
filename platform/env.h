// Env: the seam between the program and the system it runs on.
//
// The file, folder, process, clock and locale calls of file_system.h,
// process.h and system_info.h go through the current Env: those free
// functions forward to Env::Current(), and Env::Default() is the system
// itself.  The guarded operations of platform/ that must hold a descriptor
// from one system call to the next (atomic_file.h, file_lock.h,
// private_folder.h, append_only_file.h) call the system directly.  A test derives from
// EnvWrapper, overrides the calls it wants to fail or fake (a full disk, an
// unreadable file, a fixed clock) and installs it with ScopedEnv; every other
// call reaches the system unchanged.
//
// There is one current Env for the process; the program has one thread, and
// a test installs its Env before it starts the code under test.
#ifndef QV_PLATFORM_ENV_H_
#define QV_PLATFORM_ENV_H_

#include <cstddef>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/process.h"

namespace quorvane::platform {

class Env {
 public:
  Env() = default;
  virtual ~Env() = default;
  Env(const Env&) = delete;
  Env& operator=(const Env&) = delete;

  // The system itself; it lives as long as the process.
  static Env* Default();
  // The Env that the program's calls go through: Default() unless another
  // has been installed.
  static Env* Current();
  // Makes `env` current (nullptr: Default()) and gives back the one before.
  static Env* Install(Env* env);

  // Files and folders; the contracts are those of file_system.h.
  virtual bool ReadFile(std::u16string_view path, std::string* bytes) = 0;
  virtual bool ReadFilePrefix(std::u16string_view path, std::size_t limit,
                              std::string* bytes) = 0;
  virtual bool WriteFile(std::u16string_view path, std::string_view bytes) = 0;
  // A new file at `path` (created or truncated) to write piece by piece;
  // null when it cannot be made.  OutputFile writes through it.
  virtual std::unique_ptr<WritableFile> NewWritableFile(std::u16string_view path) = 0;
  virtual bool CopyFile(std::u16string_view source, std::u16string_view destination) = 0;
  virtual MakeDirResult MakeDirectory(std::u16string_view path) = 0;
  virtual bool ListDirectory(std::u16string_view path, std::vector<DirEntry>* entries) = 0;
  virtual bool RemoveFile(std::u16string_view path) = 0;
  virtual bool RemoveDirectory(std::u16string_view path) = 0;
  virtual bool MakeWritable(std::u16string_view path) = 0;
  virtual bool PathExists(std::u16string_view path) = 0;
  virtual bool IsDirectory(std::u16string_view path) = 0;
  virtual bool IsRegularFile(std::u16string_view path) = 0;

  // Processes (process.h); the standard output is read into `output`, or
  // goes to /dev/null when that is null.
  virtual ProcessResult RunProcess(const std::vector<std::u16string>& argv,
                                   std::string* output) = 0;

  // The clock: the local time now, and a broken-down local time as seconds
  // (mktime: normalises `time` and sets its week day and daylight flag).
  virtual std::tm LocalNow() = 0;
  virtual std::time_t MakeTime(std::tm* time) = 0;

  // The surroundings (system_info.h): the temporary folder and the locale of
  // the user's messages.
  virtual std::u16string TempDirectory() = 0;
  virtual std::string MessageLocaleName() = 0;
};

// An Env that hands every call to another; tests derive from it and
// override what they fake.
class EnvWrapper : public Env {
 public:
  // `target` (usually Env::Default()) must outlive the wrapper.
  explicit EnvWrapper(Env* target) : target_(target) {}
  Env* target() const { return target_; }

  bool ReadFile(std::u16string_view path, std::string* bytes) override {
    return target_->ReadFile(path, bytes);
  }
  bool ReadFilePrefix(std::u16string_view path, std::size_t limit, std::string* bytes) override {
    return target_->ReadFilePrefix(path, limit, bytes);
  }
  bool WriteFile(std::u16string_view path, std::string_view bytes) override {
    return target_->WriteFile(path, bytes);
  }
  std::unique_ptr<WritableFile> NewWritableFile(std::u16string_view path) override {
    return target_->NewWritableFile(path);
  }
  bool CopyFile(std::u16string_view source, std::u16string_view destination) override {
    return target_->CopyFile(source, destination);
  }
  MakeDirResult MakeDirectory(std::u16string_view path) override {
    return target_->MakeDirectory(path);
  }
  bool ListDirectory(std::u16string_view path, std::vector<DirEntry>* entries) override {
    return target_->ListDirectory(path, entries);
  }
  bool RemoveFile(std::u16string_view path) override { return target_->RemoveFile(path); }
  bool RemoveDirectory(std::u16string_view path) override {
    return target_->RemoveDirectory(path);
  }
  bool MakeWritable(std::u16string_view path) override { return target_->MakeWritable(path); }
  bool PathExists(std::u16string_view path) override { return target_->PathExists(path); }
  bool IsDirectory(std::u16string_view path) override { return target_->IsDirectory(path); }
  bool IsRegularFile(std::u16string_view path) override { return target_->IsRegularFile(path); }
  ProcessResult RunProcess(const std::vector<std::u16string>& argv,
                           std::string* output) override {
    return target_->RunProcess(argv, output);
  }
  std::tm LocalNow() override { return target_->LocalNow(); }
  std::time_t MakeTime(std::tm* time) override { return target_->MakeTime(time); }
  std::u16string TempDirectory() override { return target_->TempDirectory(); }
  std::string MessageLocaleName() override { return target_->MessageLocaleName(); }

 private:
  Env* target_;
};

// Makes an Env current for as long as it lives, then the one before again.
class ScopedEnv {
 public:
  explicit ScopedEnv(Env* env) : previous_(Env::Install(env)) {}
  ~ScopedEnv() { Env::Install(previous_); }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  Env* previous_;
};

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_ENV_H_
