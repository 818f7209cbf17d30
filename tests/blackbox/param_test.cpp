// Runs through a conversion parameter file: every cell of the dispatch table
// that the command line alone does not reach.
#include <string>

#include "tests/support/test_support.h"

namespace {

using qvtest::ReadFile;
using qvtest::RunQv;
using qvtest::ScratchDir;
using qvtest::Status;

const char* const kDocuments[] = {"QvS.xml",         "QvT/TM1.xml",     "QvT/TM2.xml",
                                  "QvP/PG1/PG1.xml", "QvP/PG1/PL1.xml", "QvP/PG2/PG2.xml",
                                  "QvP/PG2/PL1.xml", "QvP/PG2/PL2.xml"};

std::string Parameters(const std::string& in, const std::string& out, const std::string& extra = "") {
  return "<QvConvParameter version=\"1.0\"><Input format=\"application/" + in +
         "\"/><Output format=\"application/" + out + "\" " + extra + "/></QvConvParameter>";
}

class ParameterRuns : public ::testing::Test {
 protected:
  // The bundled sample converted once, and its package opened as a tree.
  void SetUp() override {
    const std::string sample = std::string(QV_SOURCE_DIR) + "/examples/sample";
    ASSERT_EQ(RunQv({sample, "-package" + dir_.Sub("p.zip")}).status, 0);
    ASSERT_EQ(qvtest::Run({"7za", "x", "-y", dir_.Sub("p.zip"), "-o" + dir_.Sub("p")}).status, 0);
  }

  // Rewrites the tree below `from` with the parameters and opens the result in `to`.
  int Rewrite(const std::string& from, const std::string& params, const std::string& to) {
    qvtest::WriteFile(dir_.Sub(to + ".xml"), params);
    const auto r = RunQv({dir_.Sub(from) + "/QvFormat/", "-package" + dir_.Sub(to + ".zip"),
                          "-param" + dir_.Sub(to + ".xml")});
    if (r.status == 0) qvtest::Run({"7za", "x", "-y", dir_.Sub(to + ".zip"), "-o" + dir_.Sub(to)});
    return r.status;
  }

  std::string Doc(const std::string& tree, const std::string& name) {
    return ReadFile(dir_.Sub(tree + "/QvFormat/" + name));
  }

  ScratchDir dir_;
};

TEST_F(ParameterRuns, CompactToDebugAndBackGivesTheDocumentsItStartedFrom) {
  ASSERT_EQ(Rewrite("p", Parameters("x-qvf", "x-qvf"), "same"), 0);
  ASSERT_EQ(Rewrite("same", Parameters("x-qvf", "x-qvf-debug"), "debug"), 0);
  ASSERT_EQ(Rewrite("debug", Parameters("x-qvf-debug", "x-qvf"), "back"), 0);
  for (const char* name : kDocuments) {
    EXPECT_EQ(Doc("back", name), Doc("same", name)) << name;
  }
  // The debug documents are indented and speak the debug vocabulary.
  const std::string schedule = Doc("debug", "QvS.xml");
  EXPECT_NE(schedule.find("<quorvane_data"), std::string::npos);
  EXPECT_NE(schedule.find("\n  <schedule_list"), std::string::npos);
  // Content files come along byte for byte, telops included.
  for (const char* file : {"QvC/CT1.png", "QvC/CT3.mp4", "QvC/CT5.tlp"}) {
    EXPECT_EQ(Doc("debug", file), Doc("p", file)) << file;
  }
}

TEST_F(ParameterRuns, ProjectToDebugDocuments) {
  const std::string sample = std::string(QV_SOURCE_DIR) + "/examples/sample";
  qvtest::WriteFile(dir_.Sub("d.xml"), Parameters("x-quorvane", "x-qvf-debug"));
  ASSERT_EQ(RunQv({sample, "-package" + dir_.Sub("d.zip"), "-param" + dir_.Sub("d.xml")}).status, 0);
  ASSERT_EQ(qvtest::Run({"7za", "x", "-y", dir_.Sub("d.zip"), "-o" + dir_.Sub("d")}).status, 0);
  EXPECT_NE(Doc("d", "QvP/PG2/PL1.xml").find("\n  <movie"), std::string::npos);
  EXPECT_NE(Doc("d", "QvT/TM1.xml").find("<timetable"), std::string::npos);
}

TEST_F(ParameterRuns, UnpackedOutputIsCopiedIntoAQvFormatFolder) {
  const std::string sample = std::string(QV_SOURCE_DIR) + "/examples/sample";
  qvtest::WriteFile(dir_.Sub("u.xml"), Parameters("x-quorvane", "x-qvf", "archive=\"no\""));
  // The copy makes no top folder: the caller makes it, as for every copy.
  ASSERT_EQ(RunQv({sample, "-package" + dir_.Sub("out") + "/", "-param" + dir_.Sub("u.xml")}).status, 0);
  EXPECT_FALSE(qvtest::Exists(dir_.Sub("out")));
  qvtest::MakeDirs(dir_.Sub("out/QvFormat"));
  ASSERT_EQ(RunQv({sample, "-package" + dir_.Sub("out") + "/", "-param" + dir_.Sub("u.xml")}).status, 0);
  for (const char* name : kDocuments) EXPECT_EQ(Doc("out", name), Doc("p", name)) << name;
  // The input, a folder that the caller named, stays where it is.
  EXPECT_TRUE(qvtest::IsDir(sample));
}

TEST_F(ParameterRuns, WayBackThroughTheParameterFileKeepsTheInputTree) {
  qvtest::WriteFile(dir_.Sub("b.xml"), Parameters("x-qvf", "x-quorvane", "archive=\"no\""));
  qvtest::MakeDirs(dir_.Sub("project"));
  const auto r = RunQv({dir_.Sub("p"), "-package" + dir_.Sub("project"), "-param" + dir_.Sub("b.xml")});
  ASSERT_EQ(r.status, 0) << r.output;
  EXPECT_FALSE(qvtest::ListDir(dir_.Sub("project")).empty());
  EXPECT_TRUE(qvtest::Exists(dir_.Sub("p/QvFormat/QvS.xml")));
}

TEST_F(ParameterRuns, FailuresOfTheTreeAndOfTheFile) {
  // Without its trailing separator the tree's schedule is not found.
  qvtest::WriteFile(dir_.Sub("c.xml"), Parameters("x-qvf", "x-qvf-debug"));
  EXPECT_EQ(RunQv({dir_.Sub("p") + "/QvFormat", "-package" + dir_.Sub("x.zip"),
                   "-param" + dir_.Sub("c.xml")}).status, Status(-300));
  EXPECT_EQ(RunQv({dir_.Sub("missing") + "/", "-package" + dir_.Sub("x.zip"),
                   "-param" + dir_.Sub("c.xml")}).status, Status(-300));
  qvtest::WriteFile(dir_.Sub("bad.xml"), Parameters("x-qvf", "x-qvf-debug ", ""));
  EXPECT_EQ(RunQv({dir_.Sub("p"), "-package" + dir_.Sub("x.zip"), "-param" + dir_.Sub("bad.xml")}).status,
            Status(-201));
  EXPECT_EQ(RunQv({dir_.Sub("p"), "-package" + dir_.Sub("x.zip"), "-param" + dir_.Sub("none.xml")}).status,
            Status(-300));
  EXPECT_FALSE(qvtest::Exists(dir_.Sub("x.zip")));
}

}  // namespace
