#include "platform/atomic_file.h"

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "platform/file_system.h"
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

bool WriteAll(int fd, const char* data, std::size_t size) {
  while (size > 0) {
    const ssize_t n = ::write(fd, data, size);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    data += n;
    size -= static_cast<std::size_t>(n);
  }
  return true;
}

// Copies everything from `in` to `out`, up to the end of the input as it is
// found, not as it was when the copy began.
bool CopyAll(int in, int out) {
  for (;;) {
    const ssize_t n = ::sendfile(out, in, nullptr, 1 << 30);
    if (n > 0) continue;
    if (n == 0) return true;
    if (errno == EINTR) continue;
    if (errno == EINVAL || errno == ENOSYS) break;  // no kernel copy here: by hand
    return false;
  }
  char buffer[65536];
  for (;;) {
    const ssize_t n = ::read(in, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    if (n == 0) return true;
    if (!WriteAll(out, buffer, static_cast<std::size_t>(n))) return false;
  }
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

mode_t CurrentUmask() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return mask;
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

bool CopyFileWhole(std::u16string_view source_path, std::u16string_view destination_path) {
  // Both found as the other file calls find them: in any case, and the
  // destination in the folder (and with the name) that is there already.
  const std::u16string source = PathAsFound(source_path);
  const std::u16string destination = PathAsFound(destination_path);
  const SystemPath from(source);
  // A pipe or a device must neither block the copy nor feed it without end.
  const int in = OpenRetry(from.c_str(), O_RDONLY | O_NONBLOCK);
  if (in < 0) return false;
  struct stat st;
  if (::fstat(in, &st) != 0 || !S_ISREG(st.st_mode)) {
    ::close(in);
    return false;
  }
  const std::u16string partial_text = PartialPathOf(destination);
  const SystemPath partial(partial_text);
  // A temporary that is a link is never written through: it is replaced.
  int out = -1;
  for (int attempt = 0; attempt < 2 && out < 0; ++attempt) {
    out = OpenRetry(partial.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, 0666);
    if (out < 0 && !(errno == ELOOP && ::unlink(partial.c_str()) == 0)) break;
  }
  if (out < 0) {
    ::close(in);
    return false;
  }
  bool ok = CopyAll(in, out);
  // As the system's file copy does: the source's last-write time, and its
  // read-only flag.
  const struct timespec times[2] = {{0, UTIME_OMIT}, st.st_mtim};
  ::futimens(out, times);
  if ((st.st_mode & S_IWUSR) == 0) ::fchmod(out, 0444 & ~CurrentUmask());
  ::close(in);
  if (::close(out) != 0) ok = false;
  if (ok) ok = ::rename(partial.c_str(), SystemPath(destination).c_str()) == 0;
  if (!ok) ::unlink(partial.c_str());
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
  return ::rename(SystemPath(from).c_str(), SystemPath(to).c_str()) == 0;
}

}  // namespace quorvane::platform
