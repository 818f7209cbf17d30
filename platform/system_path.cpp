#include "platform/system_path.h"

#include <fcntl.h>
#include <unistd.h>

#include <climits>
#include <utility>

#include "platform/text_codec.h"

namespace quorvane::platform {
namespace {

// Paths below this length go to the system as they are.
constexpr std::size_t kLongPath = PATH_MAX - 256;

}  // namespace

SystemPath::SystemPath(std::u16string_view path) : text_(Utf8FromUtf16(path)) { Shorten(); }

SystemPath::SystemPath(std::string native) : text_(std::move(native)) { Shorten(); }

SystemPath::~SystemPath() {
  if (folder_ >= 0) ::close(folder_);
}

SystemPath::SystemPath(SystemPath&& other) noexcept
    : text_(std::move(other.text_)), folder_(std::exchange(other.folder_, -1)) {}

void SystemPath::Shorten() {
  if (text_.size() < kLongPath) return;
  std::string path = text_;
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  const auto cut = path.rfind('/');
  if (cut == std::string::npos) return;  // one name: the system says what it thinks
  const std::string leaf = path.substr(cut + 1);
  // Walk the folders one name at a time; "." and empty names stay where they are.
  int folder = path[0] == '/' ? ::open("/", O_PATH | O_DIRECTORY) : ::open(".", O_PATH | O_DIRECTORY);
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
  text_ = "/proc/self/fd/" + std::to_string(folder_) + "/" + leaf;
}

}  // namespace quorvane::platform
