// The three calls of the external archive tool 7za: pack a folder into a zip
// file, extract an archive, and probe whether an archive is a package of XML
// documents.  Each starts the tool with an argument list (no shell) and waits
// for it without a time limit.
//
// The tool's exit status is not used: a tool that starts counts as success,
// so a corrupt archive or a full disk passes without a failure code.  Only a
// tool that cannot be started is a failure.
#ifndef QV_WORKSPACE_ARCHIVE_TOOL_H_
#define QV_WORKSPACE_ARCHIVE_TOOL_H_

#include <string>

namespace quorvane::qvconv::converter {

// Packs `folder` into the zip file `archive`: 7za a -r -tzip <archive> <folder>.
// The folder is stored by its own name, so packing ".../QvFormat" gives a zip
// whose entries begin with "QvFormat/".  An existing archive is added to, not
// replaced.  With `compress` the zip is made at the tool's highest compression
// level.  Throws -401 when the tool cannot be started or the command cannot
// be built.  Returns the tool's exit status (-1: it was killed), which no
// exit code of the run depends on.
int PackFolder(const std::u16string& folder, const std::u16string& archive, bool compress);

// Extracts `archive` into `folder`: 7za x <archive> -o<folder>.  A non-empty
// `folder` is deleted first, whatever becomes of the extraction.  Throws -402
// when the tool cannot be started, or on a standard exception.  An archive
// that the tool could not extract passes without a code (a note in the run's
// log).
void UnpackArchive(const std::u16string& archive, const std::u16string& folder);

// Extracts the whole archive into <temp>chktemp and answers whether
// <temp>chktemp/QvFormat/QvS.xml can then be opened: that one file makes an
// archive a package of XML documents.  The probe folder is left for the
// caller to remove.  Throws -402 when the tool cannot be started.
bool ProbeArchive(const std::u16string& archive);

// The probe's extraction folder: <temp>chktemp.
std::u16string ProbeFolder();

}  // namespace quorvane::qvconv::converter

#endif  // QV_WORKSPACE_ARCHIVE_TOOL_H_
