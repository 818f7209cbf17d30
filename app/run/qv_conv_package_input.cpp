#include "app/run/qv_conv_package_input.h"

#include <exception>

#include "base/qv_conv_exception.h"
#include "platform/file_lock.h"
#include "platform/private_folder.h"
#include "platform/system_info.h"
#include "workspace/archive_tool.h"
#include "workspace/run_log.h"

namespace quorvane::qvconv::converter {
QvConvPackageInput::QvConvPackageInput(QvConvRunConfig& config) : config_(config) {}

QvConvPackageInput::~QvConvPackageInput() = default;

bool QvConvPackageInput::IsXmlPackage() {
  if (probed_) return answer_;
  Guarded(codes::kUnpackFailed, [&] {
    answer_ = ProbeArchive(config_.InputPath());
    probed_ = true;
  });
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
    MakeUnpackFolders();
    config_.SetConversionRoot(UnzipFolder());
  }
  ExtractInput();
  if (answer_) SwitchToPackage();
}

void QvConvPackageInput::MakeUnpackFolders() {
  const platform::SharedFolder root(Root());
  RequireReady(root.status());
  // unzip is shared by every run that opens a package: it stays ours until
  // the conversion that reads it has ended.
  if (!unzip_lock_) unzip_lock_ = std::make_unique<platform::FileLock>(root, u"unzip.lock");
  RequireReady(unzip_lock_->status());
  run_log::Attempt("make folder", UnzipFolder());
  unzip_ = std::make_unique<platform::PrivateFolder>(root, u"unzip");
  RequireReady(unzip_->status());
  run_log::Attempt("make folder", ConvFolder());
  conv_ = std::make_unique<platform::PrivateFolder>(root, u"conv");
  RequireReady(conv_->status());
}

void QvConvPackageInput::ExtractInput() {
  Guarded(codes::kUnpackFailed, [&] {
    if (answer_) {
      UnpackArchive(config_.InputPath(), *unzip_);
      return;
    }
    const std::u16string destination = config_.OutputPath();
    if (destination.empty()) ThrowCode(codes::kBadCommandLine);
    UnpackArchive(config_.InputPath(), destination);
  });
}

void QvConvPackageInput::SwitchToPackage() {
  config_.SetInputKind(KindCompact);
  config_.SetOutputKind(KindProject);
  config_.SetInputPath(UnzipFolder());
  config_.SetConversionRoot(ConvFolder());
  config_.SetOutputArchive(false);
}

}  // namespace quorvane::qvconv::converter
