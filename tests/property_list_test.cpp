// Property lists of the workbench: what is refused when it is read, and what
// editing leaves alone.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/common/property_list_limits.h"
#include "platform/linux/property_list_file.h"

namespace platform::linux_ {
namespace {
namespace fs = std::filesystem;

std::string nested(int levels) {
  std::string starts;
  std::string ends;
  for (int i = 0; i < levels; ++i) {
    starts += "<array>";
    ends += "</array>";
  }
  return "<plist><dict><key>k</key>" + starts + ends + "</dict></plist>";
}

/// A binary list of these objects, the first of which is the top one. "Q" stands
/// before one character of ASCII, "a" before one of UTF-16.
std::string binary(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string offsets;
  for (const auto& object : objects) {
    offsets += static_cast<char>(bytes.size());
    bytes += object;
  }
  const auto table = static_cast<char>(bytes.size());
  return bytes + offsets + std::string(6, '\0') + "\1\1" + std::string(7, '\0') +
         static_cast<char>(objects.size()) + std::string(15, '\0') + table;
}

class PropertyListFiles : public testing::Test {
 protected:
  ~PropertyListFiles() override { fs::remove_all(folder_); }

  std::optional<PropertyListDictionary> read(const std::string& bytes) const {
    std::ofstream(file_) << bytes;
    return readPropertyListDictionary(file_);
  }
  std::string content() const {
    std::ostringstream bytes;
    bytes << std::ifstream(file_).rdbuf();
    return bytes.str();
  }
  bool store(const PropertyListValue& value) const {
    return editPropertyListFile(file_, [&](auto& stored) { stored["new"] = value; });
  }

  std::string template_ = (fs::temp_directory_path() / "property_list.XXXXXX").string();
  fs::path folder_ = ::mkdtemp(template_.data());
  fs::path file_ = folder_ / "list.plist";
};

TEST_F(PropertyListFiles, BinaryListsAreRead) {
  const auto list = read(binary({"\xD3\1\2\3\4\5\6", "Qa", "aY}", "Qc",
                                 "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFB", "\xA2\6\1", "\x09"}));
  EXPECT_EQ(list, (PropertyListDictionary{
                      {"a", std::int64_t{-5}}, {"好", PropertyListArray{true, "a"}}, {"c", true}}));
}

TEST_F(PropertyListFiles, WhatIsDamagedOrTooMuchIsNeitherReadNorOverwritten) {
  EXPECT_TRUE(read(nested(127)));
  const std::vector<std::pair<const char*, std::string>> rows = {
      {"cut off", "<plist><dict>"},
      {"more behind the list", "<plist><dict/></plist><plist/>"},
      {"key without a value", "<plist><dict><key>k</key></dict></plist>"},
      {"deep", nested(129)},
      {"200,000 deep", nested(200'000)},
      {"huge", "<plist><dict/></plist>" + std::string(kPropertyListSizeLimit, ' ')},
      {"binary, in itself", binary({"\xD1\1\2", "Qa", "\xA1\2"})},
      {"binary, key of another kind", binary({"\xD1\1\1", "\x09"})},
      {"binary, object outside", binary({"\xD1\1\5", "Qa"})},
      {"binary, text outside",
       binary({"\xD1\1\1", std::string("\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 10)})},
  };
  for (const auto& [name, bytes] : rows) {
    EXPECT_FALSE(read(bytes)) << name;
    EXPECT_FALSE(store(true)) << name;
    EXPECT_EQ(content(), bytes) << name;
  }
}

TEST_F(PropertyListFiles, WhatCannotBeWrittenLeavesTheFileAsItIs) {
  const std::string bytes = binary({"\xD1\1\2", "Qa", "\x22\x3F\x80\0\0"});
  std::ofstream(file_) << bytes;
  EXPECT_FALSE(store("the real of a binary list"));
  EXPECT_EQ(content(), bytes);

  EXPECT_TRUE(read("<plist><dict><key>date</key><date>1999-12-31</date></dict></plist>"));
  EXPECT_TRUE(store("old"));
  const std::string old = content();
  for (const PropertyListValue& value :
       {PropertyListValue(std::string("\0", 1)), PropertyListValue("\xFF"),
        PropertyListValue(std::string(kPropertyListSizeLimit, 'a'))}) {
    EXPECT_FALSE(store(value));
    EXPECT_EQ(content(), old);
  }
  EXPECT_NE(old.find("<date>1999-12-31</date>"), std::string::npos);
}

TEST_F(PropertyListFiles, ConcurrentEditsAreAllKept) {
  for (const std::string name : {"a", "b", "c", "d"}) {
    if (::fork() != 0) continue;
    bool isStored = true;
    for (int i = 0; i < 25; ++i)
      isStored &= editPropertyListFile(
          file_, [&](auto& stored) { stored[name + std::to_string(i)] = true; });
    ::_exit(isStored ? 0 : 1);
  }
  for (int status = 0; ::wait(&status) > 0;) EXPECT_EQ(status, 0);
  EXPECT_EQ(readPropertyListDictionary(file_)->size(), 100U);
}

}  // namespace
}  // namespace platform::linux_
