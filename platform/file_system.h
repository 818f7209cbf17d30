// The file system, as the rest of the program sees it: folders made one level
// at a time, listings, single-file copies and removals, whole-file reads and
// writes.  Paths are UTF-16 text; they become UTF-8 here, at the boundary, and
// nowhere else.  No path length limit applies beyond the system's own.
//
// A backslash in a path is a plain character to the system: callers that join a
// relative path from a project file turn its backslashes into "/" first.
#ifndef QV_PLATFORM_FILE_SYSTEM_H_
#define QV_PLATFORM_FILE_SYSTEM_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane::platform {

// The UTF-8 form of a path, as the system takes it.
std::string NativePath(std::u16string_view path);
// A UTF-8 name from the system, as text (bytes that are not UTF-8 become U+FFFD).
std::u16string PathFromNative(std::string_view native);

enum class MakeDirResult { kCreated, kExists, kFailed };

// Makes one folder; the parent must exist.  kExists when the path is already
// in use (by a folder or by a file).
MakeDirResult MakeDirectory(std::u16string_view path);

// Is the path in use (a symbolic link counts, even a dangling one)?
bool PathExists(std::u16string_view path);
// Is the path a folder (a link to a folder is not)?
bool IsDirectory(std::u16string_view path);
// Is the path a plain file (a link to a file is not)?
bool IsRegularFile(std::u16string_view path);

struct DirEntry {
  std::u16string name;
  bool is_directory = false;  // a real folder, not a link to one
  bool read_only = false;     // the owner may not write it
};

// The entries of one folder, without "." and "..", sorted by name in bytes so
// that a listing is the same on every run.  False if the folder cannot be read.
bool ListDirectory(std::u16string_view path, std::vector<DirEntry>* entries);

// Gives the owner write permission.
bool MakeWritable(std::u16string_view path);
// Removes one file (or link).
bool RemoveFile(std::u16string_view path);
// Removes one empty folder.
bool RemoveDirectory(std::u16string_view path);

// Copies one plain file; an existing target is overwritten.  False if the
// source cannot be read or the target cannot be written completely.
bool CopyFile(std::u16string_view source, std::u16string_view destination);

// Reads a whole file.  False if it cannot be opened or read.
bool ReadFile(std::u16string_view path, std::string* bytes);
// Reads at most `limit` bytes from the start of a file.
bool ReadFilePrefix(std::u16string_view path, std::size_t limit, std::string* bytes);
// Creates or truncates a file and writes the bytes.  False if anything of it
// failed, the final flush and close included (a full disk is a failure).
bool WriteFile(std::u16string_view path, std::string_view bytes);

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
  bool Flush();
  int fd_ = -1;
  bool failed_ = false;
  std::string buffer_;
};

}  // namespace quorvane::platform

#endif  // QV_PLATFORM_FILE_SYSTEM_H_
