// The system's own implementations of the calls that Env carries, behind
// Env::Default().  Only platform/ includes this; everything else calls the
// free functions of file_system.h, process.h and system_info.h, which go
// through the current Env.  The contracts are those of the public headers.
#ifndef QV_PLATFORM_SYSTEM_CALLS_H_
#define QV_PLATFORM_SYSTEM_CALLS_H_

#include <cstddef>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/process.h"

namespace quorvane::platform::system {

// Is the system path (or what a link there points to) a plain file that its
// owner may not write?  Windows
// replaces no such file, whoever asks (a file call on it is refused).
bool IsReadOnlyFile(const char* native);

bool ReadFile(std::u16string_view path, std::string* bytes);
bool ReadFilePrefix(std::u16string_view path, std::size_t limit, std::string* bytes);
bool WriteFile(std::u16string_view path, std::string_view bytes);
std::unique_ptr<WritableFile> NewWritableFile(std::u16string_view path);
bool CopyFile(std::u16string_view source, std::u16string_view destination);
MakeDirResult MakeDirectory(std::u16string_view path);
bool ListDirectory(std::u16string_view path, std::vector<DirEntry>* entries);
bool RemoveFile(std::u16string_view path);
bool PathExists(std::u16string_view path);
bool IsDirectory(std::u16string_view path);
bool IsRegularFile(std::u16string_view path);
bool MakeWritable(std::u16string_view path);
bool RemoveDirectory(std::u16string_view path);
ProcessResult RunProcess(const std::vector<std::u16string>& argv, std::string* output);
std::tm LocalNow();
std::u16string TempDirectory();
std::string MessageLocaleName();

}  // namespace quorvane::platform::system

#endif  // QV_PLATFORM_SYSTEM_CALLS_H_
