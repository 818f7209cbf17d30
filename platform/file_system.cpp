#include "platform/file_system.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/system_path.h"
#include "platform/text_codec.h"

namespace quorvane::platform {
namespace {

int OpenRetry(const std::string& path, int flags, mode_t mode = 0) {
  int fd;
  do {
    fd = ::open(path.c_str(), flags | O_CLOEXEC, mode);
  } while (fd < 0 && errno == EINTR);
  return fd;
}

// Opens a file for reading only if it is a plain file: a pipe or a device
// named in a project must neither block the run nor feed it without end.
int OpenPlainFileForReading(const std::string& path) {
  const int fd = OpenRetry(path, O_RDONLY | O_NONBLOCK);
  if (fd < 0) return -1;
  struct stat st;
  if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    ::close(fd);
    errno = EINVAL;
    return -1;
  }
  return fd;
}

bool WriteAll(int fd, const char* data, std::size_t size) {
  while (size > 0) {
    ssize_t n = ::write(fd, data, size);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    data += n;
    size -= static_cast<std::size_t>(n);
  }
  return true;
}

bool ReadUpTo(int fd, std::size_t limit, std::string* bytes) {
  bytes->clear();
  struct stat st;
  if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0) {
    bytes->reserve(std::min<std::size_t>(limit, static_cast<std::size_t>(st.st_size)));
  }
  char buffer[65536];
  while (bytes->size() < limit) {
    std::size_t want = std::min(sizeof buffer, limit - bytes->size());
    ssize_t n = ::read(fd, buffer, want);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    if (n == 0) break;
    bytes->append(buffer, static_cast<std::size_t>(n));
  }
  return true;
}

}  // namespace

std::string NativePath(std::u16string_view path) { return Utf8FromUtf16(path); }

std::u16string PathFromNative(std::string_view native) { return Utf16FromUtf8(native); }

MakeDirResult MakeDirectory(std::u16string_view path) {
  if (::mkdir(SystemPath(path).c_str(), 0777) == 0) return MakeDirResult::kCreated;
  return errno == EEXIST ? MakeDirResult::kExists : MakeDirResult::kFailed;
}

bool PathExists(std::u16string_view path) {
  struct stat st;
  return ::lstat(SystemPath(path).c_str(), &st) == 0;
}

bool IsDirectory(std::u16string_view path) {
  struct stat st;
  return ::lstat(SystemPath(path).c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool IsRegularFile(std::u16string_view path) {
  struct stat st;
  return ::lstat(SystemPath(path).c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool ListDirectory(std::u16string_view path, std::vector<DirEntry>* entries) {
  entries->clear();
  DIR* dir = ::opendir(SystemPath(path).c_str());
  if (dir == nullptr) return false;
  const int dir_fd = ::dirfd(dir);
  std::vector<std::pair<std::string, DirEntry>> found;
  errno = 0;
  while (struct dirent* e = ::readdir(dir)) {
    std::string name = e->d_name;
    if (name == "." || name == "..") continue;
    DirEntry entry;
    entry.name = PathFromNative(name);
    struct stat st;
    if (::fstatat(dir_fd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0) {
      entry.is_directory = S_ISDIR(st.st_mode);
      entry.read_only = (st.st_mode & S_IWUSR) == 0;
    }
    found.emplace_back(std::move(name), std::move(entry));
  }
  const bool ok = errno == 0;
  ::closedir(dir);
  std::sort(found.begin(), found.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
  entries->reserve(found.size());
  for (auto& f : found) entries->push_back(std::move(f.second));
  return ok;
}

bool MakeWritable(std::u16string_view path) {
  const SystemPath native(path);
  struct stat st;
  if (::lstat(native.c_str(), &st) != 0) return false;
  if (S_ISLNK(st.st_mode)) return true;  // a link has no mode of its own
  return ::chmod(native.c_str(), (st.st_mode & 07777) | S_IWUSR) == 0;
}

bool RemoveFile(std::u16string_view path) { return ::unlink(SystemPath(path).c_str()) == 0; }

bool RemoveDirectory(std::u16string_view path) { return ::rmdir(SystemPath(path).c_str()) == 0; }

bool CopyFile(std::u16string_view source, std::u16string_view destination) {
  const int in = OpenPlainFileForReading(SystemPath(source).str());
  if (in < 0) return false;
  struct stat st;
  if (::fstat(in, &st) != 0) {
    ::close(in);
    return false;
  }
  const int out = OpenRetry(SystemPath(destination).str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  if (out < 0) {
    ::close(in);
    return false;
  }
  bool ok = true;
  off_t remaining = st.st_size;
  // The kernel copies without a round trip through our memory.
  while (remaining > 0) {
    ssize_t n = ::sendfile(out, in, nullptr, static_cast<std::size_t>(remaining));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    remaining -= n;
  }
  if (remaining > 0) {
    // sendfile refused (or the file grew or shrank): copy what is left by hand.
    std::string rest;
    ok = ReadUpTo(in, static_cast<std::size_t>(-1), &rest) && WriteAll(out, rest.data(), rest.size());
  }
  ::close(in);
  if (::close(out) != 0) ok = false;
  return ok;
}

bool ReadFile(std::u16string_view path, std::string* bytes) {
  return ReadFilePrefix(path, static_cast<std::size_t>(-1), bytes);
}

bool ReadFilePrefix(std::u16string_view path, std::size_t limit, std::string* bytes) {
  const int fd = OpenPlainFileForReading(SystemPath(path).str());
  if (fd < 0) return false;
  const bool ok = ReadUpTo(fd, limit, bytes);
  ::close(fd);
  return ok;
}

bool WriteFile(std::u16string_view path, std::string_view bytes) {
  OutputFile file;
  if (!file.Open(path)) return false;
  file.Append(bytes);
  return file.Close();
}

OutputFile::~OutputFile() { Close(); }

bool OutputFile::Open(std::u16string_view path) {
  Close();
  failed_ = false;
  buffer_.clear();
  fd_ = OpenRetry(SystemPath(path).str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  return fd_ >= 0;
}

void OutputFile::Append(std::string_view bytes) {
  if (fd_ < 0) {
    failed_ = true;
    return;
  }
  buffer_.append(bytes);
  if (buffer_.size() >= (1u << 16)) Flush();
}

bool OutputFile::Flush() {
  if (!buffer_.empty() && !WriteAll(fd_, buffer_.data(), buffer_.size())) failed_ = true;
  buffer_.clear();
  return !failed_;
}

bool OutputFile::Close() {
  if (fd_ < 0) return false;
  Flush();
  if (::close(fd_) != 0) failed_ = true;
  fd_ = -1;
  return !failed_;
}

}  // namespace quorvane::platform
