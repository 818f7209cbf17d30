// QvConvPackageInput: the opening of an archive named with -unpackage.
//
// It finds out whether the input archive is a package of XML documents (it
// holds QvFormat/QvS.xml) and extracts it accordingly:
//   - a plain archive is extracted into the -unpackage folder, and the run is
//     finished;
//   - an XML package is extracted into <root>unzip, and the configuration is
//     rewritten so that the XML to CSV conversion runs on that folder, with
//     its work folder below <root>conv and the project going to the
//     -unpackage folder.
// <root> is the configured work root, else the temporary folder.
//
// The folders chktemp, unzip and conv have fixed names, so runs side by side
// take turns on them: the probe holds a lock on <temp>chktemp.lock, and the
// opening of an XML package holds one on <root>unzip.lock, and keeps unzip
// and conv open, until this object is destroyed (or the process ends), i.e.
// for the whole conversion when the caller keeps the object alive around the
// pipeline.  Each of these names must be ours alone (see
// platform/private_folder.h): one that is a link, someone else's or writable
// by others ends the run with -3 before anything is extracted or removed.
//
// Calling order: IsXmlPackage, then Unpack.
#ifndef QV_APP_RUN_QV_CONV_PACKAGE_INPUT_H_
#define QV_APP_RUN_QV_CONV_PACKAGE_INPUT_H_

#include <memory>
#include <string>

#include "base/qv_conv_run_config.h"

namespace quorvane::platform {
class FileLock;
class PrivateFolder;
}  // namespace quorvane::platform

namespace quorvane::qvconv::converter {

class QvConvPackageInput {
 public:
  explicit QvConvPackageInput(QvConvRunConfig& config);
  ~QvConvPackageInput();
  QvConvPackageInput(const QvConvPackageInput&) = delete;
  QvConvPackageInput& operator=(const QvConvPackageInput&) = delete;

  // Probes the input on the first call (code -3 when the probe folder or its
  // lock is not ours alone, -402 when the tool cannot be started or on a
  // standard exception) and removes the probe folder; later calls give the
  // remembered answer.
  bool IsXmlPackage();

  // Extracts the input (IsXmlPackage has been called): into the output folder for a plain archive,
  // into UnzipFolder() (emptied first) for an XML package, whose configuration is then switched to
  // the XML to CSV conversion.  Codes: -1 no destination, -3 a folder cannot be made or is not ours
  // alone, -402 the tool cannot be started.
  void Unpack();

  // <root>unzip and <root>conv, root being the work root or else the
  // temporary folder (a configured root must end in a separator).
  std::u16string UnzipFolder() const;
  std::u16string ConvFolder() const;

 private:
  void MakeUnpackFolders();
  void ExtractInput();
  void SwitchToPackage();
  std::u16string Root() const;

  QvConvRunConfig& config_;
  bool answer_ = false;
  bool probed_ = false;
  std::unique_ptr<platform::FileLock> unzip_lock_;
  std::unique_ptr<platform::PrivateFolder> unzip_;
  std::unique_ptr<platform::PrivateFolder> conv_;
};

}  // namespace quorvane::qvconv::converter

#endif  // QV_APP_RUN_QV_CONV_PACKAGE_INPUT_H_
