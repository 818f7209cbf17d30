// Folders of ours with fixed names inside a shared folder: the probe folder
// "chktemp", the opened package "unzip", "conv" and "QvConv" in the temporary
// folder, which every user of the machine may write.
//
// Anyone may have made such a name beforehand: as a link to a folder or a
// file of the user, as a dangling link, or as a folder that someone else owns
// or may write.  Such a name is never followed or used:
//   - the shared folder is opened once, and each name in it is reached from
//     that open folder without following a link (O_NOFOLLOW), so no path is
//     resolved twice;
//   - a missing folder is made with the mode 0700; one that exists is used
//     only when it is a real folder, owned by the effective user, and not
//     writable by group or others;
//   - what happens inside goes through the open folder: ChildPath() names it
//     for the archive tool in a form that cannot be swapped, and emptying and
//     removing never follow a link (platform/tree_removal.h).
//
// The shared folder itself may be shared (/tmp, with its sticky bit); it is
// refused only when anyone may write it without the sticky bit, since then
// anyone could rename our folders away once we had checked them.
#ifndef QV_PLATFORM_PRIVATE_FOLDER_H_
#define QV_PLATFORM_PRIVATE_FOLDER_H_

#include <string>
#include <string_view>

namespace quorvane::platform {

enum class FixedName {
  kReady,        // checked and open
  kUnsafe,       // a link, no folder (no file), someone else's, or writable by others
  kUnavailable,  // cannot be made or opened (the shared folder is missing or read-only)
};

// The folder that holds the fixed names, opened once.
class SharedFolder {
 public:
  enum class Missing { kUnavailable, kMake };

  // With kMake, a folder that is missing is made first, with the folders that
  // lead to it, as the archive tool makes the folder it extracts into.
  explicit SharedFolder(std::u16string_view path, Missing missing = Missing::kUnavailable);
  ~SharedFolder();
  SharedFolder(const SharedFolder&) = delete;
  SharedFolder& operator=(const SharedFolder&) = delete;

  FixedName status() const { return status_; }
  // The open folder, for the platform layer's own use; -1 unless ready.
  int descriptor() const { return fd_; }

 private:
  int fd_ = -1;
  FixedName status_ = FixedName::kUnavailable;
};

// One folder of ours with a fixed name in a shared folder, made if missing and
// held open while the object lives.
class PrivateFolder {
 public:
  PrivateFolder(const SharedFolder& shared, std::u16string_view name);
  ~PrivateFolder();
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;

  FixedName status() const { return status_; }

  // Removes everything in the folder.  True if it is empty now.
  bool Empty();
  // Empties the folder and removes it from the shared folder (only if the
  // name still stands for it).  True if it is gone.
  bool Remove();

  // "/proc/self/fd/<n>": this very folder, for a child process started while
  // the object lives (the descriptor is inherited).  Empty unless ready.
  std::u16string ChildPath() const;

  // Settles the names that the archive tool extracted into the folder, as
  // 7-Zip on Japanese Windows makes them (platform/extracted_names.h).  True
  // if every name could be settled.
  bool FixExtractedNames();

  // Is `relative` ("QvFormat/QvS.xml") in the folder a plain file that opens
  // for reading, reached without following a link?  Its parts match names in
  // any case of their ASCII letters, as on NTFS; the exact spelling first.
  bool HasPlainFile(std::u16string_view relative) const;

 private:
  int shared_ = -1;  // our own copy of the shared folder's descriptor
  int fd_ = -1;
  std::string name_;
  FixedName status_ = FixedName::kUnavailable;
};

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_PRIVATE_FOLDER_H_
