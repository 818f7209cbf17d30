#include <gtest/gtest.h>

#include <string>

#include "app/qv_conv_exception.h"
#include "app/qv_conv_run_config.h"
#include "tests/support/test_support.h"

namespace {

using namespace quorvane::qvconv::converter;

class ParameterFile : public testing::Test {
 protected:
  // Reads `xml` as a parameter file into config_; the failure code, or 0.
  int Read(const std::string& xml) {
    const std::string path = scratch_.Sub("param" + std::to_string(count_++) + ".xml");
    qvtest::WriteFile(path, xml);
    return ReadPath(path);
  }
  int ReadPath(const std::string& path) {
    try {
      config_.ReadParameterFile(qvtest::U16(path));
    } catch (QvConvException* failure) {
      const int code = failure->code();
      delete failure;
      return code;
    }
    return 0;
  }

  qvtest::ScratchDir scratch_;
  QvConvRunConfig config_;
  int count_ = 0;
};

TEST_F(ParameterFile, RootAloneKeepsEveryDefault) {
  EXPECT_EQ(Read("<QvConvParameter/>"), 0);
  EXPECT_EQ(config_.InputKind(), KindProject);
  EXPECT_EQ(config_.OutputKind(), KindCompact);
  EXPECT_TRUE(!config_.InputArchive() && config_.OutputArchive() && !config_.Compress());
  EXPECT_EQ(config_.ParameterPath(), qvtest::U16(scratch_.Sub("param0.xml")));
}

TEST_F(ParameterFile, EveryAllowedValue) {
  EXPECT_EQ(Read("<?xml version='1.0'?><QvConvParameter version='1.0'>"
                 "<Input format='application/x-qvf-debug' archive='yes'/>"
                 "<Output format='application/x-quorvane' archive='no' compress='yes'/>"
                 "</QvConvParameter>"),
            0);
  EXPECT_EQ(config_.InputKind(), KindDebug);
  EXPECT_EQ(config_.OutputKind(), KindProject);
  EXPECT_TRUE(config_.InputArchive() && !config_.OutputArchive() && config_.Compress());

  EXPECT_EQ(Read("<QvConvParameter><Input format='application/x-qvf' archive='no'/>"
                 "<Output format='application/x-qvf-debug' archive='yes' compress='no'/>"
                 "</QvConvParameter>"),
            0);
  EXPECT_EQ(config_.InputKind(), KindCompact);
  EXPECT_EQ(config_.OutputKind(), KindDebug);
  EXPECT_TRUE(!config_.InputArchive() && config_.OutputArchive() && !config_.Compress());

  EXPECT_EQ(Read("<QvConvParameter><Input format='application/x-quorvane'/>"
                 "<Output format='application/x-qvf'/></QvConvParameter>"),
            0);
  EXPECT_EQ(config_.InputKind(), KindProject);
  EXPECT_EQ(config_.OutputKind(), KindCompact);
}

TEST_F(ParameterFile, LaterElementsWinPerAttributeAndOthersArePassedOver) {
  EXPECT_EQ(Read("<QvConvParameter version=''>text"
                 "<Output format='application/x-qvf-debug' archive='no'/>"
                 "<!-- a comment --><Other format='bad'/><Input unknown='x'/>"
                 "<Output compress='yes' format=''/>"
                 "<Group><Input format='bad'/></Group>"
                 "</QvConvParameter>"),
            0);
  EXPECT_EQ(config_.OutputKind(), KindDebug);  // an empty value keeps the earlier one
  EXPECT_FALSE(config_.OutputArchive());
  EXPECT_TRUE(config_.Compress());
}

TEST_F(ParameterFile, WrongValuesAre201) {
  for (const char* xml : {
           "<QvConvParameter version='2.0'/>",
           "<qvconvparameter/>",
           "<Parameter/>",
           "<QvConvParameter><Input format='application/x-qvf '/></QvConvParameter>",
           "<QvConvParameter><Output format='application/x-QVF'/></QvConvParameter>",
           "<QvConvParameter><Input archive='Yes'/></QvConvParameter>",
           "<QvConvParameter><Output archive='true'/></QvConvParameter>",
           "<QvConvParameter><Output compress='1'/></QvConvParameter>",
       }) {
    QvConvRunConfig fresh;
    config_ = fresh;
    EXPECT_EQ(Read(xml), -201) << xml;
  }
}

TEST_F(ParameterFile, OutputFormatIsSetBeforeABadCompress) {
  EXPECT_EQ(Read("<QvConvParameter><Output format='application/x-qvf-debug' compress='maybe'/>"
                 "</QvConvParameter>"),
            -201);
  EXPECT_EQ(config_.OutputKind(), KindDebug);
}

TEST_F(ParameterFile, UnreadableFilesAre300) {
  EXPECT_EQ(ReadPath(scratch_.Sub("missing.xml")), -300);
  EXPECT_EQ(Read("<QvConvParameter><Input></QvConvParameter>"), -300);
  EXPECT_EQ(Read(""), -300);
}

TEST_F(ParameterFile, ReadByTheConstructor) {
  const std::string path = scratch_.Sub("p.xml");
  qvtest::WriteFile(path, "<QvConvParameter><Output format='application/x-qvf-debug'/></QvConvParameter>");
  const QvConvRunConfig config(u"in", u"out", qvtest::U16(path));
  EXPECT_EQ(config.OutputKind(), KindDebug);
  EXPECT_EQ(config.InputPath(), u"in");
  EXPECT_EQ(config.ParameterPath(), qvtest::U16(path));
}

}  // namespace
