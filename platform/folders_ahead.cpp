#include "platform/folders_ahead.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/ntfs_names.h"
#include "platform/system_path.h"
#include "platform/text_codec.h"

namespace quorvane::platform {

FoldersAhead::FoldersAhead(std::u16string_view parent, const std::vector<std::u16string>& names) {
  const SystemPath path(parent);
  if (path.nameable()) {
    parent_ = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  }
  names_.reserve(names.size());
  for (const std::u16string& name : names) {
    const bool single = IsWindowsName(name) && name.find_first_of(u"\\/") == std::u16string::npos &&
                        name != u"." && name != u"..";
    names_.push_back(single ? Utf8FromUtf16(name) : std::string());
  }
  thread_ = std::thread([this] { Run(); });
}

FoldersAhead::~FoldersAhead() {
  quit_ = true;
  thread_.join();
  if (parent_ >= 0) ::close(parent_);
}

void FoldersAhead::Run() {
  for (const std::string& name : names_) {
    if (quit_ || parent_ < 0 || name.empty()) break;
    if (::mkdirat(parent_, name.c_str(), 0777) != 0 && errno != EEXIST) break;
    const std::lock_guard<std::mutex> lock(mutex_);
    ++made_;
    settled_.notify_all();
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  stopped_ = true;
  settled_.notify_all();
}

bool FoldersAhead::Wait(std::size_t index) {
  std::unique_lock<std::mutex> lock(mutex_);
  settled_.wait(lock, [&] { return made_ > index || stopped_; });
  return made_ > index;
}

}  // namespace quorvane::platform
