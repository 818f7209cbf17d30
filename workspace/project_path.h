// Paths as the project files give them, joined and cut as the format does it.
// A project is made on Windows: a name read from one of its files is joined to
// its folder with a backslash, and the format's own cuts (the name of a file,
// the name of its folder) are made at the last backslash only.  A "/" inside
// such a name is part of the name to these cuts, while the file system takes
// "\" and "/" alike as separators when the path is opened (file_system.h).
#ifndef QV_WORKSPACE_PROJECT_PATH_H_
#define QV_WORKSPACE_PROJECT_PATH_H_

#include <string>
#include <string_view>

namespace quorvane::qvconv::converter {

// folder + "\" + relative.
std::u16string JoinPath(std::u16string_view folder, std::u16string_view relative);

// The part behind the last "\" (all of it when there is none).
std::u16string FileNameOf(std::u16string_view path);

}  // namespace quorvane::qvconv::converter

#endif  // QV_WORKSPACE_PROJECT_PATH_H_
