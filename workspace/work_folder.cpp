#include "workspace/work_folder.h"

#include <cstdio>
#include <ctime>

#include "platform/file_system.h"
#include "platform/private_folder.h"
#include "platform/system_info.h"

namespace quorvane::qvconv::converter {
namespace {

// So many names are tried before giving up; each carries a fresh UUID, so a
// clash at all means the UUID source is broken.
constexpr int kNameTries = 101;

// "YYYYMMDD-hhmmss" of the local time now.
std::u16string TimeStamp() {
  const std::tm now = platform::LocalNow();
  char text[64];
  std::snprintf(text, sizeof text, "%04d%02d%02d-%02d%02d%02d", now.tm_year + 1900,
                now.tm_mon + 1, now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec);
  return std::u16string(text, text + std::char_traits<char>::length(text));
}

}  // namespace

std::u16string MakeWorkFolder(const std::u16string& root, const std::u16string& name) {
  std::u16string base;
  if (root.empty()) {
    const std::u16string temp = platform::TempDirectory();
    if (temp.empty()) return {};
    base = temp + name;
    // Usually there already.  Its name is fixed in a folder that others may
    // write: one that is not ours alone is never used.
    const platform::SharedFolder shared(temp);
    if (platform::PrivateFolder(shared, name).status() != platform::FixedName::kReady) return {};
  } else {
    base = root;
  }

  const std::u16string stamp = TimeStamp();
  for (int attempt = 0; attempt < kNameTries; ++attempt) {
    std::u16string path = base + u"/" + stamp + platform::NewUuid();
    if (!platform::PathExists(path)) {
      // A folder that cannot be made shows itself at the caller's first use.
      platform::MakeDirectory(path);
      return path;
    }
  }
  return {};
}

}  // namespace quorvane::qvconv::converter
