// FoldersAhead: the folders of a list, made inside one parent folder in the
// order of the list, on a thread of its own, while the caller goes on.
//
// A run that only checks a project still makes a folder for every program of
// it, and on a busy disk making a folder costs more than reading the files
// that go in it.  This lets those folders be made beside the reading.
//
// The caller asks for each folder in turn (Wait), at the point where it would
// otherwise have made that folder itself, so that whatever it does when one
// cannot be made happens exactly where it would have happened.  The thread
// stops at the first folder it cannot make: none behind that one is made.  A
// folder that is there already counts as made.  A caller that stops early
// takes back what was made ahead of it (Withdraw), so that what it leaves
// behind is what it would have made itself.
//
// The parent is found as the other file calls find it (in any case).  The
// names are single names that Windows can hold, made with the parent open,
// which is a folder the caller has just made itself: they are not looked up
// without regard to case, and the rest of the file system layer does not
// learn of them, so nothing else is to be made in that parent meanwhile.
// Where no thread can be started, every folder is made before the
// constructor returns.
#ifndef QV_PLATFORM_FOLDERS_AHEAD_H_
#define QV_PLATFORM_FOLDERS_AHEAD_H_

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace quorvane::platform {

class FoldersAhead {
 public:
  // Starts making `names` inside `parent`.  A parent that cannot be opened
  // fails the first folder.
  FoldersAhead(std::u16string_view parent, const std::vector<std::u16string>& names);
  // Stops the thread after the folder it is making, and waits for it.
  ~FoldersAhead();
  FoldersAhead(const FoldersAhead&) = delete;
  FoldersAhead& operator=(const FoldersAhead&) = delete;

  // Blocks until the folder `index` of the list is made or could not be:
  // true when it is there.  False for an index beyond the list.
  bool Wait(std::size_t index);

  // Stops the thread and removes the folders it made from the list's
  // `count`th on, so that only the first `count` stay.
  void Withdraw(std::size_t count);

 private:
  void Run();

  int parent_ = -1;
  std::vector<std::string> names_;  // UTF-8; empty where Windows could not hold the name
  std::mutex mutex_;
  std::condition_variable settled_;
  std::size_t made_ = 0;  // folders of the list made so far, in order
  std::vector<bool> created_;  // made by the thread (not there already)
  bool stopped_ = false;  // the thread has ended
  std::atomic<bool> quit_{false};
  std::thread thread_;
};

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_FOLDERS_AHEAD_H_
