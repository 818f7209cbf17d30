// Envs that tests install (platform/env.h): a clock that stands still, a
// user's locale, and a disk that fills up.  Every call they do not fake
// reaches the system.
#ifndef QV_TESTS_SUPPORT_FAKE_ENV_H_
#define QV_TESTS_SUPPORT_FAKE_ENV_H_

#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>
#include <utility>

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

// A disk with room for `room` bytes of whole files written and copied by the
// program: a write or copy that does not fit fails and writes nothing, as
// does every one after it.  Current while it lives.
class FullDisk : public platform::EnvWrapper {
 public:
  explicit FullDisk(std::size_t room)
      : EnvWrapper(platform::Env::Default()), room_(room), scope_(this) {}

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
