// The services that the Linux workbench embeds, on real files and processes.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include "platform/common/property_list_limits.h"
#include "platform/linux/file_root_linux.h"
#include "platform/linux/input_source_service.h"
#include "platform/linux/property_list_file.h"
#include "platform/program.h"

namespace platform::linux_ {
namespace {
namespace fs = std::filesystem;

const std::string kBase = "com.example.inputmethod.Sample";
const std::string kMode = kBase + ".pinyin";

class LinuxServices : public testing::Test {
 protected:
  LinuxServices() { setFileRoot(root_); }
  ~LinuxServices() override { fs::remove_all(root_); }

  static Status install() {
    const fs::path bundle = onDisk("/Library/Input Methods/Sample.app");
    const PropertyListDictionary modes{{kMode, PropertyListDictionary{}}};
    const PropertyListDictionary component{{"tsInputModeListKey", modes}};
    EXPECT_TRUE(editPropertyListFile(bundle / "Contents/Info.plist", [&](auto& info) {
      info = {{"CFBundleIdentifier", kBase}, {"ComponentInputModeDict", component}};
    }));
    return registerInputSource(bundle);
  }

  /// Exit status of the command-line tool, run as another process.
  int inputSources(const std::string& arguments) const {
    const std::string tool = std::string("'") + INPUT_SOURCES_PATH + "' --root '";
    return WEXITSTATUS(std::system((tool + root_.string() + "' " + arguments).c_str()));
  }

  /// Number of enabled sources beside the built-in layout.
  static std::ptrdiff_t enabledCount() {
    return std::ssize(*createInputSourceList(std::nullopt, /*includeAllInstalled=*/false)) - 1;
  }

  std::optional<PropertyListDictionary> read(const std::string& bytes) const {
    std::ofstream(list_) << bytes;
    return readPropertyListDictionary(list_);
  }
  std::string content() const {
    std::ostringstream bytes;
    bytes << std::ifstream(list_).rdbuf();
    return bytes.str();
  }
  bool store(const PropertyListValue& value) const {
    return editPropertyListFile(list_, [&](auto& stored) { stored["new"] = value; });
  }

  std::string template_ = (fs::temp_directory_path() / "linux_services.XXXXXX").string();
  fs::path root_ = ::mkdtemp(template_.data());
  fs::path list_ = root_ / "list.plist";
};

TEST_F(LinuxServices, ASourceIsEnabledOnceTheUserAllowsIt) {
  EXPECT_EQ(install(), kNoError);
  EXPECT_EQ(enableInputSource(findInputSource(kBase)), kNoError);
  EXPECT_TRUE(findInputSource(kMode)->isAsked);
  EXPECT_EQ(enabledCount(), 0);
  EXPECT_EQ(selectInputSource(findInputSource(kMode)), kParameterError);
  EXPECT_EQ(inputSources("allow " + kMode), 0);
  EXPECT_EQ(enabledCount(), 2);
  EXPECT_EQ(inputSources("select " + kMode), 0);
  EXPECT_TRUE(findInputSource(kMode)->isCurrent);
  EXPECT_EQ(disableInputSource(findInputSource(kMode)), kNoError);
  EXPECT_TRUE(findInputSource(kBuiltInLayoutId)->isCurrent);
  EXPECT_EQ(answerForUser(findInputSource(kBase), false), kNoError);
  EXPECT_EQ(enableInputSource(findInputSource(kMode)), kNoError);
  EXPECT_EQ(enabledCount(), 0);
}

TEST_F(LinuxServices, ObserversSeeEachChangeOfTheEnabledSetOnce) {
  install();
  answerForUser(findInputSource(kBase), true);
  int seen = 0;
  std::unique_ptr<WorkItem> end;
  const auto observer = observeEnabledInputSourcesChanged([&] {
    if (++seen == 1) return (void)enableInputSource(findInputSource(kMode));
    inputSources("select " + kMode);
    end = scheduleWorkItem(Seconds(0.3), [] { endMainLoop(0); });
  });
  inputSources("disable " + kMode);  // before the main loop runs
  asyncOnMain([&] { end = scheduleWorkItem(Seconds(30), [] { endMainLoop(1); }); });
  EXPECT_EQ(runMainLoop(), 0);
  EXPECT_EQ(seen, 2);
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

TEST_F(LinuxServices, BinaryListsAreRead) {
  const auto list = read(binary({"\xD3\1\2\3\4\5\6", "Qa", "aY}", "Qc",
                                 "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFB", "\xA2\6\1", "\x09"}));
  EXPECT_EQ(list, (PropertyListDictionary{
                      {"a", std::int64_t{-5}}, {"好", PropertyListArray{true, "a"}}, {"c", true}}));
}

TEST_F(LinuxServices, ListsThatCannotBeReadOrWrittenStayAsTheyAre) {
  std::string deep = "<plist><dict><key>k</key>";
  for (int i = 0; i < 200'000; ++i) deep += "<array>";
  for (const std::string& bytes :
       {std::string("<plist><dict>"), deep,
        "<plist><dict/></plist>" + std::string(kPropertyListSizeLimit, ' '),
        binary({"\xD1\1\2", "Qa", "\xA1\2"}),
        binary({"\xD1\1\1", std::string("\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 10)})}) {
    EXPECT_FALSE(read(bytes)) << bytes.substr(0, 100);
    EXPECT_FALSE(store(true));
    EXPECT_EQ(content(), bytes);
  }
  const std::string real = binary({"\xD1\1\2", "Qa", "\x22\x3F\x80\0\0"});
  EXPECT_TRUE(read(real));
  EXPECT_FALSE(store("beside a real, which would be lost"));
  EXPECT_EQ(content(), real);
}

TEST_F(LinuxServices, ConcurrentEditsAreAllKept) {
  for (const std::string name : {"a", "b", "c", "d"}) {
    if (::fork() != 0) continue;
    bool isStored = true;
    for (int i = 0; i < 25; ++i)
      isStored &= editPropertyListFile(
          list_, [&](auto& stored) { stored[name + std::to_string(i)] = true; });
    ::_exit(isStored ? 0 : 1);
  }
  for (int status = 0; ::wait(&status) > 0;) EXPECT_EQ(status, 0);
  EXPECT_EQ(readPropertyListDictionary(list_)->size(), 100U);
}

}  // namespace
}  // namespace platform::linux_
