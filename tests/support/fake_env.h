// Envs that tests install (platform/env.h), each current while it lives: a clock that stands
// still, files that cannot be read, and disks that fill up.
// Every call they do not fake reaches the system.
#ifndef QV_TESTS_SUPPORT_FAKE_ENV_H_
#define QV_TESTS_SUPPORT_FAKE_ENV_H_

#include <cstddef>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/env.h"

namespace qvtest {

namespace platform = quorvane::platform;

// The system's Env, current while this lives, with the calls a test overrides.
class FakeEnv : public platform::EnvWrapper {
 public:
  FakeEnv() : EnvWrapper(platform::Env::Default()), scope_(this) {}

 private:
  platform::ScopedEnv scope_;
};

class FixedClock : public FakeEnv {
 public:
  explicit FixedClock(const std::tm& now) : now_(now) {}
  std::tm LocalNow() override { return now_; }

 private:
  std::tm now_;
};

// Files that stand but cannot be read.
class UnreadableFiles : public FakeEnv {
 public:
  bool ReadFile(std::u16string_view, std::string*) override { return false; }
  bool ReadFilePrefix(std::u16string_view, std::size_t, std::string*) override { return false; }
};

// A disk with room for `room` bytes of what the program writes and copies: a whole-file write or
// copy that does not fit fails and writes nothing; a piece appended to an open file that does not
// fit is lost and its Close fails; so does everything after it.
class FullDisk : public FakeEnv {
 public:
  explicit FullDisk(std::size_t room) : room_(room) {}

  std::unique_ptr<platform::WritableFile> NewWritableFile(std::u16string_view path) override {
    std::unique_ptr<platform::WritableFile> file = target()->NewWritableFile(path);
    return file ? std::make_unique<MeteredFile>(std::move(file), this) : nullptr;
  }
  bool WriteFile(std::u16string_view path, std::string_view bytes) override {
    return Take(bytes.size()) && target()->WriteFile(path, bytes);
  }
  bool CopyFile(std::u16string_view source, std::u16string_view destination) override {
    std::string bytes;
    return target()->ReadFile(source, &bytes) && Take(bytes.size()) &&
           target()->CopyFile(source, destination);
  }
  bool full() const { return full_; }

 private:
  class MeteredFile : public platform::WritableFile {
   public:
    MeteredFile(std::unique_ptr<platform::WritableFile> file, FullDisk* disk)
        : file_(std::move(file)), disk_(disk) {}
    void Append(std::string_view bytes) override {
      if (disk_->Take(bytes.size())) file_->Append(bytes);
    }
    bool Close() override { return file_->Close() && !disk_->full(); }

   private:
    std::unique_ptr<platform::WritableFile> file_;
    FullDisk* disk_;
  };

  bool Take(std::size_t size) {
    full_ = full_ || size > room_;
    if (!full_) room_ -= size;
    return !full_;
  }
  std::size_t room_;
  bool full_ = false;
};

}  // namespace qvtest

#endif  // QV_TESTS_SUPPORT_FAKE_ENV_H_
