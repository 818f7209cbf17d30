// The way down a tree of folders held as open descriptors, for the platform
// layer's walks over trees that someone else may have filled (the removal of
// a tree, the settling of an extracted archive's names).
//
// A FolderWalk is a stack of levels, one per folder from the top of the walk
// down to the folder it stands in.  Each level keeps the entries its user
// means to visit there (FolderEntry, names as raw bytes) and how far the
// visit has come.  The walk itself only goes down and up: what an entry is,
// how a subfolder is opened (platform/folder_descriptors.h opens one without
// following a link) and what is done on the way are its user's.
//
// What it promises:
//   - Bounded descriptors: at most kOpenFolders levels stay open.  Going down
//     past that closes the level that far above.
//   - Going up again opens a closed parent through ".." of the folder left,
//     never through a link, and accepts it only if it is the very folder that
//     was left (the same device and inode, taken when the level was made).
//     A tree moved or swapped meanwhile stops the walk instead of leading it
//     elsewhere.
//   - Every descriptor handed to it is closed by the time it is destroyed,
//     whatever failed.
//
// Not thread-safe; one walk is used by one thread.
#ifndef QV_PLATFORM_FOLDER_WALK_H_
#define QV_PLATFORM_FOLDER_WALK_H_

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <vector>

#include "platform/folder_descriptors.h"

namespace quorvane::platform {

class FolderWalk {
 public:
  // So many levels of one walk stay open at most.
  static constexpr std::size_t kOpenFolders = 16;

  FolderWalk() = default;
  ~FolderWalk();
  FolderWalk(const FolderWalk&) = delete;
  FolderWalk& operator=(const FolderWalk&) = delete;

  // Takes the open folder `fd` as the new deepest level, with no entries yet,
  // and owns it from now on.  `info` (if not null) gets what fstat tells of
  // it.  False when the folder cannot be looked at (fstat): the level stands
  // all the same, but cannot be found again through ".." once it is closed.
  bool Down(int fd, struct stat* info = nullptr);

  // Leaves the deepest level and closes it.  When the level above had been
  // closed, it is opened again as described at the top; false if that fails
  // or finds another folder (the level above then stays, possibly closed).
  // Leaving the top level empties the walk and is always true.
  bool Up();

  bool empty() const { return levels_.empty(); }
  std::size_t depth() const { return levels_.size(); }

  // The deepest level, which must exist: its open folder, the entries to
  // visit there (for its user to fill), and the first entry not yet done
  // (null when every one is) that Pass marks done.
  int folder() const { return levels_.back().fd; }
  std::vector<FolderEntry>& entries() { return levels_.back().entries; }
  const FolderEntry* Current() const;
  void Pass() { ++levels_.back().next; }

 private:
  struct Level {
    int fd = -1;  // -1 while closed to spare descriptors
    dev_t device = 0;
    ino_t inode = 0;
    std::vector<FolderEntry> entries;
    std::size_t next = 0;  // entries before it are done
  };

  std::vector<Level> levels_;
};

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_FOLDER_WALK_H_
