#include "platform/folders_ahead.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/file_system.h"
#include "platform/ntfs_names.h"
#include "platform/system_path.h"
#include "platform/text_codec.h"

namespace quorvane::platform {

FoldersAhead::FoldersAhead(std::u16string_view parent, const std::vector<std::u16string>& names) {
  // The parent as the other file calls find it, in any case.
  const SystemPath path(PathAsFound(parent));
  if (path.nameable()) {
    parent_ = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  }
  names_.reserve(names.size());
  for (const std::u16string& name : names) {
    const bool single = IsWindowsName(name) && name.find_first_of(u"\\/") == std::u16string::npos &&
                        name != u"." && name != u"..";
    names_.push_back(single ? Utf8FromUtf16(name) : std::string());
  }
  created_.assign(names_.size(), false);
  try {
    thread_ = std::thread([this] { Run(); });
  } catch (const std::system_error&) {
    Run();  // no thread to be had: every folder is made now
  }
}

FoldersAhead::~FoldersAhead() {
  quit_ = true;
  if (thread_.joinable()) thread_.join();
  if (parent_ >= 0) ::close(parent_);
}

void FoldersAhead::Withdraw(std::size_t count) {
  quit_ = true;
  if (thread_.joinable()) thread_.join();
  for (std::size_t i = names_.size(); i-- > count;) {
    if (created_[i]) ::unlinkat(parent_, names_[i].c_str(), AT_REMOVEDIR);
  }
}

void FoldersAhead::Run() {
  for (std::size_t i = 0; i < names_.size(); ++i) {
    const std::string& name = names_[i];
    if (quit_ || parent_ < 0 || name.empty()) break;
    const bool created = ::mkdirat(parent_, name.c_str(), 0777) == 0;
    if (!created && errno != EEXIST) break;
    const std::lock_guard<std::mutex> lock(mutex_);
    created_[i] = created;
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
