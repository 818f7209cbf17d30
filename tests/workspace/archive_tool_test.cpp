#include "workspace/archive_tool.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "app/qv_conv_exception.h"
#include "tests/support/test_support.h"
#include "tests/workspace/env_override.h"
#include "workspace/qv_conv_package_input.h"

namespace {

using namespace quorvane::qvconv::converter;
using qvtest::U16;

class ArchiveTool : public testing::Test {
 protected:
  ArchiveTool() : temp_("TMPDIR", scratch_.Sub("tmp")) { qvtest::MakeDirs(scratch_.Sub("tmp")); }

  // A package as a conversion leaves it: the folder QvFormat packed by name.
  std::string MakePackage(const std::string& name) {
    const std::string work = scratch_.Sub("work_" + name);
    qvtest::WriteFile(work + "/QvFormat/QvS.xml", "<s/>");
    qvtest::WriteFile(work + "/QvFormat/QvT/TM1.xml", "<t/>");
    const std::string zip = scratch_.Sub(name);
    PackFolder(U16(work + "/QvFormat"), U16(zip), false);
    return zip;
  }

  std::string MakePlain(const std::string& name, const std::string& inner) {
    const std::string folder = scratch_.Sub("plain_" + name);
    qvtest::WriteFile(folder + "/" + inner, "plain");
    const std::string zip = scratch_.Sub(name);
    qvtest::ZipFolderContents(folder, zip);
    return zip;
  }

  // Probes, then empties the probe folder as the package input does.
  bool Probe(const std::string& zip) {
    const bool answer = ProbeArchive(U16(zip));
    qvtest::RemoveAll(scratch_.Sub("tmp/chktemp"));
    return answer;
  }

  qvtest::ScratchDir scratch_;
  qvtest::EnvOverride temp_;
};

TEST_F(ArchiveTool, ProbeTellsPackagesFromPlainArchives) {
  EXPECT_TRUE(Probe(MakePackage("p.zip")));
  EXPECT_FALSE(Probe(MakePlain("q.zip", "QvFormat/other.xml")));
  EXPECT_FALSE(Probe(MakePlain("r.zip", "sub/QvFormat/QvS.xml")));
  EXPECT_FALSE(Probe(scratch_.Sub("missing.zip")));
  // A folder named like the marker file is no package.
  EXPECT_FALSE(Probe(MakePlain("s.zip", "QvFormat/QvS.xml/inner.txt")));
}

TEST_F(ArchiveTool, PathsThatLookLikeSwitchesStayPaths) {
  qvtest::WriteFile(scratch_.Sub("-work/QvFormat/QvS.xml"), "<s/>");
  const std::string zip = "-p.zip";  // relative to the current folder
  const std::string here = scratch_.path();
  std::string old(4096, '\0');
  ASSERT_NE(::getcwd(old.data(), old.size()), nullptr);
  ASSERT_EQ(::chdir(here.c_str()), 0);
  PackFolder(u"-work/QvFormat", U16(zip), false);
  const bool package = Probe(zip);
  ASSERT_EQ(::chdir(old.c_str()), 0);
  EXPECT_TRUE(package);
}

TEST_F(ArchiveTool, MissingToolIsAFailureOfThePack) {
  qvtest::WriteFile(scratch_.Sub("work/QvFormat/QvS.xml"), "<s/>");
  qvtest::EnvOverride path("PATH", scratch_.Sub("no_tools"));
  try {
    PackFolder(U16(scratch_.Sub("work/QvFormat")), U16(scratch_.Sub("new.zip")), false);
    ADD_FAILURE();
  } catch (QvConvException* failure) {
    EXPECT_EQ(failure->code(), -401);
    delete failure;
  }
}

TEST_F(ArchiveTool, PackageInputSwitchesTheConfigurationForAPackage) {
  const std::string zip = MakePackage("p.zip");
  QvConvRunConfig config(U16(zip), U16(scratch_.Sub("out")), u"");
  config.SetUnpackage(true);
  {
    QvConvPackageInput input(config);
    EXPECT_TRUE(input.IsXmlPackage());
    EXPECT_FALSE(qvtest::Exists(scratch_.Sub("tmp/chktemp")));
    input.Unpack();
  }
  const std::string tmp = scratch_.Sub("tmp/");
  EXPECT_EQ(config.InputKind() * 10 + config.OutputKind(), KindCompact * 10 + KindProject);
  EXPECT_EQ(qvtest::U8(config.InputPath() + u" " + config.ConversionRoot()),
            tmp + "unzip " + tmp + "conv");
  EXPECT_FALSE(config.OutputArchive());
}

}  // namespace
