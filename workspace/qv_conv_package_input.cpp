#include "workspace/qv_conv_package_input.h"

#include <exception>

#include "app/qv_conv_exception.h"
#include "platform/file_system.h"
#include "platform/system_info.h"
#include "workspace/archive_tool.h"
#include "workspace/file_tree.h"
#include "workspace/run_log.h"

namespace quorvane::qvconv::converter {

QvConvPackageInput::QvConvPackageInput(QvConvRunConfig& config) : config_(config) {}

QvConvPackageInput::~QvConvPackageInput() = default;

bool& QvConvPackageInput::IsXmlPackage() {
  if (probed_) return answer_;
  try {
    answer_ = false;
    const std::u16string probe = ProbeFolder();
    // The probe folder has a fixed name: one run at a time fills, reads and
    // empties it.
    platform::FileLock lock(probe + u".lock");
    answer_ = ProbeArchive(config_.InputPath());
    DeleteTree(probe);
    probed_ = true;
  } catch (const std::exception&) {
    ThrowCode(codes::kUnpackFailed);
  }
  return answer_;
}

std::u16string QvConvPackageInput::Root() const {
  std::u16string root = config_.WorkRoot();
  if (root.empty()) root = platform::TempDirectory();
  return root;
}

std::u16string QvConvPackageInput::UnzipFolder() const { return Root() + u"unzip"; }

std::u16string QvConvPackageInput::ConvFolder() const { return Root() + u"conv"; }

void QvConvPackageInput::Unpack() {
  if (answer_) {
    // unzip is shared by every run that opens a package: it stays ours until
    // the conversion that reads it has ended.
    if (!unzip_lock_) unzip_lock_ = std::make_unique<platform::FileLock>(UnzipFolder() + u".lock");
    MakeUnpackFolders();
    config_.SetConversionRoot(UnzipFolder());
  }
  ExtractInput();
  if (answer_) SwitchToPackage();
}

void QvConvPackageInput::MakeUnpackFolders() {
  for (const std::u16string& folder : {UnzipFolder(), ConvFolder()}) {
    run_log::Attempt("make folder", folder);
    if (platform::MakeDirectory(folder) == platform::MakeDirResult::kFailed) {
      ThrowCode(codes::kCannotCreate);
    }
  }
}

void QvConvPackageInput::ExtractInput() {
  try {
    const std::u16string destination = answer_ ? UnzipFolder() : config_.OutputPath();
    if (destination.empty()) ThrowCode(codes::kBadCommandLine);
    UnpackArchive(config_.InputPath(), destination);
  } catch (const std::exception&) {
    ThrowCode(codes::kUnpackFailed);
  }
}

void QvConvPackageInput::SwitchToPackage() {
  config_.SetInputKind(KindCompact);
  config_.SetOutputKind(KindProject);
  config_.SetInputPath(UnzipFolder());
  config_.SetConversionRoot(ConvFolder());
  config_.SetOutputArchive(false);
}

}  // namespace quorvane::qvconv::converter
