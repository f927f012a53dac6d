// The services that the Linux workbench embeds, on real files and processes.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "platform/bundle.h"
#include "platform/linux/file_root_linux.h"
#include "platform/linux/input_source_service.h"
#include "platform/linux/input_source_state.h"
#include "platform/linux/property_list_codec.h"
#include "platform/program.h"

namespace platform::linux_ {
namespace {
namespace fs = std::filesystem;

const std::string kBase = "com.example.inputmethod.Sample";
const std::string kMode = kBase + ".pinyin";

void writeFile(const fs::path& path, const PropertyListDictionary& dictionary) {
  fs::create_directories(path.parent_path());
  std::ofstream(path) << *encodePropertyList(dictionary, PropertyListFormat::binary);
}

class LinuxServices : public testing::Test {
 protected:
  LinuxServices() { setFileRoot(root_); }
  ~LinuxServices() override { fs::remove_all(root_); }

  static Status install(const std::string& name, const std::string& bundleId) {
    const fs::path bundle = onDisk("/Library/Input Methods") / name;
    const PropertyListDictionary modes{{bundleId + ".pinyin", PropertyListDictionary{}}};
    const PropertyListDictionary component{{"tsInputModeListKey", modes}};
    writeFile(bundle / "Contents/Info.plist",
              {{"CFBundleIdentifier", bundleId}, {"ComponentInputModeDict", component}});
    return registerInputMethod(bundle);
  }

  /// Exit status of the command-line tool, run as another process.
  int inputSources(const std::string& arguments) const {
    const std::string tool = std::string("'") + INPUT_SOURCES_PATH + "' --root '";
    return WEXITSTATUS(std::system((tool + root_.string() + "' " + arguments).c_str()));
  }

  /// Number of enabled sources beside the built-in layout.
  static std::ptrdiff_t enabledCount() {
    return std::ranges::count_if(installedInputSources(), &InputSourceInfo::isEnabled) - 1;
  }

  std::string template_ = (fs::temp_directory_path() / "linux_services.XXXXXX").string();
  fs::path root_ = ::mkdtemp(template_.data());
};

TEST_F(LinuxServices, ASourceIsEnabledOnceTheUserAllowsIt) {
  EXPECT_EQ(install("Sample.app", kBase), kNoError);
  EXPECT_EQ(disableInputSource(kBase), kNoError);
  EXPECT_EQ(enableInputSource(kBase), kNoError);
  EXPECT_TRUE(findInputSource(kMode)->isAsked);
  EXPECT_EQ(enabledCount(), 0);
  EXPECT_EQ(selectInputSource(kMode), kParameterError);
  EXPECT_EQ(inputSources("allow " + kMode), 0);
  EXPECT_EQ(enabledCount(), 2);
  EXPECT_EQ(selectInputSource(kBase), kParameterError);
  EXPECT_EQ(inputSources("select " + kMode), 0);
  EXPECT_TRUE(findInputSource(kMode)->isCurrent);
  EXPECT_EQ(disableInputSource(kMode), kNoError);
  EXPECT_EQ(enableInputSource(kBase), kNoError);
  EXPECT_EQ(enabledCount(), 2);
  EXPECT_TRUE(findInputSource(kBuiltInLayoutId)->isCurrent);
  EXPECT_EQ(denyInputMethod(kBase), kNoError);
  EXPECT_EQ(enableInputSource(kMode), kNoError);
  EXPECT_EQ(enabledCount(), 0);
  EXPECT_TRUE(findInputSource(kBase)->isAsked);
  EXPECT_EQ(inputSources("select " + kMode), 1);
}

TEST_F(LinuxServices, ObserversSeeEachChangeOfTheEnabledSetOnce) {
  install("Sample.app", kBase);
  allowInputMethod(kBase);
  int seen = 0;
  std::unique_ptr<WorkItem> end;
  Observation once = observeEnabledInputSourcesChanged([&] {
    EXPECT_TRUE(once);
    once.reset();
  });
  const auto observer = observeEnabledInputSourcesChanged([&] {
    if (++seen == 1) return (void)enableInputSource(kMode);
    inputSources("select " + kMode);
    end = scheduleWorkItem(Seconds(0.3), [] { endMainLoop(0); });
  });
  inputSources("disable " + kMode);  // before the main loop runs
  asyncOnMain([&] { end = scheduleWorkItem(Seconds(30), [] { endMainLoop(1); }); });
  EXPECT_EQ(runMainLoop(), 0);
  EXPECT_EQ(seen, 2);
  EXPECT_FALSE(once);
}

TEST_F(LinuxServices, ConcurrentChangesAreAllKept) {
  std::vector<std::thread> processes;
  for (const std::string name : {"A", "B", "C", "D", "E", "F"}) {
    install(name + ".app", kBase + name);
    processes.emplace_back([this, id = kBase + name] { inputSources("allow " + id); });
  }
  for (auto& process : processes) process.join();
  EXPECT_EQ(enabledCount(), 12);
}

}  // namespace
}  // namespace platform::linux_
