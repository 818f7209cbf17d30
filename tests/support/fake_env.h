// Envs that tests install (platform/env.h): a clock that stands still, a
// user's locale, a machine without helper programs, files that cannot be
// read, and disks that refuse files or fill up.  Every call they do not fake
// reaches the system.
#ifndef QV_TESTS_SUPPORT_FAKE_ENV_H_
#define QV_TESTS_SUPPORT_FAKE_ENV_H_

#include <cstddef>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/env.h"

namespace qvtest {

namespace platform = quorvane::platform;

// The local time is always `now`, for as long as this is current.
class FixedClock : public platform::EnvWrapper {
 public:
  explicit FixedClock(const std::tm& now)
      : EnvWrapper(platform::Env::Default()), now_(now), scope_(this) {}
  std::tm LocalNow() override { return now_; }

 private:
  std::tm now_;
  platform::ScopedEnv scope_;
};

// The user's messages are in `locale`, for as long as this is current.
class FixedLocale : public platform::EnvWrapper {
 public:
  explicit FixedLocale(std::string locale)
      : EnvWrapper(platform::Env::Default()), locale_(std::move(locale)), scope_(this) {}
  std::string MessageLocaleName() override { return locale_; }

 private:
  std::string locale_;
  platform::ScopedEnv scope_;
};

// No helper program (the archive tool) can be started.
class NoTools : public platform::EnvWrapper {
 public:
  NoTools() : EnvWrapper(platform::Env::Default()), scope_(this) {}
  platform::ProcessResult RunProcess(const std::vector<std::u16string>&,
                                     std::string*) override {
    return {};
  }

 private:
  platform::ScopedEnv scope_;
};

// Files that stand but cannot be read: every read fails.
class UnreadableFiles : public platform::EnvWrapper {
 public:
  UnreadableFiles() : EnvWrapper(platform::Env::Default()), scope_(this) {}
  bool ReadFile(std::u16string_view, std::string*) override { return false; }
  bool ReadFilePrefix(std::u16string_view, std::size_t, std::string*) override { return false; }

 private:
  platform::ScopedEnv scope_;
};

// A disk on which nothing can be made: every new file fails.
class ReadOnlyDisk : public platform::EnvWrapper {
 public:
  ReadOnlyDisk() : EnvWrapper(platform::Env::Default()), scope_(this) {}
  bool WriteFile(std::u16string_view, std::string_view) override { return false; }
  std::unique_ptr<platform::WritableFile> NewWritableFile(std::u16string_view) override {
    return nullptr;
  }

 private:
  platform::ScopedEnv scope_;
};

// A disk with room for `room` bytes of what the program writes and copies: a
// whole-file write or copy that does not fit fails and writes nothing, a piece
// written to an open file that does not fit is lost and its Close fails, and
// so does everything after it.  Current while it lives.
class FullDisk : public platform::EnvWrapper {
 public:
  explicit FullDisk(std::size_t room)
      : EnvWrapper(platform::Env::Default()), room_(room), scope_(this) {}

  std::unique_ptr<platform::WritableFile> NewWritableFile(std::u16string_view path) override {
    std::unique_ptr<platform::WritableFile> file = target()->NewWritableFile(path);
    if (!file) return nullptr;
    return std::make_unique<MeteredFile>(std::move(file), this);
  }

  bool WriteFile(std::u16string_view path, std::string_view bytes) override {
    return Take(bytes.size()) && target()->WriteFile(path, bytes);
  }
  bool CopyFile(std::u16string_view source, std::u16string_view destination) override {
    std::string bytes;
    if (!target()->ReadFile(source, &bytes)) return false;
    return Take(bytes.size()) && target()->CopyFile(source, destination);
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
    if (full_ || size > room_) {
      full_ = true;
      return false;
    }
    room_ -= size;
    return true;
  }
  std::size_t room_;
  bool full_ = false;
  platform::ScopedEnv scope_;
};

}  // namespace qvtest

#endif  // QV_TESTS_SUPPORT_FAKE_ENV_H_
