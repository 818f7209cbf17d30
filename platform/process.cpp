#include "platform/process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <string>

#include "platform/file_system.h"
#include "platform/system_calls.h"
#include "platform/system_path.h"

extern char** environ;

namespace quorvane::platform {
namespace {

// The two ends of a pipe, closed when the holder goes.
struct Pipe {
  int ends[2] = {-1, -1};
  void Close(int end) {
    if (ends[end] >= 0) ::close(ends[end]);
    ends[end] = -1;
  }
  ~Pipe() { Close(0), Close(1); }
};

// The child's side, between fork and exec: standard streams on /dev/null (its
// output on `out` when that is an open pipe end), a death signal bound to the
// parent, then the program.  Only calls that are safe in a forked child.
// Reports the errno of a failed exec on `report`.
[[noreturn]] void ExecChild(char* const* argv, pid_t parent, int report, int out) {
  // The tool talks on its standard streams; our caller hears nothing of it,
  // and it must never wait for an answer on its input.
  const int null_in = ::open("/dev/null", O_RDONLY);
  const int null_out = ::open("/dev/null", O_WRONLY);
  if (null_in >= 0) ::dup2(null_in, 0);
  if (null_out >= 0) {
    ::dup2(out >= 0 ? out : null_out, 1);
    ::dup2(null_out, 2);
  }
  if (null_in > 2) ::close(null_in);
  if (null_out > 2) ::close(null_out);
  // Killed with the caller; a caller that died before this line is caught by
  // the test of the parent's id.
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(127);
  ::execvp(argv[0], argv);
  const int error = errno;
  while (::write(report, &error, sizeof error) < 0 && errno == EINTR) {
  }
  ::_exit(127);
}

// A plain file that this user may run.
bool IsRunnable(const std::string& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

// Where a program named without a folder is found, as Windows finds it: in
// the folder of this program, then in the current folder, then on the search
// path (which execvp walks).
std::string ProgramToRun(const std::string& name) {
  if (name.empty() || name.find('/') != std::string::npos) return name;
  char self[PATH_MAX];
  const ssize_t length = ::readlink("/proc/self/exe", self, sizeof self - 1);
  if (length > 0) {
    const std::string own(self, static_cast<std::size_t>(length));
    const std::string beside = own.substr(0, own.rfind('/') + 1) + name;
    if (IsRunnable(beside)) return beside;
  }
  if (IsRunnable("./" + name)) return "./" + name;
  return name;
}

}  // namespace

int CurrentProcessId() { return static_cast<int>(::getpid()); }

ProcessResult system::RunProcess(const std::vector<std::u16string>& argv, std::string* output) {
  ProcessResult result;
  if (argv.empty()) return result;
  Pipe out;
  if (output != nullptr) {
    output->clear();
    if (::pipe2(out.ends, O_CLOEXEC) != 0) return result;
  }
  // A path too long for the system is passed in its short form; a switch
  // that carries a path ("-o<folder>") keeps its switch in front.
  std::vector<SystemPath> long_paths;
  std::vector<std::string> args;
  args.reserve(argv.size());
  for (const auto& a : argv) {
    std::string arg = NativePath(a);
    const std::size_t slash = arg.find('/');
    if (arg.size() >= kLongPath && slash != std::string::npos) {
      const std::size_t path_start = arg[0] == '-' ? slash : 0;
      long_paths.emplace_back(arg.substr(path_start));
      arg = arg.substr(0, path_start) + long_paths.back().str();
    }
    args.push_back(std::move(arg));
  }
  args[0] = ProgramToRun(args[0]);
  std::vector<char*> pointers;
  for (auto& a : args) pointers.push_back(a.data());
  pointers.push_back(nullptr);

  // The exec's failure comes back through a pipe that the exec itself closes.
  int report[2];
  if (::pipe2(report, O_CLOEXEC) != 0) return result;
  const pid_t parent = ::getpid();
  const pid_t pid = ::fork();
  if (pid < 0) {
    ::close(report[0]);
    ::close(report[1]);
    return result;
  }
  if (pid == 0) ExecChild(pointers.data(), parent, report[1], out.ends[1]);
  ::close(report[1]);
  out.Close(1);  // the child's copy keeps the pipe open while it runs
  int exec_error = 0;
  ssize_t got;
  do {
    got = ::read(report[0], &exec_error, sizeof exec_error);
  } while (got < 0 && errno == EINTR);
  ::close(report[0]);
  if (output != nullptr && got <= 0) {
    char buffer[1 << 16];
    for (;;) {
      const ssize_t n = ::read(out.ends[0], buffer, sizeof buffer);
      if (n > 0) {
        output->append(buffer, static_cast<std::size_t>(n));
      } else if (n == 0 || errno != EINTR) {
        break;
      }
    }
  }
  out.Close(0);

  int status = 0;
  while (::waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) return result;
  }
  if (got > 0) return result;  // the program could not be started
  result.started = true;
  result.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

}  // namespace quorvane::platform
