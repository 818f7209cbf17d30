#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/run/parameter_file.h"
#include "tests/support/test_support.h"

namespace {

using namespace quorvane::qvconv::converter;

class ParameterFile : public testing::Test {
 protected:
  // Reads `text` as a parameter file into a fresh config_; the failure code, or 0.
  int ReadText(const std::string& text) {
    const std::string path = scratch_.Sub("param.xml");
    qvtest::WriteFile(path, text);
    config_ = QvConvRunConfig();
    return qvtest::CodeOf([&] { ReadParameterFile(qvtest::U16(path), &config_); });
  }
  int Read(const std::string& xml) {
    return ReadText("<QvConvParameter>" + xml + "</QvConvParameter>");
  }
  // Input kind, output kind, input archive, output archive, compress.
  std::vector<int> State() const {
    return {config_.InputKind(), config_.OutputKind(), config_.InputArchive(),
            config_.OutputArchive(), config_.Compress()};
  }

  qvtest::ScratchDir scratch_;
  QvConvRunConfig config_;
};

TEST_F(ParameterFile, AllowedValuesDefaultsAndFailures) {
  const std::pair<const char*, std::vector<int>> cases[] = {
      {"", {KindProject, KindCompact, 0, 1, 0}},
      {"<Input format='application/x-qvf-debug' archive='yes'/>"
       "<Output format='application/x-quorvane' archive='no' compress='yes'/>",
       {KindDebug, KindProject, 1, 0, 1}},
      {"<Input format='application/x-qvf' archive='no'/>"
       "<Output format='application/x-qvf-debug' archive='yes' compress='no'/>",
       {KindCompact, KindDebug, 0, 1, 0}},
      // Later elements win per attribute; an empty value keeps the earlier one;
      // other elements, nested ones and unknown attributes are passed over.
      {"text<Output format='application/x-qvf-debug' archive='no'/><!-- c --><Other format='bad'/>"
       "<Input unknown='x'/><Output compress='yes' format=''/><Group><Input format='bad'/></Group>",
       {KindProject, KindDebug, 0, 0, 1}},
  };
  for (const auto& [xml, state] : cases) {
    EXPECT_EQ(Read(xml), 0) << xml;
    EXPECT_EQ(State(), state) << xml;
  }
  // Wrong values are -201, unreadable files -300.
  for (const char* xml : {
           "<Input format='application/x-qvf '/>",
           "<Output format='application/x-QVF'/>",
           "<Input archive='Yes'/>",
           "<Output archive='true'/>",
       }) {
    EXPECT_EQ(Read(xml), -201) << xml;
  }
  EXPECT_EQ(ReadText("<QvConvParameter version='2.0'/>"), -201);
  EXPECT_EQ(ReadText("<qvconvparameter/>"), -201);
  // The format is set before a bad compress value stops the read.
  EXPECT_EQ(Read("<Output format='application/x-qvf-debug' compress='maybe'/>"), -201);
  EXPECT_EQ(config_.OutputKind(), KindDebug);
  EXPECT_EQ(Read("<Input>"), -300);
  EXPECT_EQ(ReadText(""), -300);
}

}  // namespace
