#include "platform/file_system.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "platform/case_lookup.h"
#include "platform/ntfs_names.h"
#include "platform/system_calls.h"
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
// Gives the file's status too.
int OpenPlainFileForReading(const std::string& path, struct stat* st) {
  const int fd = OpenRetry(path, O_RDONLY | O_NONBLOCK);
  if (fd < 0) return -1;
  if (::fstat(fd, st) != 0 || !S_ISREG(st->st_mode)) {
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

// Reads on from the file's position up to its end or `limit` bytes.  `size`
// is the size of the plain file as it was opened (-1: unknown): it is read in
// one call, and a read that comes back short is the end of a plain file, so a
// small file costs a single read.
bool ReadUpTo(int fd, off_t size, std::size_t limit, std::string* bytes) {
  bytes->clear();
  std::size_t chunk = 65536;
  if (size >= 0 && static_cast<std::size_t>(size) < limit) {
    chunk = static_cast<std::size_t>(size) + 1;
  }
  while (bytes->size() < limit) {
    const std::size_t done = bytes->size();
    const std::size_t want = std::min(chunk, limit - done);
    bytes->resize(done + want);
    const ssize_t n = ::read(fd, bytes->data() + done, want);
    bytes->resize(done + static_cast<std::size_t>(std::max<ssize_t>(n, 0)));
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    if (n == 0 || (size >= 0 && static_cast<std::size_t>(n) < want)) break;
    chunk = std::max<std::size_t>(65536, bytes->size());
  }
  return true;
}

// Did a call fail because a name of the path is missing?  (A name that is
// there as spelled but is no folder, ENOTDIR, is what Windows finds too: an
// exact name wins.)
bool Missing() { return errno == ENOENT; }

// Runs `call` (true on success, errno set on failure) on an existing entry:
// on the path as Windows cleans it, and when that names nothing, on the path
// found without regard to case.
template <typename Call>
bool OnExisting(std::u16string_view path, Call&& call) {
  SystemPath native(path);
  if (!native.nameable()) {
    errno = ENOENT;
    return false;
  }
  if (call(native)) return true;
  if (!Missing()) return false;
  const int error = errno;
  std::string found = FindIgnoringCase(native.native());
  if (found.empty()) {
    errno = error;
    return false;
  }
  native.Reset(std::move(found));
  return call(native);
}

// Runs `call` to create an entry (a folder when `folder` is set): spelled as an
// entry of the same name in another case is, and in a folder found without
// regard to case when the folder as spelled is missing.
template <typename Call>
bool OnNew(std::u16string_view path, bool folder, Call&& call) {
  SystemPath native(path);
  if (!native.nameable()) {
    errno = EINVAL;
    return false;
  }
  std::string spelling = SpellingForNew(native.native());
  if (spelling != native.native()) native.Reset(std::move(spelling));
  bool done = call(native);
  if (!done && Missing()) {
    const int error = errno;
    const std::string found = FindFolderIgnoringCase(native.native());
    if (found.empty()) {
      errno = error;
      return false;
    }
    native.Reset(SpellingForNew(found));
    done = call(native);
  }
  if (done) NoteCreated(native.native(), folder);
  return done;
}

// Runs `call` to remove or change an entry that a listing gave: on the path as
// it stands first, then as an existing entry.
template <typename Call>
bool OnListed(std::u16string_view path, Call&& call) {
  ForgetFolders();
  SystemPath exact(NativePath(path));
  if (call(exact)) return true;
  if (!Missing()) return false;
  return OnExisting(path, call);
}

bool Lstat(std::u16string_view path, struct stat* st) {
  return OnExisting(path, [&](const SystemPath& p) { return ::lstat(p.c_str(), st) == 0; });
}

int OpenExistingForReading(std::u16string_view path, struct stat* st) {
  int fd = -1;
  OnExisting(path, [&](const SystemPath& p) {
    fd = OpenPlainFileForReading(p.str(), st);
    return fd >= 0;
  });
  return fd;
}

int CreateForWriting(std::u16string_view path) {
  int fd = -1;
  OnNew(path, false, [&](const SystemPath& p) {
    // A new file costs one call; one that is there is looked at first, since
    // Windows writes no file that is read-only, whoever asks.
    fd = OpenRetry(p.str(), O_WRONLY | O_CREAT | O_EXCL, 0666);
    if (fd >= 0 || errno != EEXIST) return fd >= 0;
    if (system::IsReadOnlyFile(p.c_str())) {
      errno = EACCES;
      return false;
    }
    // Without waiting: a pipe that nobody reads is no place to write to.
    fd = OpenRetry(p.str(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK, 0666);
    if (fd >= 0) ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    return fd >= 0;
  });
  return fd;
}

}  // namespace

std::string NativePath(std::u16string_view path) { return Utf8FromUtf16(path); }

std::u16string PathFromNative(std::string_view native) { return Utf16FromUtf8(native); }

std::u16string PathAsFound(std::u16string_view path) {
  SystemPath native(path);
  if (!native.nameable()) return std::u16string(path);
  struct stat st;
  if (::lstat(native.c_str(), &st) == 0 || !Missing()) return PathFromNative(native.native());
  std::string found = FindIgnoringCase(native.native());
  if (found.empty()) found = FindFolderIgnoringCase(native.native());
  return PathFromNative(found.empty() ? native.native() : found);
}

bool IsPipe(std::u16string_view path) {
  struct stat st;
  const SystemPath native(PathAsFound(path));
  return native.nameable() && ::stat(native.c_str(), &st) == 0 &&
         (S_ISFIFO(st.st_mode) || S_ISSOCK(st.st_mode));
}

MakeDirResult system::MakeDirectory(std::u16string_view path) {
  if (OnNew(path, true, [](const SystemPath& p) { return ::mkdir(p.c_str(), 0777) == 0; })) {
    return MakeDirResult::kCreated;
  }
  return errno == EEXIST ? MakeDirResult::kExists : MakeDirResult::kFailed;
}

bool system::PathExists(std::u16string_view path) {
  struct stat st;
  return Lstat(path, &st);
}

bool system::IsDirectory(std::u16string_view path) {
  struct stat st;
  return Lstat(path, &st) && S_ISDIR(st.st_mode);
}

bool system::IsRegularFile(std::u16string_view path) {
  struct stat st;
  return Lstat(path, &st) && S_ISREG(st.st_mode);
}

bool system::ListDirectory(std::u16string_view path, std::vector<DirEntry>* entries) {
  entries->clear();
  DIR* dir = nullptr;
  OnExisting(path, [&](const SystemPath& p) {
    dir = ::opendir(p.c_str());
    return dir != nullptr;
  });
  if (dir == nullptr) return false;
  const int dir_fd = ::dirfd(dir);
  // Each entry with its name upper-cased, the key of NTFS order.
  std::vector<std::pair<std::u16string, DirEntry>> found;
  errno = 0;
  while (struct dirent* e = ::readdir(dir)) {
    const char* name = e->d_name;
    if (std::string_view(name) == "." || std::string_view(name) == "..") continue;
    DirEntry entry;
    entry.name = PathFromNative(name);
    entry.windows_name = IsWindowsName(entry.name);
    if (e->d_type != DT_UNKNOWN) {
      entry.is_directory = e->d_type == DT_DIR;
    } else {
      struct stat st;
      entry.is_directory =
          ::fstatat(dir_fd, name, &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(st.st_mode);
    }
    std::u16string key = NtfsUpper(entry.name);
    found.emplace_back(std::move(key), std::move(entry));
    errno = 0;
  }
  const bool ok = errno == 0;
  ::closedir(dir);
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
    return a.first != b.first ? a.first < b.first : a.second.name < b.second.name;
  });
  entries->reserve(found.size());
  for (auto& f : found) entries->push_back(std::move(f.second));
  return ok;
}

bool system::MakeWritable(std::u16string_view path) {
  return OnListed(path, [](const SystemPath& p) {
    struct stat st;
    if (::lstat(p.c_str(), &st) != 0) return false;
    if (S_ISLNK(st.st_mode)) return true;  // a link has no mode of its own
    return ::chmod(p.c_str(), (st.st_mode & 07777) | S_IWUSR) == 0;
  });
}

bool system::RemoveFile(std::u16string_view path) {
  return OnListed(path, [](const SystemPath& p) { return ::unlink(p.c_str()) == 0; });
}

bool system::RemoveDirectory(std::u16string_view path) {
  return OnListed(path, [](const SystemPath& p) { return ::rmdir(p.c_str()) == 0; });
}

bool system::CopyFile(std::u16string_view source, std::u16string_view destination) {
  struct stat st;
  const int in = OpenExistingForReading(source, &st);
  if (in < 0) return false;
  const int out = CreateForWriting(destination);
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
    ok = ReadUpTo(in, -1, static_cast<std::size_t>(-1), &rest) &&
         WriteAll(out, rest.data(), rest.size());
  }
  // As CopyFileW does: the source's last-write time, and its read-only flag.
  const struct timespec times[2] = {{0, UTIME_OMIT}, st.st_mtim};
  ::futimens(out, times);
  struct stat written;
  if ((st.st_mode & S_IWUSR) == 0 && ::fstat(out, &written) == 0) {
    ::fchmod(out, written.st_mode & 07555);
  }
  ::close(in);
  if (::close(out) != 0) ok = false;
  return ok;
}

bool MoveToNew(std::u16string_view source, std::u16string_view destination) {
  const SystemPath from(NativePath(source));
  const bool moved = OnNew(destination, false, [&](const SystemPath& p) {
    return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, p.c_str(), RENAME_NOREPLACE) == 0;
  });
  if (moved) NoteGone(from.native());
  return moved;
}

bool system::IsReadOnlyFile(const char* native) {
  // Through a link too: the write would reach the file it points to.
  struct stat st;
  return ::stat(native, &st) == 0 && S_ISREG(st.st_mode) && (st.st_mode & S_IWUSR) == 0;
}

bool system::ReadFile(std::u16string_view path, std::string* bytes) {
  return ReadFilePrefix(path, static_cast<std::size_t>(-1), bytes);
}

bool system::ReadFilePrefix(std::u16string_view path, std::size_t limit, std::string* bytes) {
  struct stat st;
  const int fd = OpenExistingForReading(path, &st);
  if (fd < 0) return false;
  const bool ok = ReadUpTo(fd, st.st_size, limit, bytes);
  ::close(fd);
  return ok;
}

namespace {

// A file of the system, written through a buffer.
class SystemWritableFile final : public WritableFile {
 public:
  explicit SystemWritableFile(int fd) : fd_(fd) {}
  ~SystemWritableFile() override { Close(); }

  void Append(std::string_view bytes) override {
    buffer_.append(bytes);
    if (buffer_.size() >= (1u << 16)) Flush();
  }

  bool Close() override {
    if (fd_ < 0) return false;
    Flush();
    if (::close(fd_) != 0) failed_ = true;
    fd_ = -1;
    return !failed_;
  }

 private:
  void Flush() {
    if (!buffer_.empty() && !WriteAll(fd_, buffer_.data(), buffer_.size())) failed_ = true;
    buffer_.clear();
  }

  int fd_;
  bool failed_ = false;
  std::string buffer_;
};

}  // namespace

std::unique_ptr<WritableFile> system::NewWritableFile(std::u16string_view path) {
  const int fd = CreateForWriting(path);
  if (fd < 0) return nullptr;
  return std::make_unique<SystemWritableFile>(fd);
}

bool system::WriteFile(std::u16string_view path, std::string_view bytes) {
  std::unique_ptr<WritableFile> file = system::NewWritableFile(path);
  if (!file) return false;
  file->Append(bytes);
  return file->Close();
}

}  // namespace quorvane::platform
