// What doctor says of states that only a scripted service can be in.

#include <gtest/gtest.h>

#include <algorithm>

#include "cli/diagnosis.h"
#include "inputsource/tessal_installer.h"
#include "tests/identifiers.h"
#include "tests/platform/test_platform.h"

namespace {

namespace fs = std::filesystem;
using platform::InputSourceProperty;
using platform::PropertyListArray;
using platform::PropertyListDictionary;
using Lines = std::vector<std::string>;

class DoctorTest : public testing::Test {
 protected:
  /// A sound installation, enabled and selected.
  DoctorTest() {
    platform.putInstalledBundle();
    auto& info = platform.propertyLists.begin()->second;
    info["CFBundleShortVersionString"] = "1.0.0";
    info["ComponentInputModeDict"] = PropertyListDictionary{
        {"tsInputModeListKey", PropertyListDictionary{{kPinyin, PropertyListDictionary{}}}}};
    platform.info["OrvanePayloadVersion"] = "1.0.0";
    platform.putFile("/Library/Input Methods/Orvane.app/Contents/MacOS/Orvane", "");
    platform.putFile("/Library/Input Methods/Orvane.app/Contents/MacOS/OrvaneSettings.app/x", "");
    fs::permissions(bundle / "Contents/MacOS/Orvane", fs::perms(0755));
    platform.addInputMethod();
    platform.setEnabled(kBase, true);
    platform.setEnabled(kPinyin, true);
    platform.current = platform.mode;
  }

  /// The checks that do not pass, each as "fail CHECK" or "warn CHECK".
  Lines problems() {
    Lines lines;
    for (const Finding& finding : diagnose(/*machineOnly=*/false)) {
      EXPECT_FALSE(finding.text.empty()) << finding.check;
      EXPECT_FALSE(finding.next.empty()) << finding.check;
      const bool isPass = finding.level == Finding::Level::pass;
      EXPECT_EQ(isPass, finding.next == Finding::kNothingToDo) << finding.text;
      if (!isPass)
        lines.push_back((finding.level == Finding::Level::fail ? "fail " : "warn ") +
                        finding.check);
    }
    return lines;
  }

  test::Platform platform;
  fs::path bundle = platform.root / "Library/Input Methods/Orvane.app";
};

TEST_F(DoctorTest, SoundInstallationPassesAndNothingIsCalled) {
  EXPECT_EQ(problems(), Lines{});
  EXPECT_EQ(platform.journal, Lines{});
}

TEST_F(DoctorTest, SourcesAreToldApart) {
  auto& mode = platform.mode->properties;
  mode[InputSourceProperty::inputSourceID] = "other.id";
  mode[InputSourceProperty::inputModeID] = kPinyin;
  // Found by the mode identifier, but enabled only counts by the source identifier.
  EXPECT_EQ(problems(), Lines{"fail modeEnabled"});
  mode[InputSourceProperty::inputSourceID] = kPinyin;
  mode[InputSourceProperty::isSelectCapable] = false;
  platform.current = platform.base;
  EXPECT_EQ(problems(), (Lines{"fail selectCapable", "warn selected"}));
  platform.setEnabled(kBase, false);
  platform.setEnabled(kPinyin, false);
  EXPECT_EQ(problems(), Lines{"fail enabled"});
  std::erase(platform.sources, platform.base);
  EXPECT_EQ(problems(), (Lines{"fail baseSource", "fail enabled"}));
  platform.sources.clear();
  EXPECT_EQ(problems(), Lines{"fail registered"});
  // Without a bundle only that counts.
  fs::remove_all(bundle);
  EXPECT_EQ(problems(), Lines{"fail bundle"});
  platform.putFile("/Library/Input Methods/Orvane.app", "a plain file");
  platform.adminRights = platform::AdminRights::ofAnother;
  EXPECT_EQ(problems(), (Lines{"fail bundle", "warn settings", "fail registered", "warn rights"}));
}

TEST_F(DoctorTest, BundleOnDiskIsLookedThrough) {
  auto& info = platform.propertyLists.begin()->second;
  platform.info["OrvanePayloadVersion"] = "1.1.0";
  EXPECT_EQ(problems(), Lines{"warn version"});
  platform.info.clear();
  info["CFBundleIdentifier"] = "com.tessal.inputmethodical.Orvane";
  info["CFBundleExecutable"] = "Missing";
  EXPECT_EQ(problems(), (Lines{"fail identifier", "fail program"}));
  platform.propertyLists.clear();
  EXPECT_EQ(problems(), Lines{"fail info"});
  const fs::path deep = bundle / "Contents/MacOS/OrvaneSettings.app/x";
  for (const int modes : {0666, 0664, 0640}) {
    fs::permissions(deep, fs::perms(modes));
    EXPECT_EQ(problems(), (Lines{"fail info", "fail access"})) << std::oct << modes;
  }
}

TEST_F(DoctorTest, PreferencesAndLeftoversAndLogs) {
  const PropertyListDictionary own = {{"Bundle ID", kBase}, {"Input Mode", kPinyin}};
  const PropertyListDictionary foreign = {{"Bundle ID", "x"}, {"Input Mode", kPinyin}};
  const PropertyListDictionary neighbour = {{"Bundle ID", "x"}, {"Input Mode", "x.mode"}};
  platform.preferences = {{"AppleEnabledInputSources", PropertyListArray{neighbour, own}},
                          {"AppleSelectedInputSources", PropertyListArray{own, foreign}},
                          {"AppleInputSourceHistory", "no list"}};
  EXPECT_EQ(problems(), (Lines{"fail AppleSelectedInputSources", "fail AppleInputSourceHistory"}));
  platform.preferences = {{"AppleEnabledInputSources", PropertyListArray{own, own}}};
  platform.putFile("/Library/Input Methods/.Orvane.app.leftover.1/x", "");
  platform.putFile("/tmp/tessal_installer.log", "unzip package\nkill Orvane\n");
  fs::create_directory(platform.root / "tmp/tessal_installer_ui.log");
  EXPECT_EQ(problems(), (Lines{"warn leftovers", "warn installLog", "warn uiLog",
                               "warn AppleEnabledInputSources"}));
  platform.putFile("/Applications/.Cogwen.app.backup/x", "");
  platform.putFile("/tmp/tessal_installer.log", "unzip package\nfinish\n");
  EXPECT_EQ(problems(), (Lines{"fail leftovers", "warn leftovers", "warn uiLog",
                               "warn AppleEnabledInputSources"}));
}

}  // namespace
