// Paths as the project files give them.  Project files were written on a
// system whose separator is the backslash; here both "\" and "/" cut a path,
// and a relative path from a file has its backslashes turned into "/" when it
// is joined to a folder.
#ifndef QV_WORKSPACE_PROJECT_PATH_H_
#define QV_WORKSPACE_PROJECT_PATH_H_

#include <string>
#include <string_view>

namespace quorvane::qvconv::converter {

// `relative` with every backslash turned into "/".
std::u16string WithForwardSlashes(std::u16string_view relative);

// folder + "/" + relative, the relative part with forward slashes.
std::u16string JoinPath(std::u16string_view folder, std::u16string_view relative);

// The part behind the last "\" or "/" (all of it when there is none).
std::u16string FileNameOf(std::u16string_view path);

// True when a "/"- or "\"-separated part of the path is "..": such a path
// may lead out of the folder that it is joined to.
bool HasParentStep(std::u16string_view path);

}  // namespace quorvane::qvconv::converter

#endif  // QV_WORKSPACE_PROJECT_PATH_H_
