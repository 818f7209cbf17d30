// The private folder in which a conversion builds its result before delivery.
#ifndef QV_WORKSPACE_WORK_FOLDER_H_
#define QV_WORKSPACE_WORK_FOLDER_H_

#include <string>

namespace quorvane::qvconv::converter {

// Makes a new, empty, unique folder and returns its path, or empty text when
// no free name was found (the caller treats that as code -3).
//
// With an empty `root` the folder goes below <temp><name>, made here with the
// mode 0700 if it is missing; since that name is fixed in a folder that
// others may write, one that is a link, someone else's or writable by others
// gives empty text too (see platform/private_folder.h).  With a root the
// folder goes directly below that root, which is not made here.  The
// folder's own name is the local time "YYYYMMDD-hhmmss" followed directly by
// a fresh UUID: "<base>/20240131-235959<36 characters>".
// Every caller passes the name "QvConv".
std::u16string MakeWorkFolder(const std::u16string& root, const std::u16string& name);

}  // namespace quorvane::qvconv::converter

#endif  // QV_WORKSPACE_WORK_FOLDER_H_
