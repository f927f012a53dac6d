// The services that the Linux workbench embeds, on real files and processes.

#include <gtest/gtest.h>

#include <cstdlib>
#include <iterator>

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

  std::string template_ = (fs::temp_directory_path() / "linux_services.XXXXXX").string();
  fs::path root_ = ::mkdtemp(template_.data());
};

TEST_F(LinuxServices, ASourceIsEnabledOnceTheUserAllowsIt) {
  EXPECT_EQ(install(), kNoError);
  EXPECT_EQ(disableInputSource(findInputSource(kBase)), kNoError);
  EXPECT_EQ(enableInputSource(findInputSource(kBase)), kNoError);
  EXPECT_TRUE(findInputSource(kMode)->isAsked);
  EXPECT_EQ(enabledCount(), 0);
  EXPECT_EQ(selectInputSource(findInputSource(kMode)), kParameterError);
  EXPECT_EQ(inputSources("allow " + kMode), 0);
  EXPECT_EQ(enabledCount(), 2);
  EXPECT_EQ(selectInputSource(findInputSource(kBase)), kParameterError);
  EXPECT_EQ(inputSources("select " + kMode), 0);
  EXPECT_TRUE(findInputSource(kMode)->isCurrent);
  EXPECT_EQ(disableInputSource(findInputSource(kMode)), kNoError);
  EXPECT_EQ(enableInputSource(findInputSource(kBase)), kNoError);
  EXPECT_EQ(enabledCount(), 2);
  EXPECT_TRUE(findInputSource(kBuiltInLayoutId)->isCurrent);
  EXPECT_EQ(answerForUser(findInputSource(kBase), false), kNoError);
  EXPECT_EQ(enableInputSource(findInputSource(kMode)), kNoError);
  EXPECT_EQ(enabledCount(), 0);
  EXPECT_TRUE(findInputSource(kBase)->isAsked);
  EXPECT_EQ(inputSources("select " + kMode), 1);
}

TEST_F(LinuxServices, ObserversSeeEachChangeOfTheEnabledSetOnce) {
  install();
  answerForUser(findInputSource(kBase), true);
  int seen = 0;
  std::unique_ptr<WorkItem> end;
  Observation once = observeEnabledInputSourcesChanged([&] {
    EXPECT_TRUE(once);
    once.reset();
  });
  const auto observer = observeEnabledInputSourcesChanged([&] {
    if (++seen == 1) return (void)enableInputSource(findInputSource(kMode));
    inputSources("select " + kMode);
    end = scheduleWorkItem(Seconds(0.3), [] { endMainLoop(0); });
  });
  inputSources("disable " + kMode);  // before the main loop runs
  asyncOnMain([&] { end = scheduleWorkItem(Seconds(30), [] { endMainLoop(1); }); });
  EXPECT_EQ(runMainLoop(), 0);
  EXPECT_EQ(seen, 2);
  EXPECT_FALSE(once);
}

}  // namespace
}  // namespace platform::linux_
