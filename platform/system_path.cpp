#include "platform/system_path.h"

#include <fcntl.h>
#include <unistd.h>

#include <climits>
#include <utility>

#include "platform/text_codec.h"
#include "platform/win32_path.h"

namespace quorvane::platform {

SystemPath::SystemPath(std::u16string_view path) {
  Win32Path clean = CleanWin32Path(path);
  nameable_ = clean.nameable;
  native_ = Utf8FromUtf16(clean.path);
  Shorten();
}

SystemPath::SystemPath(std::string native) : native_(std::move(native)) { Shorten(); }

SystemPath::~SystemPath() { Release(); }

SystemPath::SystemPath(SystemPath&& other) noexcept
    : native_(std::move(other.native_)),
      short_(std::move(other.short_)),
      nameable_(other.nameable_),
      folder_(std::exchange(other.folder_, -1)) {}

void SystemPath::Reset(std::string native) {
  Release();
  native_ = std::move(native);
  nameable_ = true;
  Shorten();
}

void SystemPath::Release() {
  if (folder_ >= 0) ::close(folder_);
  folder_ = -1;
}

void SystemPath::Shorten() {
  if (native_.size() < kLongPath) return;
  std::string path = native_;
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  const auto cut = path.rfind('/');
  if (cut == std::string::npos) return;  // one name: the system says what it thinks
  const std::string leaf = path.substr(cut + 1);
  // Walk the folders one name at a time; "." and empty names stay where they are.
  int folder =
      path[0] == '/' ? ::open("/", O_PATH | O_DIRECTORY) : ::open(".", O_PATH | O_DIRECTORY);
  std::size_t start = path[0] == '/' ? 1 : 0;
  while (folder >= 0 && start < cut) {
    std::size_t end = path.find('/', start);
    if (end == std::string::npos || end > cut) end = cut;
    const std::string name = path.substr(start, end - start);
    if (!name.empty() && name != ".") {
      const int next = ::openat(folder, name.c_str(), O_PATH | O_DIRECTORY);
      ::close(folder);
      folder = next;
    }
    start = end + 1;
  }
  if (folder < 0) return;  // a folder on the way is missing: the call fails as it would
  folder_ = folder;
  short_ = "/proc/self/fd/" + std::to_string(folder_) + "/" + leaf;
}

}  // namespace quorvane::platform
