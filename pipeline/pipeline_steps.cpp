#include "pipeline/pipeline_steps.h"

#include <exception>

#include "base/qv_conv_exception.h"
#include "platform/file_system.h"
#include "workspace/atomic_delivery.h"
#include "workspace/file_tree.h"
#include "workspace/run_log.h"

namespace quorvane::qvconv::converter {

void MakeFolder(const std::u16string& path, ExistingFolder existing) {
  run_log::Attempt("make folder", path);
  switch (platform::MakeDirectory(path)) {
    case platform::MakeDirResult::kCreated:
      return;
    case platform::MakeDirResult::kExists:
      if (existing == ExistingFolder::kIsFine) return;
      break;
    case platform::MakeDirResult::kFailed:
      break;
  }
  ThrowCode(codes::kCannotCreate);
}

void DeliverTree(const std::u16string& tree, const QvConvRunConfig& config,
                 const std::u16string& copy_target) {
  if (config.OutputArchive()) {
    Guarded(codes::kPackFailed, [&] {
      PackFolderWhole(tree, config.OutputPath(), config.Compress());
    });
  } else {
    // The tree is the work folder's, removed after the delivery: what can be
    // moved is not copied, and what must be copied arrives whole.
    Guarded(codes::kCopyFailed, [&] { MoveTree(tree, copy_target); });
  }
}

}  // namespace quorvane::qvconv::converter
