#include "pipeline/pipeline_steps.h"

#include <exception>

#include "app/qv_conv_exception.h"
#include "platform/file_system.h"
#include "workspace/archive_tool.h"
#include "workspace/file_tree.h"

namespace quorvane::qvconv::converter {

void MakeFolder(const std::u16string& path, ExistingFolder existing) {
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
    try {
      PackFolder(tree, config.OutputPath(), config.Compress());
    } catch (const std::exception&) {
      ThrowCode(codes::kPackFailed);
    }
  } else {
    try {
      // The tree is the work folder's, removed after the delivery: what can
      // be moved is not copied.
      MoveTree(tree, copy_target);
    } catch (const std::exception&) {
      ThrowCode(codes::kCopyFailed);
    }
  }
}

}  // namespace quorvane::qvconv::converter
