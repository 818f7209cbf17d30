#include "platform/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "platform/file_system.h"
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

// Starts the program with its standard output on the pipe `out` (null:
// /dev/null) and reads that pipe into `output` until the program closes it;
// then waits.
ProcessResult Run(const std::vector<std::u16string>& argv, Pipe* out, std::string* output) {
  ProcessResult result;
  if (argv.empty()) return result;
  // A path too long for the system is passed in its short form; a switch
  // that carries a path ("-o<folder>") keeps its switch in front.
  std::vector<SystemPath> long_paths;
  std::vector<std::string> args;
  args.reserve(argv.size());
  for (const auto& a : argv) {
    std::string arg = NativePath(a);
    const std::size_t slash = arg.find('/');
    if (arg.size() >= 3800 && slash != std::string::npos) {
      const std::size_t path_start = arg[0] == '-' ? slash : 0;
      long_paths.emplace_back(arg.substr(path_start));
      arg = arg.substr(0, path_start) + long_paths.back().str();
    }
    args.push_back(std::move(arg));
  }
  std::vector<char*> pointers;
  for (auto& a : args) pointers.push_back(a.data());
  pointers.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  if (posix_spawn_file_actions_init(&actions) != 0) return result;
  // The tool talks on its standard streams; our caller hears nothing of it,
  // and it must never wait for an answer on its input.
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  if (out != nullptr) {
    posix_spawn_file_actions_adddup2(&actions, out->ends[1], 1);
  } else {
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  }
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  pid_t pid = 0;
  const int rc = posix_spawnp(&pid, pointers[0], &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (out != nullptr) {
    out->Close(1);  // the child's copy keeps the pipe open while it runs
    if (rc == 0) {
      char buffer[1 << 16];
      for (;;) {
        const ssize_t n = ::read(out->ends[0], buffer, sizeof buffer);
        if (n > 0) {
          output->append(buffer, static_cast<std::size_t>(n));
        } else if (n == 0 || errno != EINTR) {
          break;
        }
      }
    }
    out->Close(0);
  }
  if (rc != 0) return result;
  result.started = true;
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) return result;
  }
  result.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

}  // namespace

ProcessResult RunProcess(const std::vector<std::u16string>& argv) {
  return Run(argv, nullptr, nullptr);
}

ProcessResult RunProcess(const std::vector<std::u16string>& argv, std::string& output) {
  output.clear();
  Pipe out;
  if (::pipe2(out.ends, O_CLOEXEC) != 0) return {};
  return Run(argv, &out, &output);
}

}  // namespace quorvane::platform
