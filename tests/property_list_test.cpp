// Property lists of the workbench as bytes, as files and as preferences.

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cmath>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <functional>
#include <sstream>

#include "platform/linux/file_root_linux.h"
#include "platform/linux/property_list_codec.h"
#include "platform/linux/property_list_file.h"
#include "platform/linux/property_list_limits.h"
#include "platform/posix/descriptor.h"
#include "platform/preferences.h"

namespace platform::linux_ {
namespace {
namespace fs = std::filesystem;

PropertyListDictionary everyKind(double seconds) {
  return {{"integers", PropertyListArray{-5L, 0L, INT64_MIN, INT64_MAX}},
          {"reals", PropertyListArray{0.1, -2.5, 1e300}},
          {"<&> 中文", PropertyListArray{" “😀” & <b>\n", "", true, false}},
          {"date", PropertyListDate{seconds}},
          {"data", PropertyListArray{PropertyListData{std::byte{255}}, PropertyListData{}}},
          {"", PropertyListArray{PropertyListDictionary{}, PropertyListArray{}}}};
}

PropertyListValue nested(std::size_t levels) {
  PropertyListValue value = PropertyListArray{};
  for (std::size_t i = 1; i < levels; ++i) value = PropertyListArray{std::move(value)};
  return value;
}

std::string repeated(const std::string& text, std::size_t times) {
  std::string all;
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

std::string xml(const std::string& content) {
  return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)" + content + "</plist>";
}

/// A binary list of these objects, the first of which is the top one.
std::string binary(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string offsets;
  for (const auto& object : objects) {
    offsets += static_cast<char>(bytes.size());
    bytes += object;
  }
  const auto table = static_cast<char>(bytes.size());
  const auto number = [](char last) { return std::string(7, '\0') + last; };
  return bytes + offsets + std::string(6, '\0') + "\1\1" +
         number(static_cast<char>(objects.size())) + number(0) + number(table);
}

TEST(PropertyListCodec, CarriesEveryKindInBothFormats) {
  for (const auto format : {PropertyListFormat::xml, PropertyListFormat::binary}) {
    const double seconds = format == PropertyListFormat::xml ? -86400.0 : 700000000.25;
    const auto bytes = *encodePropertyList(everyKind(seconds), format);
    EXPECT_EQ(decodePropertyList(bytes), PropertyListValue(everyKind(seconds)));
    EXPECT_EQ(decodePropertyList("\n" + bytes).has_value(), format == PropertyListFormat::xml);
    EXPECT_FALSE(decodePropertyList(bytes.substr(0, bytes.size() / 2)));

    const auto deepest = nested(kPropertyListDepthLimit);
    EXPECT_EQ(decodePropertyList(*encodePropertyList(deepest, format)), deepest);
    EXPECT_FALSE(encodePropertyList(nested(kPropertyListDepthLimit + 2), format));
  }
}

TEST(PropertyListCodec, RefusesWhatTheLibraryDoesNotSurvive) {
  std::vector<std::string> doublings;
  for (char next = 1; next <= 60; ++next) doublings.push_back({'\xA2', next, next});
  doublings.emplace_back("\x10\1");
  const std::vector<std::pair<const char*, std::string>> rows = {
      {"XML, deep", xml(repeated("<array>", 500'000) + repeated("</array>", 500'000))},
      {"XML, deep and cut off", xml(repeated("<dict><key>k</key>", 100'000))},
      {"XML, deep behind a declaration of an entity",
       "<!DOCTYPE plist [<!ENTITY e \"]>" + repeated("<array>", 400'000) + "\">]><plist/>"},
      {"XML, deep behind another encoding",
       R"(<?xml version="1.0" encoding="UTF-16"?>)" + repeated("<array>", 400'000)},
      {"XML, closing tags in comments only",
       xml(repeated("<array><!--</array>-->", 100'000) + repeated("</array>", 100'000))},
      {"XML, NUL in a key", xml(std::string("<dict><key>a\0b</key><true/></dict>", 35))},
      {"XML, NUL by its number", xml("<dict><key>a&#0;b</key><true/></dict>")},
      {"XML, values", xml("<array>" + repeated("<true/>", kPropertyListValueLimit) + "</array>")},
      {"huge", xml("<string>" + std::string(kPropertyListSizeLimit, 'a') + "</string>")},
      {"binary, in itself", binary({std::string("\xA1\0", 2)})},
      {"binary, doubled 60 times", binary(doublings)},
      {"binary, NUL in a key", binary({"\xD1\1\2",
                                       std::string("\x53"
                                                   "a\0b",
                                                   4),
                                       "\x09"})},
      {"binary, NUL in a long key", binary({"\xD1\1\2", std::string("\x62\0a\0\0", 5), "\x09"})},
      {"binary, key of another kind", binary({"\xD1\1\1", "\x10\1"})},
      {"binary, object outside", binary({"\xA1\5"})},
      {"binary, text beyond the end",
       binary({std::string("\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 10)})},
      {"binary, trailer only", "bplist00" + std::string(32, '\xFF')},
  };
  for (const auto& [name, bytes] : rows) EXPECT_FALSE(decodePropertyList(bytes)) << name;
  // The same form with nothing wrong in it.
  EXPECT_EQ(decodePropertyList(binary({"\xD1\1\2",
                                       "\x52"
                                       "ab",
                                       "\x09"})),
            PropertyListValue(PropertyListDictionary{{"ab", true}}));
}

class PropertyListFiles : public testing::Test {
 protected:
  PropertyListFiles() {
    setFileRoot(root_);
    fs::create_directories(file_.parent_path());
  }
  ~PropertyListFiles() override { fs::remove_all(root_); }

  static bool synchronize(const PropertyListValue& value,
                          PreferencesHost host = PreferencesHost::any) {
    setPreferencesValue("list", value, "com.example", PreferencesUser::current, host);
    return synchronizePreferences("com.example", PreferencesUser::current, host);
  }
  static std::optional<PropertyListValue> preference() {
    return copyPreferencesValue("list", "com.example", PreferencesUser::current,
                                PreferencesHost::any);
  }
  std::string content() const {
    std::ostringstream bytes;
    bytes << std::ifstream(file_, std::ios::binary).rdbuf();
    return bytes.str();
  }

  std::string template_ = (fs::temp_directory_path() / "property_list.XXXXXX").string();
  fs::path root_ = ::mkdtemp(template_.data());
  fs::path file_ = root_ / "user/Preferences/com.example.plist";
};

TEST_F(PropertyListFiles, PreferencesKeepOtherKeysAndADamagedFile) {
  auto expected = everyKind(0.25);
  std::ofstream(file_) << *encodePropertyList(expected, PropertyListFormat::binary);
  EXPECT_TRUE(synchronize("mine"));
  EXPECT_TRUE(synchronize("of this host", PreferencesHost::current));
  expected["list"] = "mine";
  EXPECT_EQ(readPropertyListDictionary(file_), expected);

  int number = 0;
  for (const std::string& damaged :
       {std::string("<plist><dict><key>cut off"), xml(repeated("<array>", 10'000)),
        std::string(kPropertyListSizeLimit + 100, 'a')}) {
    std::ofstream(file_) << damaged;
    EXPECT_EQ(readPropertyListDictionary(file_), std::nullopt);
    const std::string again = "again " + std::to_string(++number);
    EXPECT_TRUE(synchronize(again.c_str()));
    std::string suffix;
    if (number > 1) suffix.append("-").append(std::to_string(number));
    EXPECT_EQ(fs::file_size(file_.string() + ".damaged" + suffix), damaged.size());
    EXPECT_EQ(readPropertyListDictionary(file_), (PropertyListDictionary{{"list", again}}));
  }
}

TEST_F(PropertyListFiles, WhatCannotBeStoredIsAStatusAndLosesNothing) {
  const PropertyListDictionary before{{"list", "before"}, {"other", true}};
  const fs::path lock = file_.parent_path() / ".lock";
  Descriptor holder;
  struct Row {
    const char* name;
    std::function<void()> begin;
    std::function<void()> end;
  };
  const auto limitFileSize = [](rlim_t bytes) {
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
  };
  ::signal(SIGXFSZ, SIG_IGN);
  const std::vector<Row> rows = {
      // A limit on a file's size fails a write in the middle, as a full disk does.
      {"no room", [&] { limitFileSize(20); }, [&] { limitFileSize(RLIM_INFINITY); }},
      {"folder in the new file's place", [&] { fs::create_directory(file_.string() + ".new"); },
       [&] { fs::remove(file_.string() + ".new"); }},
      {"lock held by a stopped process",
       [&] {
         holder = Descriptor(::open(lock.c_str(), O_RDWR | O_CREAT, 0600));
         ASSERT_EQ(::flock(holder.get(), LOCK_EX), 0);
       },
       [&] { holder.close(); }},
      {"link in the lock's place",
       [&] {
         fs::remove(lock);
         fs::create_symlink(root_ / "elsewhere", lock);
       },
       [&] { fs::remove(lock); }},
  };
  for (const auto& [name, begin, end] : rows) {
    std::ofstream(file_) << *encodePropertyList(before, PropertyListFormat::xml);
    const std::string bytes = content();
    begin();
    EXPECT_FALSE(synchronize(name)) << name;
    EXPECT_EQ(preference(), PropertyListValue(name)) << name;  // still set
    end();
    EXPECT_EQ(content(), bytes) << name;
    EXPECT_FALSE(fs::exists(root_ / "elsewhere"));
    EXPECT_TRUE(
        synchronizePreferences("com.example", PreferencesUser::current, PreferencesHost::any));
    EXPECT_EQ(readPropertyListDictionary(file_),
              (PropertyListDictionary{{"list", name}, {"other", true}}));
    EXPECT_FALSE(fs::exists(file_.string() + ".new")) << name;
  }
}

TEST_F(PropertyListFiles, ValuesThatNoFileCarriesAreRefused) {
  const std::vector<std::pair<const char*, PropertyListValue>> rows = {
      {"deep", nested(kPropertyListDepthLimit + 2)},
      {"many", PropertyListArray(kPropertyListValueLimit, true)},
      {"NUL", std::string("a\0b", 3)},
      {"NUL in a key", PropertyListDictionary{{std::string("a\0b", 3), true}}},
      {"not UTF-8", "\xFF\xFE\xC0"},
      {"huge", std::string(kPropertyListSizeLimit + 1, 'a')},
  };
  const auto store = [&](const PropertyListValue& value) {
    return editPropertyListFile(file_, [&](auto& stored) { stored["new"] = value; });
  };
  EXPECT_TRUE(store("old"));
  const std::string old = content();
  for (const auto& [name, value] : rows) {
    EXPECT_FALSE(store(value)) << name;
    EXPECT_EQ(content(), old) << name;
  }
  // What only the binary form carries, and what is carried almost.
  for (const PropertyListValue& value :
       {PropertyListValue("\x01"), PropertyListValue(std::nan("")),
        PropertyListValue(PropertyListDate{-1e12}), PropertyListValue(ForeignKeyDictionary{})})
    EXPECT_TRUE(store(value)) << value.index();
}

TEST_F(PropertyListFiles, WhatIsNoFileIsNeitherReadNorReplaced) {
  const std::vector<std::pair<const char*, std::function<void()>>> rows = {
      {"pipe", [&] { ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0); }},
      {"folder", [&] { fs::create_directory(file_); }},
      {"link to itself", [&] { fs::create_symlink(file_, file_); }},
  };
  for (const auto& [name, plant] : rows) {
    fs::remove_all(file_);
    plant();
    const auto kind = fs::symlink_status(file_).type();
    EXPECT_EQ(readPropertyListDictionary(file_), std::nullopt) << name;
    EXPECT_FALSE(editPropertyListFile(file_, [](auto& stored) { stored["new"] = true; })) << name;
    EXPECT_EQ(fs::symlink_status(file_).type(), kind) << name;
  }
  // A link is read through, and only the link is replaced.
  fs::remove_all(file_);
  const fs::path own = root_ / "own.plist";
  std::ofstream(own) << xml("<dict><key>old</key><true/></dict>");
  fs::create_symlink(own, file_);
  EXPECT_TRUE(editPropertyListFile(file_, [](auto& stored) { stored["new"] = true; }));
  EXPECT_EQ(readPropertyListDictionary(own), (PropertyListDictionary{{"old", true}}));
  EXPECT_EQ(readPropertyListDictionary(file_),
            (PropertyListDictionary{{"new", true}, {"old", true}}));
}

}  // namespace
}  // namespace platform::linux_
