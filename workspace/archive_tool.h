// The three calls of the external archive tool 7za: pack a folder into a zip
// file, extract an archive, and probe whether an archive is a package of XML
// documents.  Each starts the tool with an argument list (no shell) and waits
// for it without a time limit.
//
// The tool's exit status decides no exit code: a tool that starts counts as
// success, so a corrupt archive or a full disk passes without a failure code,
// and only a tool that cannot be started is a failure.  It is told to the
// run's log, and a package is delivered only when the tool ended well.
//
// After every extraction the names are settled as 7-Zip on Japanese Windows
// makes them (platform/extracted_names.h): a name that is not UTF-8 is read as
// code page 932, "\" separates folders, nothing climbs out of the folder and
// no link is kept.  The tool's own switches do not do this here: -mcp=932
// changes nothing on Linux, and links are made whatever -snl says.  Packing
// needs nothing of the kind: the tool stores every name that is not ASCII in
// UTF-8 with the archive's UTF-8 flag, whatever the locale.
#ifndef QV_WORKSPACE_ARCHIVE_TOOL_H_
#define QV_WORKSPACE_ARCHIVE_TOOL_H_

#include <string>

#include "platform/private_folder.h"

namespace quorvane::qvconv::converter {

// A fixed name in a shared folder that is not ours alone, or cannot be made,
// ends the run (-3) before anything is done with it.
void RequireReady(platform::FixedName status);

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

// The same into a private folder of ours with a fixed name, which is emptied
// first and handed to the tool as the open folder itself, so that its name
// cannot be swapped for a link meanwhile.  Throws -3 when it cannot be
// emptied, -402 when the tool cannot be started.
void UnpackArchive(const std::u16string& archive, platform::PrivateFolder& folder);

// Answers whether `archive` is a package of XML documents: QvFormat/QvS.xml
// in it, its letters in any case as on NTFS, is a plain file that opens
// (reached without following a link) once the archive is extracted and its
// names settled.  The tool lists the archive first (7za l -slt); when no
// entry can come to stand at that place the answer is no, and when the only
// ones that can are the marker itself in its plain form ("QvFormat/QvS.xml"
// or "QvFormat\QvS.xml" in any case), just those are extracted, by their
// exact names.  Any other archive (a name with dropped parts or a drive, a
// file or link named QvFormat, a folder named QvS.xml, an archive that is not
// a zip file or that the tool cannot list cleanly) is extracted whole, so the
// answer is the one a whole extraction gives.  The extraction goes into the
// probe folder <temp>chktemp, which is made if missing and removed again
// after the test; it is not cleared before, so what a killed probe left in it
// takes part in the answer.  Runs side by side take turns on it through the
// lock file <temp>chktemp.lock.  Throws -3 when either name cannot be made or
// is not ours alone (a link, someone else's, writable by others: see
// platform/private_folder.h), before anything is extracted or removed; -402
// when the tool cannot be started (for the listing as for the extraction).
bool ProbeArchive(const std::u16string& archive);

}  // namespace quorvane::qvconv::converter

#endif  // QV_WORKSPACE_ARCHIVE_TOOL_H_
