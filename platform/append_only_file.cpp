#include "platform/append_only_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>

#include "platform/system_path.h"

namespace quorvane::platform {
namespace {

ssize_t WriteOnce(int fd, std::string_view bytes) {
  ssize_t n;
  do {
    n = ::write(fd, bytes.data(), bytes.size());
  } while (n < 0 && errno == EINTR);
  return n;
}

// A write to a pipe without a reader, with SIGPIPE held back and the signal
// that it raised taken away again, so that the process lives on.
ssize_t WriteToPipe(int fd, std::string_view bytes) {
  sigset_t pipe_signal, old_mask;
  sigemptyset(&pipe_signal);
  sigaddset(&pipe_signal, SIGPIPE);
  sigset_t pending;
  sigemptyset(&pending);
  // A SIGPIPE that was pending before is not ours to take.
  const bool was_pending = sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
  pthread_sigmask(SIG_BLOCK, &pipe_signal, &old_mask);
  const ssize_t n = WriteOnce(fd, bytes);
  if (n < 0 && errno == EPIPE && !was_pending) {
    const struct timespec no_wait = {0, 0};
    while (sigtimedwait(&pipe_signal, nullptr, &no_wait) < 0 && errno == EINTR) {
    }
  }
  pthread_sigmask(SIG_SETMASK, &old_mask, nullptr);
  return n;
}

}  // namespace

AppendOnlyFile::~AppendOnlyFile() { Close(); }

bool AppendOnlyFile::Open(std::u16string_view path) {
  Close();
  do {
    fd_ = ::open(SystemPath(path).c_str(),
                 O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666);
  } while (fd_ < 0 && errno == EINTR);
  if (fd_ < 0) return false;
  struct stat st;
  if (::fstat(fd_, &st) != 0) {
    Close();
    return false;
  }
  is_pipe_ = S_ISFIFO(st.st_mode) || S_ISSOCK(st.st_mode);
  return true;
}

bool AppendOnlyFile::Append(std::string_view bytes) {
  if (fd_ < 0) return false;
  const ssize_t n = is_pipe_ ? WriteToPipe(fd_, bytes) : WriteOnce(fd_, bytes);
  return n >= 0 && static_cast<std::size_t>(n) == bytes.size();
}

void AppendOnlyFile::Close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
  is_pipe_ = false;
}

}  // namespace quorvane::platform
