// Sets an environment variable for the lifetime of a test and restores it.
#ifndef QV_TESTS_WORKSPACE_ENV_OVERRIDE_H_
#define QV_TESTS_WORKSPACE_ENV_OVERRIDE_H_

#include <cstdlib>
#include <string>

namespace qvtest {

class EnvOverride {
 public:
  EnvOverride(const char* name, const std::string& value) : name_(name) {
    const char* old = std::getenv(name);
    had_old_ = old != nullptr;
    if (had_old_) old_ = old;
    ::setenv(name, value.c_str(), 1);
  }
  ~EnvOverride() {
    if (had_old_) {
      ::setenv(name_.c_str(), old_.c_str(), 1);
    } else {
      ::unsetenv(name_.c_str());
    }
  }
  EnvOverride(const EnvOverride&) = delete;
  EnvOverride& operator=(const EnvOverride&) = delete;

 private:
  std::string name_;
  bool had_old_ = false;
  std::string old_;
};

}  // namespace qvtest

#endif  // QV_TESTS_WORKSPACE_ENV_OVERRIDE_H_
