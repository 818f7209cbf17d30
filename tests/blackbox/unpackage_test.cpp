// Opening archives with -unpackage: plain archives are extracted into the
// destination, which is emptied first; packages of XML documents go to the
// shared unzip folder for their conversion; nothing escapes the destination.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/test_support.h"

namespace {

using qvtest::RunQv;
using qvtest::Status;

// A zip file with stored entries of any name, for archives that the archive
// tool would never make ("../x", "/x").
std::string StoredZip(const std::vector<std::pair<std::string, std::string>>& entries) {
  auto crc32 = [](const std::string& data) {
    std::uint32_t crc = 0xFFFFFFFFu;
    for (unsigned char byte : data) {
      crc ^= byte;
      for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
  };
  auto put16 = [](std::string& out, std::uint32_t v) {
    out.push_back(static_cast<char>(v & 0xFF));
    out.push_back(static_cast<char>((v >> 8) & 0xFF));
  };
  auto put32 = [&](std::string& out, std::uint32_t v) {
    put16(out, v & 0xFFFF);
    put16(out, v >> 16);
  };
  std::string body;
  std::string directory;
  for (const auto& [name, data] : entries) {
    const std::uint32_t offset = static_cast<std::uint32_t>(body.size());
    const std::uint32_t crc = crc32(data);
    const auto size = static_cast<std::uint32_t>(data.size());
    put32(body, 0x04034b50);
    put16(body, 20), put16(body, 0), put16(body, 0), put16(body, 0), put16(body, 0x21);
    put32(body, crc), put32(body, size), put32(body, size);
    put16(body, static_cast<std::uint32_t>(name.size())), put16(body, 0);
    body += name + data;

    put32(directory, 0x02014b50);
    put16(directory, 20), put16(directory, 20), put16(directory, 0), put16(directory, 0);
    put16(directory, 0), put16(directory, 0x21);
    put32(directory, crc), put32(directory, size), put32(directory, size);
    put16(directory, static_cast<std::uint32_t>(name.size()));
    put16(directory, 0), put16(directory, 0), put16(directory, 0), put16(directory, 0);
    put32(directory, 0), put32(directory, offset);
    directory += name;
  }
  std::string zip = body + directory;
  put32(zip, 0x06054b50);
  put16(zip, 0), put16(zip, 0);
  put16(zip, static_cast<std::uint32_t>(entries.size()));
  put16(zip, static_cast<std::uint32_t>(entries.size()));
  put32(zip, static_cast<std::uint32_t>(directory.size()));
  put32(zip, static_cast<std::uint32_t>(body.size()));
  put16(zip, 0);
  return zip;
}

class Unpackage : public testing::Test {
 protected:
  Unpackage() { qvtest::MakeDirs(Tmp()); }
  std::string Tmp() const { return scratch_.Sub("tmp"); }
  std::vector<std::string> Env() const { return {"TMPDIR=" + Tmp()}; }

  std::string PlainZip(const std::string& name, const std::string& inner, const std::string& data) {
    const std::string folder = scratch_.Sub("src_" + name);
    qvtest::WriteFile(folder + "/" + inner, data);
    const std::string zip = scratch_.Sub(name);
    qvtest::ZipFolderContents(folder, zip);
    return zip;
  }
  std::string PackageZip(const std::string& name) {
    const std::string zip = scratch_.Sub(name);
    qvtest::WriteFile(zip, StoredZip({{"QvFormat/QvS.xml", "<?xml version=\"1.0\"?><sc/>"}}));
    return zip;
  }

  qvtest::ScratchDir scratch_;
};

TEST_F(Unpackage, PlainArchiveReplacesTheDestinationContent) {
  const std::string zip = PlainZip("a.zip", "dir/file.txt", "content");
  const std::string dest = scratch_.Sub("dest");
  qvtest::WriteFile(dest + "/old/stale.txt", "stale");

  EXPECT_EQ(RunQv({zip, "-unpackage" + dest}, Env()).status, 0);
  EXPECT_EQ(qvtest::ReadFile(dest + "/dir/file.txt"), "content");
  EXPECT_FALSE(qvtest::Exists(dest + "/old"));
  // The probe folder is gone, and a plain archive needs no unzip folder.
  EXPECT_FALSE(qvtest::Exists(Tmp() + "/chktemp"));
  EXPECT_FALSE(qvtest::Exists(Tmp() + "/unzip"));

  // A folder QvFormat without QvS.xml is a plain archive too.
  const std::string other = PlainZip("b.zip", "QvFormat/QvT/TM1.xml", "<t/>");
  EXPECT_EQ(RunQv({other, "-unpackage" + dest}, Env()).status, 0);
  EXPECT_EQ(qvtest::ReadFile(dest + "/QvFormat/QvT/TM1.xml"), "<t/>");
  EXPECT_FALSE(qvtest::Exists(dest + "/dir"));
}

TEST_F(Unpackage, NoArchiveLeavesNoDestination) {
  qvtest::WriteFile(scratch_.Sub("not.zip"), "this is no archive");
  const std::string dest = scratch_.Sub("dest");
  qvtest::WriteFile(dest + "/old.txt", "old");
  EXPECT_EQ(RunQv({scratch_.Sub("not.zip"), "-unpackage" + dest}, Env()).status, 0);
  EXPECT_FALSE(qvtest::Exists(dest));

  EXPECT_EQ(RunQv({scratch_.Sub("missing.zip"), "-unpackage" + dest}, Env()).status, 0);
  EXPECT_FALSE(qvtest::Exists(dest));
}

TEST_F(Unpackage, MissingArchiveToolIs402BeforeTheDestinationIsTouched) {
  const std::string zip = PlainZip("a.zip", "f.txt", "f");
  const std::string dest = scratch_.Sub("dest");
  qvtest::WriteFile(dest + "/keep.txt", "keep");
  const std::string no_tools = scratch_.Sub("no_tools");
  qvtest::MakeDirs(no_tools);
  std::vector<std::string> env = Env();
  env.push_back("PATH=" + no_tools);

  EXPECT_EQ(RunQv({zip, "-unpackage" + dest}, env).status, Status(-402));
  EXPECT_EQ(qvtest::ReadFile(dest + "/keep.txt"), "keep");
}

TEST_F(Unpackage, EmptyDestinationOfACheckRunIs255) {
  const std::string zip = PlainZip("a.zip", "f.txt", "f");
  EXPECT_EQ(RunQv({zip, "-unpackage''", "-check''"}, Env()).status, 255);
}

TEST_F(Unpackage, EntriesCannotEscapeTheDestination) {
  const std::string zip = scratch_.Sub("evil.zip");
  qvtest::WriteFile(zip, StoredZip({{"../escaped.txt", "x"},
                                    {"/absolute.txt", "y"},
                                    {"a/../../escaped2.txt", "z"},
                                    {"ok/in.txt", "in"}}));
  const std::string box = scratch_.Sub("box");
  const std::string dest = box + "/dest";
  qvtest::MakeDirs(box);

  EXPECT_EQ(RunQv({zip, "-unpackage" + dest}, Env()).status, 0);
  EXPECT_EQ(qvtest::ReadFile(dest + "/ok/in.txt"), "in");
  EXPECT_EQ(qvtest::ListDir(box), std::vector<std::string>{"dest/"});
  EXPECT_FALSE(qvtest::Exists(scratch_.Sub("escaped.txt")));
  EXPECT_FALSE(qvtest::Exists(scratch_.Sub("escaped2.txt")));
  EXPECT_FALSE(qvtest::Exists("/absolute.txt"));
}

TEST_F(Unpackage, RunsSideBySideKeepTheirArchivesApart) {
  constexpr int kPairs = 3;
  std::vector<std::string> plain;
  std::vector<std::string> packages;
  for (int i = 0; i < kPairs; ++i) {
    plain.push_back(PlainZip("plain" + std::to_string(i) + ".zip", "f.txt", std::to_string(i)));
    packages.push_back(PackageZip("pkg" + std::to_string(i) + ".zip"));
  }
  std::vector<int> plain_status(kPairs, -1);
  std::vector<std::thread> runs;
  for (int i = 0; i < kPairs; ++i) {
    runs.emplace_back([&, i] {
      RunQv({packages[i], "-unpackage" + scratch_.Sub("pkg_dest" + std::to_string(i))}, Env());
    });
    runs.emplace_back([&, i] {
      plain_status[i] =
          RunQv({plain[i], "-unpackage" + scratch_.Sub("plain_dest" + std::to_string(i))}, Env())
              .status;
    });
  }
  for (std::thread& run : runs) run.join();

  for (int i = 0; i < kPairs; ++i) {
    const std::string dest = scratch_.Sub("plain_dest" + std::to_string(i));
    EXPECT_EQ(plain_status[i], 0) << i;
    EXPECT_EQ(qvtest::ReadFile(dest + "/f.txt"), std::to_string(i));
    EXPECT_FALSE(qvtest::Exists(scratch_.Sub("pkg_dest" + std::to_string(i)) + "/QvFormat/QvS.xml"));
  }
  EXPECT_FALSE(qvtest::Exists(Tmp() + "/chktemp"));
}

}  // namespace
