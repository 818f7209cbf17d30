#include "platform/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "platform/case_lookup.h"
#include "platform/file_system.h"
#include "platform/system_calls.h"
#include "platform/system_path.h"
#include "platform/text_codec.h"

namespace quorvane::platform {
namespace {

// The longest file name that the usual file systems take, in bytes.
constexpr std::size_t kMaxNameBytes = 255;
constexpr char16_t kPartialSuffix[] = u".partial";

int OpenRetry(const char* path, int flags, mode_t mode = 0) {
  int fd;
  do {
    fd = ::open(path, flags | O_CLOEXEC, mode);
  } while (fd < 0 && errno == EINTR);
  return fd;
}

bool SyncDescriptor(int fd) {
  int rc;
  do {
    rc = ::fdatasync(fd);
  } while (rc != 0 && errno == EINTR);
  // A file that cannot be flushed (a pipe, some special file systems) is
  // still whole once written.
  return rc == 0 || errno == EINVAL || errno == EROFS;
}

}  // namespace

std::u16string PartialPathOf(std::u16string_view destination) {
  const std::size_t cut = destination.rfind(u'/');
  const std::size_t start = cut == std::u16string_view::npos ? 0 : cut + 1;
  const std::u16string_view folder = destination.substr(0, start);
  const std::u16string_view name = destination.substr(start);
  const std::string bytes = Utf8FromUtf16(name);
  if (bytes.size() + 1 + std::size(kPartialSuffix) - 1 <= kMaxNameBytes) {
    return std::u16string(folder) + u"." + std::u16string(name) + kPartialSuffix;
  }
  // FNV-1a over the name's bytes: the same name gives the same temporary.
  std::uint64_t hash = 14695981039346656037ull;
  for (unsigned char c : bytes) hash = (hash ^ c) * 1099511628211ull;
  char hex[17];
  std::snprintf(hex, sizeof hex, "%016llx", static_cast<unsigned long long>(hash));
  return std::u16string(folder) + u"." + Utf16FromUtf8(hex) + kPartialSuffix;
}

bool CopyFileWhole(std::u16string_view source, std::u16string_view destination_path) {
  // The destination as the other file calls find it: in the folder, and with
  // the name, that is there already in another case.
  const std::u16string destination = PathAsFound(destination_path);
  // As CopyFileW: a read-only file there is not replaced.
  if (system::IsReadOnlyFile(SystemPath(destination).c_str())) return false;
  const std::u16string partial = PartialPathOf(destination);
  // A stale temporary (a killed run's, or a link put there) is replaced, never
  // written through.
  ::unlink(SystemPath(partial).c_str());
  const bool ok = CopyFile(source, partial) && RenameOver(partial, destination);
  if (!ok) ::unlink(SystemPath(partial).c_str());
  return ok;
}

bool SyncFile(std::u16string_view path) {
  const int fd = OpenRetry(SystemPath(path).c_str(), O_RDONLY | O_NONBLOCK);
  if (fd < 0) return false;
  const bool ok = SyncDescriptor(fd);
  ::close(fd);
  return ok;
}

bool RenameOver(std::u16string_view from, std::u16string_view to) {
  const SystemPath source(from), target(to);
  if (::rename(source.c_str(), target.c_str()) != 0) return false;
  // The names remembered for lookups without regard to case follow the move.
  NoteGone(source.native());
  NoteCreated(target.native(), false);
  return true;
}

}  // namespace quorvane::platform
