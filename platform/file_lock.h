// FileLock: an exclusive lock on a file with a fixed name in a shared folder
// ("chktemp.lock", "unzip.lock" in the temporary folder), which lets runs
// side by side take turns on a shared fixed-name folder.
//
// The name is reached from the open shared folder without following a link,
// made with the mode 0600 if missing, and used only when it is a plain file
// with one name, owned by the effective user and not writable by group or
// others: a name made beforehand by someone else (a link to a file of the
// user, a dangling link, a folder, someone else's file) is never opened for
// writing, created through or locked.  Nothing is ever written to the file.
//
// At destruction the file is removed (if the name still stands for it) and
// the lock released; a process that ends releases it too, and may leave the
// empty file, which its next run takes over.
#ifndef QV_PLATFORM_FILE_LOCK_H_
#define QV_PLATFORM_FILE_LOCK_H_

#include <string>
#include <string_view>

#include "platform/private_folder.h"

namespace quorvane::platform {

class FileLock {
 public:
  // Blocks until the lock is had (status() ready), or the name is refused.
  FileLock(const SharedFolder& folder, std::u16string_view name);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  FixedName status() const { return status_; }
  bool held() const { return status_ == FixedName::kReady; }

 private:
  int folder_ = -1;  // our own copy of the shared folder's descriptor
  int fd_ = -1;
  std::string name_;
  FixedName status_ = FixedName::kUnavailable;
};

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_FILE_LOCK_H_
