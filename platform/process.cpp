#include "platform/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "platform/file_system.h"

extern char** environ;

namespace quorvane::platform {

ProcessResult RunProcess(const std::vector<std::u16string>& argv) {
  ProcessResult result;
  if (argv.empty()) return result;
  std::vector<std::string> args;
  args.reserve(argv.size());
  for (const auto& a : argv) args.push_back(NativePath(a));
  std::vector<char*> pointers;
  for (auto& a : args) pointers.push_back(a.data());
  pointers.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  if (posix_spawn_file_actions_init(&actions) != 0) return result;
  // The tool talks on its standard streams; our caller hears nothing of it,
  // and it must never wait for an answer on its input.
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  pid_t pid = 0;
  const int rc = posix_spawnp(&pid, pointers[0], &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) return result;
  result.started = true;
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) return result;
  }
  result.exit_status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

}  // namespace quorvane::platform
