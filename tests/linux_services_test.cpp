// The services that the Linux workbench embeds, on real files and processes.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/common/property_list_limits.h"
#include "platform/linux/file_root_linux.h"
#include "platform/linux/input_source_service.h"
#include "platform/linux/property_list_file.h"
#include "platform/program.h"

namespace platform::linux_ {
namespace {
namespace fs = std::filesystem;

const std::string kSample = "com.example.inputmethod.Sample";

class LinuxServices : public testing::Test {
 protected:
  LinuxServices() { setFileRoot(root_); }
  ~LinuxServices() override { fs::remove_all(root_); }

  std::string template_ = (fs::temp_directory_path() / "linux_services.XXXXXX").string();
  fs::path root_ = ::mkdtemp(template_.data());
  fs::path list_ = root_ / "list.plist";
};

TEST_F(LinuxServices, ChangesMadeByAnotherProcessAreHeardOnce) {
  const fs::path bundle = onDisk("/Library/Input Methods/Sample.app");
  EXPECT_TRUE(editPropertyListFile(bundle / "Contents/Info.plist",
                                   [](auto& info) { info["CFBundleIdentifier"] = kSample; }));
  registerInputSource(bundle);
  const std::string allow =
      std::string("'") + INPUT_SOURCES_PATH + "' --root '" + root_.string() + "' allow " + kSample;
  int heard = 0;
  std::unique_ptr<WorkItem> end;
  const auto observer = observeEnabledInputSourcesChanged([&] {
    ++heard;
    end = scheduleWorkItem(Seconds(0.3), [] { endMainLoop(0); });
  });
  asyncOnMain([&] {
    end = scheduleWorkItem(Seconds(30), [] { endMainLoop(1); });
    EXPECT_EQ(std::system(allow.c_str()), 0);
  });
  EXPECT_EQ(runMainLoop(), 0);
  EXPECT_EQ(heard, 1);
}

TEST_F(LinuxServices, ListsThatCannotBeReadStayAsTheyAre) {
  std::string deep = "<plist><dict><key>k</key>";
  for (int i = 0; i < 200'000; ++i) deep += "<array>";
  for (const std::string& bytes :
       {std::string("<plist><dict>"), deep,
        "<plist><dict/></plist>" + std::string(kPropertyListSizeLimit, ' ')}) {
    std::ofstream(list_) << bytes;
    EXPECT_FALSE(editPropertyListFile(list_, [](auto& stored) { stored["new"] = true; }));
    std::ostringstream after;
    after << std::ifstream(list_).rdbuf();
    EXPECT_EQ(after.str(), bytes);
  }
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
