// What doctor says of each state that an installation can be in.

#include <gtest/gtest.h>

#include "cli/diagnosis.h"
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
    info()["CFBundleShortVersionString"] = "1.10.0";
    info()["ComponentInputModeDict"] = PropertyListDictionary{
        {"tsInputModeListKey", PropertyListDictionary{{kPinyin, PropertyListDictionary{}}}}};
    platform.info["OrvanePayloadVersion"] = "1.10.0";
    platform.putFile("/Library/Input Methods/Orvane.app/Contents/MacOS/Orvane", "");
    platform.putFile("/Library/Input Methods/Orvane.app/Contents/MacOS/OrvaneSettings.app/x", "");
    fs::permissions(program, fs::perms(0755));
    platform.addInputMethod();
    platform.setEnabled(kBase, true);
    platform.setEnabled(kPinyin, true);
    platform.current = platform.mode;
  }

  PropertyListDictionary& info() { return platform.propertyLists.begin()->second; }

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
  const fs::path bundle = platform.root / "Library/Input Methods/Orvane.app";
  const fs::path program = bundle / "Contents/MacOS/Orvane";
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
  platform.current = platform.base;
  EXPECT_EQ(problems(), Lines{"warn selected"});
  mode[InputSourceProperty::isSelectCapable] = false;
  EXPECT_EQ(problems(), Lines{"fail selectCapable"});
  platform.setEnabled(kBase, false);
  platform.setEnabled(kPinyin, false);
  EXPECT_EQ(problems(), Lines{"fail enabled"});
  std::erase(platform.sources, platform.mode);
  EXPECT_EQ(problems(), (Lines{"fail modeSource", "fail enabled"}));
  std::erase(platform.sources, platform.base);
  platform.sources.push_back(platform.mode);
  EXPECT_EQ(problems(), Lines{"fail baseSource"});
  platform.sources.clear();
  platform.isAdministrator = false;
  EXPECT_EQ(problems(), (Lines{"fail registered", "warn rights"}));
}

TEST_F(DoctorTest, BundleOnDiskIsLookedThrough) {
  const fs::path settings = bundle / "Contents/MacOS/OrvaneSettings.app";
  for (const int modes : {0666, 0664, 0640}) {
    fs::permissions(settings / "x", fs::perms(modes));
    EXPECT_EQ(problems(), Lines{"fail access"}) << std::oct << modes;
  }
  fs::permissions(settings / "x", fs::perms(0644));
  fs::permissions(settings, fs::perms(0744));
  EXPECT_EQ(problems(), Lines{"fail access"});
  fs::permissions(settings, fs::perms(0755));
  platform.owners[settings / "x"] = "user:staff";
  EXPECT_EQ(problems(), Lines{"fail access"});
  platform.owners.clear();
  fs::remove_all(settings);
  fs::permissions(program, fs::perms(0744));
  EXPECT_EQ(problems(), (Lines{"fail program", "warn settings"}));
  // The faults of the sources have their reason in this one.
  info().erase("ComponentInputModeDict");
  platform.sources = {platform.base};
  EXPECT_EQ(problems(), (Lines{"fail mode", "fail program", "warn settings"}));
  platform.propertyLists.clear();
  platform.sources.clear();
  EXPECT_EQ(problems(), (Lines{"fail info", "warn settings"}));
  fs::remove_all(bundle);
  fs::create_directory_symlink("/", bundle);
  EXPECT_EQ(problems(), Lines{"fail bundle"});
  fs::remove(bundle);
  EXPECT_EQ(problems(), Lines{"fail bundle"});
}

TEST_F(DoctorTest, IdentifierAndVersion) {
  platform.info["OrvanePayloadVersion"] = "1.11.0";
  EXPECT_EQ(problems(), Lines{"warn version"});
  EXPECT_EQ(newerVersionNotice(), "");
  for (const char* older : {"1.9.1", "1.9"}) {
    platform.info["OrvanePayloadVersion"] = older;
    EXPECT_EQ(problems(), Lines{}) << "nobody is told to go back to " << older;
    EXPECT_NE(newerVersionNotice(), "");
  }
  info().erase("CFBundleShortVersionString");
  EXPECT_EQ(problems(), Lines{"warn version"});
  for (const char* identifier : {"", "com.tessal.inputmethodical.Orvane", "x.inputmethod.Orvane"}) {
    info()["CFBundleIdentifier"] = identifier;
    EXPECT_EQ(problems(), (Lines{"fail identifier", "warn version"})) << identifier;
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
  platform.preferences = {{"AppleEnabledInputSources", PropertyListArray{own}}};
  platform.putFile("/Library/Input Methods/.Orvane.app.staging/x", "");
  platform.putFile("/tmp/tessal_installer.log", "unzip package\nfinish\n");
  EXPECT_EQ(problems(), (Lines{"fail leftovers", "warn uiLog"}));
  platform.putFile("/tmp/tessal_installer.log", "error: Orvane.zip is missing\n");
  fs::remove_all(bundle);
  EXPECT_EQ(problems(), (Lines{"fail bundle", "fail leftovers", "warn installLog", "warn uiLog",
                               "warn AppleEnabledInputSources"}));
}

}  // namespace
