// QvConvRunConfig: the configuration of one run, a plain value record copied
// into each pipeline.  It reads nothing and checks nothing: the run control
// fills it from the command line and the conversion parameter file, and the
// opening of an XML package changes it afterwards.
//
// No path is normalised: no separator is added or removed, and a relative path
// is relative to the current folder.
#ifndef QV_BASE_QV_CONV_RUN_CONFIG_H_
#define QV_BASE_QV_CONV_RUN_CONFIG_H_

#include <cstdint>
#include <string>

namespace quorvane::qvconv::converter {

// The form of a scenario on the input side and on the output side.
enum QvConvKind : std::int32_t {
  KindProject = 0,  // CSV project
  KindCompact = 1,  // XML documents, compact vocabulary
  KindDebug = 2,    // XML documents, debug vocabulary
};

// The region of the target display, for the layout checks.
struct QvConvDisplayRegion {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
};

class QvConvRunConfig {
 public:
  QvConvRunConfig() = default;
  QvConvRunConfig(const std::u16string& input, const std::u16string& output)
      : input_path_(input), output_path_(output) {}

  // check_only := flag; check_path := path unless path is empty.
  void SetCheck(bool flag, const std::u16string& path) {
    check_only_ = flag;
    if (!path.empty()) check_path_ = path;
  }
  void SetWorkRoot(const std::u16string& path) { work_root_ = path; }

  std::u16string InputPath() const { return input_path_; }
  std::u16string OutputPath() const { return output_path_; }
  std::u16string CheckPath() const { return check_path_; }
  std::u16string WorkRoot() const { return work_root_; }
  // conversion_root if it is set, else work_root.
  std::u16string ConversionRoot() const {
    return conversion_root_.empty() ? work_root_ : conversion_root_;
  }
  bool CheckOnly() const { return check_only_; }
  bool Unpackage() const { return unpackage_; }
  std::int32_t InputKind() const { return input_kind_; }
  std::int32_t OutputKind() const { return output_kind_; }
  bool InputArchive() const { return input_archive_; }
  bool OutputArchive() const { return output_archive_; }
  bool Compress() const { return compress_; }
  QvConvDisplayRegion DisplayRegion() const { return display_region_; }

  void SetInputPath(const std::u16string& path) { input_path_ = path; }
  void SetConversionRoot(const std::u16string& path) { conversion_root_ = path; }
  void SetUnpackage(bool flag) { unpackage_ = flag; }
  void SetInputKind(std::int32_t kind) { input_kind_ = kind; }
  void SetOutputKind(std::int32_t kind) { output_kind_ = kind; }
  void SetInputArchive(bool flag) { input_archive_ = flag; }
  void SetOutputArchive(bool flag) { output_archive_ = flag; }
  void SetCompress(bool flag) { compress_ = flag; }
  void SetDisplayRegion(const QvConvDisplayRegion& region) { display_region_ = region; }

 private:
  std::u16string input_path_;
  std::u16string output_path_;
  std::u16string check_path_;
  std::u16string work_root_;
  std::u16string conversion_root_;
  bool check_only_ = false;
  bool unpackage_ = false;
  std::int32_t input_kind_ = KindProject;
  std::int32_t output_kind_ = KindCompact;
  bool input_archive_ = false;
  bool output_archive_ = true;
  bool compress_ = false;
  QvConvDisplayRegion display_region_;
};

}  // namespace quorvane::qvconv::converter

#endif  // QV_BASE_QV_CONV_RUN_CONFIG_H_
