// The file system, as the rest of the program sees it: folders made one level
// at a time, listings, single-file copies and removals, whole-file reads and
// writes.  Paths are UTF-16 text; they become UTF-8 here, at the boundary, and
// nowhere else.  No path length limit applies beyond the system's own.
//
// Paths are taken as Windows takes them on NTFS, where the projects are made
// (win32_path.h, case_lookup.h):
//   - "\" and "/" both separate names; "." and ".." are resolved on the text;
//     trailing dots and spaces of the last name are dropped;
//   - a path whose names Windows could not hold names nothing: it does not
//     exist, cannot be opened, listed or made;
//   - a path that does not exist as spelled is looked up without regard to
//     case, name by name (an exact name wins, then the first in NTFS order);
//     a path that exists as spelled costs nothing more;
//   - an entry made where one of the same name in another case exists uses
//     that one: a file is overwritten, a folder exists already;
//   - a read-only file is never overwritten, replaced or truncated (Windows
//     refuses that to every user): a write or copy onto one fails.
// Removals take the path as it stands first, so that whatever a listing gave
// can be removed, even a name that Windows could not hold.
#ifndef QV_PLATFORM_FILE_SYSTEM_H_
#define QV_PLATFORM_FILE_SYSTEM_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane::platform {

// The UTF-8 form of a path, as it stands (no cleaning, no lookup).
std::string NativePath(std::u16string_view path);
// A UTF-8 name from the system, as text (bytes that are not UTF-8 become U+FFFD).
std::u16string PathFromNative(std::string_view native);

enum class MakeDirResult { kCreated, kExists, kFailed };

// Makes one folder; the parent must exist.  kExists when the path is already
// in use (by a folder or by a file), in any case.
MakeDirResult MakeDirectory(std::u16string_view path);

// The path that the file calls reach for `path`, for handing to another program
// (the archive tool), which knows nothing of Windows' rules: cleaned as Windows
// cleans it and, where it names nothing as spelled, found without regard to
// case (an existing entry), else with its folder found so (an entry to be made).
// A path that cannot be cleaned is given back as it stands.
std::u16string PathAsFound(std::u16string_view path);

// Is the path in use (a symbolic link counts, even a dangling one)?
bool PathExists(std::u16string_view path);
// Is the path a folder (a link to a folder is not)?
bool IsDirectory(std::u16string_view path);
// Is the path a plain file (a link to a file is not)?
bool IsRegularFile(std::u16string_view path);
// Is the path (or what a link there points to) a pipe or a socket, which
// would hold whoever opens it until someone else writes it?
bool IsPipe(std::u16string_view path);

struct DirEntry {
  std::u16string name;
  bool is_directory = false;  // a real folder, not a link to one
  // Windows could hold this name (ntfs_names.h); a listing as Windows gives
  // it has only these.  The others are listed so that a tree can be removed.
  bool windows_name = true;
};

// The entries of one folder, without "." and "..", in NTFS order (names
// compared after upper-casing, ntfs_names.h), as a listing on Windows comes.
// False if the folder cannot be read.
bool ListDirectory(std::u16string_view path, std::vector<DirEntry>* entries);

// Gives the owner write permission.
bool MakeWritable(std::u16string_view path);
// Removes one file (or link).
bool RemoveFile(std::u16string_view path);
// Removes one empty folder.
bool RemoveDirectory(std::u16string_view path);

// Copies one plain file; an existing target that is not read-only is
// overwritten.  The copy keeps the source's last-write time and, if the
// source is read-only, is made read-only too.  False if the source cannot be
// read or the target cannot be written completely.
bool CopyFile(std::u16string_view source, std::u16string_view destination);

// Moves `source`, a file or folder of the program's own work tree (a path as
// it stands), to `destination`, a name that is not in use in any case, by
// renaming it: one call, whatever the folder holds; times and flags go with
// it.  False, with nothing done, when the destination is in use, lies on
// another file system or cannot be made: the caller copies instead.
bool MoveToNew(std::u16string_view source, std::u16string_view destination);

// Reads a whole file.  False if it cannot be opened or read.
bool ReadFile(std::u16string_view path, std::string* bytes);
// Reads at most `limit` bytes from the start of a file.
bool ReadFilePrefix(std::u16string_view path, std::size_t limit, std::string* bytes);
// Creates or truncates a file and writes the bytes.  False if anything of it
// failed, the final flush and close included (a full disk is a failure).
bool WriteFile(std::u16string_view path, std::string_view bytes);

// A file that is being written, as the Env makes it (env.h): appends are
// buffered; Close (or the destructor) writes the rest and closes the file.
class WritableFile {
 public:
  WritableFile() = default;
  virtual ~WritableFile() = default;
  WritableFile(const WritableFile&) = delete;
  WritableFile& operator=(const WritableFile&) = delete;

  virtual void Append(std::string_view bytes) = 0;
  // False if any write failed.  Called once.
  virtual bool Close() = 0;
};

// A file written piece by piece; Close reports whether every write arrived.
class OutputFile {
 public:
  OutputFile() = default;
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  bool Open(std::u16string_view path);  // create or truncate
  void Append(std::string_view bytes);  // buffered
  bool Close();                         // false if any write failed

 private:
  std::unique_ptr<WritableFile> file_;
};

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_FILE_SYSTEM_H_
