// The archive tool: the probe of a package, the program's own zips, paths that look like switches;
// packages delivered whole through a temporary beside the destination, named as the tool names a
// new archive, or the destination left as it was.
#include "workspace/archive_tool.h"

#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/test_support.h"
#include "workspace/atomic_delivery.h"

namespace {

using namespace quorvane::qvconv::converter;
using qvtest::StoredZip, qvtest::U16, qvtest::WriteFile;

class ArchiveTool : public testing::Test {
 protected:
  ArchiveTool() : temp_("TMPDIR", scratch_.Sub("tmp")) {
    qvtest::MakeDirs(scratch_.Sub("tmp")), WriteFile(folder_ + "/QvS.xml", "<s/>");
  }

  // Probes; the probe folder and its lock are gone afterwards.
  bool Probe(const std::string& zip) {
    const bool answer = ProbeArchive(U16(zip));
    EXPECT_EQ(qvtest::ListDir(scratch_.Sub("tmp")), std::vector<std::string>{}) << zip;
    return answer;
  }
  bool ProbeBytes(const std::string& bytes) {
    return WriteFile(scratch_.Sub("w.zip"), bytes), Probe(scratch_.Sub("w.zip"));
  }

  qvtest::ScratchDir scratch_;
  qvtest::EnvOverride temp_;
  std::string folder_ = scratch_.Sub("work/QvFormat");  // a package's tree
};

// The probe extracts no more of an archive than the marker needs, and its answer is that of a
// whole extraction for every shape of archive: the marker in any case as on NTFS, also behind "\\"
// between folders as PowerShell writes them, and only as a plain file at the top; a marker
// folder, links and files where folders belong, parts that are dropped, names taken twice,
// names in code page 932, names that would forge a listing, damaged archives.
TEST_F(ArchiveTool, ProbeAnswersAsAWholeExtractionWould) {
  const std::string outside = scratch_.Sub("outside");
  WriteFile(outside + "/s.xml", "<s/>");
  const struct {
    std::vector<qvtest::ZipEntry> entries;
    bool package;
  } cases[] = {
      {{{"QvFormat\\QvS.xml", "<s/>"}, {"QvFormat/QvT/TM1.xml", "<t/>"}}, true},
      {{{"QvFormat/other.xml", ""}, {"qvformat/QvS.xml", "<s/>"}}, true},
      {{{"QvFormat/other.xml", ""}, {"sub/QvFormat/QvS.xml", "<s/>"}}, false},
      {{{"QvFormat/QvS.xml.bak", "<s/>"}, {"QvFormat/QvS", "<s/>"}}, false},
      {{{"QvFormat/other.xml", ""}, {"qvformat/QVS.XML/inner.txt", ""}}, false},
      {{{"qvformat/qvs.xml", outside + "/s.xml", 0120777}}, false},  // a link to a local file
      {{{"QvFormat/", "", 040755}, {"QvFormat/QvT/TM1.xml", "<t/>"}}, false},
      {{{"QvFormat/QvS.xml", "<s/>"}, {"QvFormat\\QvS.xml", "<t/>"}}, true},
      {{{"QvFormat", outside, 0120777}, {"QvFormat/QvS.xml", "<s/>"}}, false},
      {{{"QvFormat/QvS.xml", "<s/>"}, {"QvFormat", outside, 0120777}}, true},
      {{{"QvFormat", "file"}, {"QvFormat/QvS.xml", "<s/>"}}, false},
      {{{"QvFormat/", "", 040000}, {"QvFormat/QvS.xml", "<s/>", 0100644}}, true},
      {{{"..\\QvFormat\\QvS.xml", "<s/>"}}, true},
      {{{"a/../QvFormat/QvS.xml", "<s/>"}}, false},
      {{{"QvFormat\\QvS.xml\\", "<s/>"}}, false},
      {{{"QvFormat/QvS.xml", "<s/>"}, {"QvFormat\\QvS.xml\\inner", ""}}, true},
      {{{"\x95\\QvFormat\\QvS.xml", "<s/>"}}, false},
      {{{"x\nPath = QvFormat/QvS.xml", "<s/>"}, {"QvFormat/", "", 040755}}, false},
      {{{"QvFormat/QvS.xml*", "<s/>"}, {"QvFormat/QvS.xml?", "<s/>"}}, false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(ProbeBytes(StoredZip(c.entries)), c.package) << c.entries[0].name;
  EXPECT_FALSE(Probe(scratch_.Sub("missing.zip")));
  EXPECT_FALSE(ProbeBytes("PK\x03\x04 not a zip at all"));
  // A damaged package: cut short, or its marker's bytes spoilt.
  const std::string zip =
      StoredZip({{"QvFormat/QvT/TM1.xml", std::string(4000, 't')}, {"QvFormat/QvS.xml", "<s/>"}});
  std::string spoilt = zip;
  spoilt[spoilt.find("<s/>")] = 'X';
  EXPECT_FALSE(ProbeBytes(zip.substr(0, zip.size() / 2)));
  EXPECT_TRUE(ProbeBytes(zip.substr(0, zip.size() - 30)) && ProbeBytes(spoilt));
  // The comment of an archive, which the tool lists as it stands, forges no entry.
  std::string commented = StoredZip({{"QvFormat", "file"}, {"QvFormat/QvS.xml", "<s/>"}});
  const std::string comment = "\n----------\nPath = QvFormat/QvS.xml\nFolder = +\n\n";
  commented[commented.size() - 2] = static_cast<char>(comment.size());
  EXPECT_FALSE(ProbeBytes(commented + comment));
}

// The program's own zips store a name that is not ASCII in UTF-8 with the UTF-8 flag, whatever
// the locale, and open again as they were.
TEST_F(ArchiveTool, OwnZipsNameInUtf8) {
  const std::string name = "QvFormat/QvC/ロゴ.png";
  WriteFile(scratch_.Sub("work/" + name), "png");
  for (const char* locale : {"C", "POSIX", ""}) {
    qvtest::EnvOverride all("LC_ALL", locale), lang("LANG", locale);
    qvtest::RemoveAll(scratch_.Sub("own.zip"));
    PackFolder(U16(scratch_.Sub("work/QvFormat")), U16(scratch_.Sub("own.zip")), false);
    const auto names = qvtest::ZipNames(scratch_.Sub("own.zip"));
    EXPECT_NE(std::find(names.begin(), names.end(), std::pair(name, true)), names.end()) << locale;
    UnpackArchive(U16(scratch_.Sub("own.zip")), U16(scratch_.Sub("back")));
    EXPECT_EQ(qvtest::ReadFile(scratch_.Sub("back/" + name)), "png") << locale;
  }
}

// Paths that look like switches stay paths.
TEST_F(ArchiveTool, PackTakesPathsAsPathsAndNeedsTheTool) {
  WriteFile(scratch_.Sub("-work/QvFormat/QvS.xml"), "<s/>");
  std::string old(4096, '\0');
  ASSERT_NE(::getcwd(old.data(), old.size()), nullptr);
  ASSERT_EQ(::chdir(scratch_.path().c_str()), 0);
  PackFolder(u"-work/QvFormat", u"-p.zip", false);  // relative to the current folder
  const bool package = Probe("-p.zip");
  ASSERT_EQ(::chdir(old.c_str()), 0);
  EXPECT_TRUE(package);
}

// The name of the package is the one 7-Zip gives a new archive on Windows, where it sees the name
// as typed: no extension gets ".zip", one "." at the end is dropped and means none; the file calls
// then drop what trailing dots remain.
TEST_F(ArchiveTool, DeliveredPackageGetsTheNameTheToolGivesIt) {
  const std::pair<std::string, std::string> names[] = {
      {"out", "out.zip"}, {"out.zip", "out.zip"}, {"out.ZIP", "out.ZIP"},
      {"x.", "x"},        {"x..", "x"},           {".hidden", ".hidden"},
      {"sp ", "sp .zip"}, {"q.zip.", "q.zip"},    {"new/inner.zip", "new/inner.zip"}};
  for (const auto& [name, stored] : names) {
    PackFolderWhole(U16(folder_), U16(scratch_.Sub("whole/" + name)), false);
    EXPECT_EQ(qvtest::FilesBelow(scratch_.Sub("whole")), std::vector<std::string>{stored}) << name;
    qvtest::RemoveAll(scratch_.Sub("whole"));
  }
  EXPECT_EQ(ZipPathOf(u"d.v/out") + u" " + ZipPathOf(u"a\\b"), u"d.v/out.zip a\\b.zip");
}

// 7-Zip adds to a read-only archive as to any other.
TEST_F(ArchiveTool, AReadOnlyPackageIsAddedTo) {
  const std::string zip = scratch_.Sub("ro.zip");
  PackFolderWhole(U16(folder_), U16(zip), false);
  WriteFile(folder_ + "/QvT/TM1.xml", "<t/>");
  ::chmod(zip.c_str(), 0444);
  PackFolderWhole(U16(folder_), U16(zip), false);
  EXPECT_EQ(qvtest::ZipMembers(zip),
            (std::vector<std::string>{"QvFormat", "QvFormat/QvS.xml", "QvFormat/QvT",
                                      "QvFormat/QvT/TM1.xml"}));
}

// A tool that fails (no archive to add to): the destination keeps its bytes, no temporary is left.
TEST_F(ArchiveTool, FailedDeliveryLeavesTheDestinationAsItWas) {
  const std::string zip = scratch_.Sub("out/p.zip");
  qvtest::WriteFile(zip, "not a zip at all");
  PackFolderWhole(U16(folder_), U16(zip), false);
  EXPECT_EQ(qvtest::ReadFile(zip), "not a zip at all");
  EXPECT_EQ(qvtest::ListDir(scratch_.Sub("out")), std::vector<std::string>{"p.zip"});
}

}  // namespace
