// Sets an environment variable for the lifetime of a test, then restores it.
#ifndef QV_TESTS_WORKSPACE_ENV_OVERRIDE_H_
#define QV_TESTS_WORKSPACE_ENV_OVERRIDE_H_

#include <cstdlib>
#include <optional>
#include <string>

namespace qvtest {

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

}  // namespace qvtest

#endif  // QV_TESTS_WORKSPACE_ENV_OVERRIDE_H_
