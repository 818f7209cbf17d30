// Envs that tests install (platform/env.h), each current while it lives: a clock that stands
// still, files that cannot be read.  Every call they do not fake reaches the system.
#ifndef QV_TESTS_SUPPORT_FAKE_ENV_H_
#define QV_TESTS_SUPPORT_FAKE_ENV_H_

#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>

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

}  // namespace qvtest

#endif  // QV_TESTS_SUPPORT_FAKE_ENV_H_
