#include "workspace/archive_tool.h"

#include <exception>
#include <string>
#include <vector>

#include "app/qv_conv_exception.h"
#include "platform/file_system.h"
#include "platform/process.h"
#include "platform/system_info.h"
#include "workspace/file_tree.h"
#include "workspace/run_log.h"

namespace quorvane::qvconv::converter {
namespace {

const char16_t kTool[] = u"7za";

// The tool reads an argument that begins with "-" as a switch; a relative
// path of that form is handed over as "./-name" so that it stays a path.
std::u16string AsOperand(const std::u16string& path) {
  if (!path.empty() && path[0] == u'-') return u"./" + path;
  return path;
}

// Runs the tool and waits; false when it could not be started.  "-y" answers
// every question of the tool with yes (overwrite and the like), so that it
// never waits for input that cannot come.
bool RunTool(std::vector<std::u16string> arguments, int* status = nullptr) {
  arguments.insert(arguments.begin(), kTool);
  arguments.push_back(u"-y");
  const platform::ProcessResult result = platform::RunProcess(arguments);
  if (status != nullptr) *status = result.exit_status;
  return result.started;
}

}  // namespace

std::u16string ProbeFolder() { return platform::TempDirectory() + u"chktemp"; }

int PackFolder(const std::u16string& folder, const std::u16string& archive, bool compress) {
  bool started = false;
  int status = -1;
  try {
    std::vector<std::u16string> arguments = {u"a", u"-r", u"-tzip", AsOperand(archive),
                                             AsOperand(folder)};
    // The compressed form is the same zip package at the highest level.
    if (compress) arguments.push_back(u"-mx=9");
    started = RunTool(std::move(arguments), &status);
  } catch (const std::exception&) {
    ThrowCode(codes::kPackFailed);
  }
  if (!started) ThrowCode(codes::kPackFailed);
  return status;
}

void UnpackArchive(const std::u16string& archive, const std::u16string& folder) {
  bool started = false;
  int status = -1;
  try {
    // The destination is emptied first, whatever the extraction then does.
    if (!folder.empty()) DeleteTree(folder);
    run_log::Step("extract", archive, folder);
    started = RunTool({u"x", AsOperand(archive), u"-o" + folder}, &status);
  } catch (const std::exception&) {
    ThrowCode(codes::kUnpackFailed);
  }
  if (!started) ThrowCode(codes::kUnpackFailed);
  if (status != 0) {
    run_log::Loss("the archive", archive,
                  "could not be extracted whole: the archive tool ended with status " +
                      std::to_string(status));
  }
}

bool ProbeArchive(const std::u16string& archive) {
  const std::u16string probe = ProbeFolder();
  if (!RunTool({u"x", AsOperand(archive), u"-o" + probe})) ThrowCode(codes::kUnpackFailed);
  // Only a plain file that opens counts; its content is not read here.
  const std::u16string marker = probe + u"/QvFormat/QvS.xml";
  std::string head;
  return platform::IsRegularFile(marker) && platform::ReadFilePrefix(marker, 1, &head);
}

}  // namespace quorvane::qvconv::converter
