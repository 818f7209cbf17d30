#include "platform/system_info.h"

#include <uuid/uuid.h>

#include <cstdio>
#include <cstdlib>

#include "platform/file_system.h"
#include "platform/system_calls.h"

namespace quorvane::platform {

std::u16string system::TempDirectory() {
  const char* tmp = std::getenv("TMPDIR");
  std::string dir = (tmp != nullptr && *tmp != '\0') ? tmp : "/tmp";
  if (dir.back() != '/') dir.push_back('/');
  return PathFromNative(dir);
}

std::tm system::LocalNow() {
  std::time_t now = std::time(nullptr);
  std::tm result{};
  ::localtime_r(&now, &result);
  return result;
}

std::u16string NewUuid() {
  uuid_t id;
  uuid_generate_random(id);
  char text[37];
  uuid_unparse_lower(id, text);
  return PathFromNative(text);
}

std::string system::MessageLocaleName() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return value;
  }
  return "C";
}

void WriteStandardError(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

}  // namespace quorvane::platform
