// What Windows does to the text of a path before it looks at the disk, as
// CreateFileW and the other file calls do on a project made there:
//   - "\" and "/" both separate names; repeated separators count as one;
//   - "." names are dropped and ".." takes the name before it away, on the
//     text alone (so "old\..\x.csv" is "x.csv" whether or not "old" exists);
//     a ".." never climbs above the root of an absolute path, and the leading
//     ".." of a relative path stay;
//   - the last name loses its trailing dots and spaces ("a.csv " is "a.csv"),
//     a name inside the path one trailing dot ("folder." is "folder");
//   - a name that holds a character Windows never allows in one
//     (< > : " | ? * or a unit below 0x20) makes the whole path name nothing.
// Pure text; no system calls.
#ifndef QV_PLATFORM_WIN32_PATH_H_
#define QV_PLATFORM_WIN32_PATH_H_

#include <string>
#include <string_view>

namespace quorvane::platform {

struct Win32Path {
  // The path with "/" between its names; an absolute path begins with "/",
  // a path that ended in a separator still does.  An empty path stays empty;
  // a relative one that cancels out is ".".
  std::u16string path;
  // False when a name of the path is one that Windows cannot hold: such a
  // path names no file and no folder.
  bool nameable = true;
};

Win32Path CleanWin32Path(std::u16string_view path);

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_WIN32_PATH_H_
