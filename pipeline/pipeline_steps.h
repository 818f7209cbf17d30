// Steps that the pipelines share: making the folders of a work tree and
// delivering the finished tree.
#ifndef QV_PIPELINE_PIPELINE_STEPS_H_
#define QV_PIPELINE_PIPELINE_STEPS_H_

#include <string>

#include "base/qv_conv_run_config.h"

namespace quorvane::qvconv::converter {

enum class ExistingFolder { kFails, kIsFine };

// Makes one folder; a failure is code -3.  With kFails a folder (or file) that
// is there already counts as a failure too.
void MakeFolder(const std::u16string& path, ExistingFolder existing);

// Delivers a finished tree, whole or not at all: packed into output_path when
// output_archive is set (a standard exception is -401), else moved to
// `copy_target` (-4), each file by a rename or, where that cannot be, copied
// through a temporary name; the tree is a work tree, removed afterwards.
void DeliverTree(const std::u16string& tree, const QvConvRunConfig& config,
                 const std::u16string& copy_target);

}  // namespace quorvane::qvconv::converter

#endif  // QV_PIPELINE_PIPELINE_STEPS_H_
