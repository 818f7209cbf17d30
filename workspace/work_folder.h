// The private folder in which a conversion builds its result before delivery.
#ifndef QV_WORKSPACE_WORK_FOLDER_H_
#define QV_WORKSPACE_WORK_FOLDER_H_

#include <string>

namespace quorvane::qvconv::converter {

// Makes a new, empty, unique folder and returns its path, or empty text when
// no free name was found (the caller treats that as code -3).
//
// With an empty `root` the folder goes below <temp><name> (made here if it is
// missing); with a root it goes directly below that root, which is not made
// here.  The folder's own name is the local time "YYYYMMDD-hhmmss" followed
// directly by a fresh UUID: "<base>/20240131-235959<36 characters>".
// Every caller passes the name "QvConv".
std::u16string MakeWorkFolder(const std::u16string& root, const std::u16string& name);

}  // namespace quorvane::qvconv::converter

#endif  // QV_WORKSPACE_WORK_FOLDER_H_
