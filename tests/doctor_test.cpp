// What doctor says of each state that an installation can be in.

#include <gtest/gtest.h>

#include <algorithm>

#include "cli/diagnosis.h"
#include "installer/log_files.h"
#include "tests/identifiers.h"
#include "tests/platform/test_platform.h"

namespace {

namespace fs = std::filesystem;
using platform::InputSourceProperty;
using platform::PropertyListArray;
using platform::PropertyListDictionary;

class DoctorTest : public testing::Test {
 protected:
  /// A sound installation, enabled and selected.
  DoctorTest() {
    platform.putInstalledBundle();
    info()["CFBundleShortVersionString"] = "1.10.0";
    info()["ComponentInputModeDict"] = PropertyListDictionary{
        {"tsInputModeListKey", PropertyListDictionary{{kPinyin, PropertyListDictionary{}}}}};
    platform.info["OrvanePayloadVersion"] = "1.10.0";
    platform.putFile(kBundle + "/Contents/MacOS/Orvane", "#!");
    for (const char* companion : {"Sondrel", "Cogwen"})
      platform.putFile("/Applications/" + std::string(companion) + ".app/x", "");
    platform.putFile(kBundle + "/Contents/MacOS/OrvaneSettings.app/x", "");
    fs::permissions(program, fs::perms(0755));
    platform.putFile("/Library/Input Methods/.Another.app.staging", "");
    platform.addInputMethod();
    platform.allow();
    platform.current = platform.mode;
  }

  PropertyListDictionary& info() { return platform.propertyLists.begin()->second; }

  /// The checks that do not pass, such as "fail bundle, warn uiLog".
  std::string problems() {
    std::string problems;
    for (const Finding& finding : diagnose(/*machineOnly=*/false)) {
      const bool isPass = finding.level == Finding::Level::pass;
      EXPECT_EQ(isPass, finding.next == Finding::nothingToDo) << finding.text;
      if (isPass) continue;
      problems += problems.empty() ? "" : ", ";
      problems += (finding.level == Finding::Level::fail ? "fail " : "warn ") + finding.check;
    }
    return problems;
  }

  static bool says(const std::string& words) {
    return std::ranges::any_of(diagnose(/*machineOnly=*/false), [&](const Finding& finding) {
      return (finding.text + "→" + finding.next).find(words) != words.npos;
    });
  }

  test::Platform platform;
  const fs::path bundle = platform.root / kBundleOnDisk;
  const fs::path program = bundle / "Contents/MacOS/Orvane";
};

TEST_F(DoctorTest, SourcesAreToldApart) {
  EXPECT_EQ(problems(), "");
  EXPECT_EQ(platform.journal, std::vector<std::string>{"synchronize"});
  auto& mode = platform.mode->properties;
  mode[InputSourceProperty::inputSourceID] = "other.id";
  // Found by the mode identifier, but enabled only counts by the source identifier.
  EXPECT_EQ(problems(), "fail modeEnabled");
  mode[InputSourceProperty::inputSourceID] = kPinyin;
  platform.current = platform.base;
  EXPECT_EQ(problems(), "") << "whoever types a command has another one on";
  mode[InputSourceProperty::isSelectCapable] = false;
  EXPECT_EQ(problems(), "fail selectCapable");
  platform.allow(false);
  EXPECT_EQ(problems(), "fail enabled");
  std::string log;
  for (const auto& [line, why] : {std::pair{"", "还没有允许，或后来"},
                                  {kEnableRequested, "已经请求过"},
                                  {kModeSelected, "曾经启用过"},
                                  {kEnableRequested, "已经请求过"},
                                  {kOverwriteInstall, "曾经启用过"}}) {
    platform.putFile("/tmp/tessal_installer_ui.log", log += line + std::string("\n"));
    EXPECT_TRUE(says(why)) << log;
  }
  platform.sources = {platform.base};
  EXPECT_EQ(problems(), "fail modeSource, fail enabled");
  platform.sources = {platform.mode};
  EXPECT_EQ(problems(), "fail baseSource");
  platform.sources = {platform.addSource("another.bundle", kBase)};
  platform.isAdministrator = false;
  EXPECT_EQ(problems(), "fail registered, warn rights");
}

TEST_F(DoctorTest, BundleOnDiskIsLookedThrough) {
  const fs::path settings = bundle / "Contents/MacOS/OrvaneSettings.app";
  const std::vector<std::pair<fs::path, int>> damages = {
      {settings / "x", 0646}, {settings / "x", 0664}, {settings / "x", 0640}, {settings, 0744}};
  for (const auto& [path, mode] : damages) {
    fs::permissions(path, fs::perms(mode));
    EXPECT_EQ(problems(), "fail access") << path << std::oct << mode;
    fs::permissions(path, fs::perms(0755));
  }
  platform.owners[settings / "x"] = "user:staff";
  EXPECT_EQ(problems(), "fail access");
  platform.owners.clear();
  fs::remove_all(settings);
  fs::permissions(program, fs::perms(0744));
  EXPECT_EQ(problems(), "fail program, warn settings");
  platform.applications[kBase + ".settings"] = "Elsewhere.app";
  fs::permissions(program, fs::perms(0755));
  platform.putFile(kBundle + "/Contents/MacOS/Orvane", "MZ");
  fs::remove_all(platform.root / "Applications/Cogwen.app");
  EXPECT_EQ(problems(), "fail program, warn companions");
  platform.putFile("/Applications/Cogwen.app/x", "");
  // The faults of the sources have their reason in this one.
  info().erase("ComponentInputModeDict");
  platform.sources = {platform.base};
  EXPECT_EQ(problems(), "fail mode, fail program");
  platform.propertyLists.clear();
  platform.sources.clear();
  EXPECT_EQ(problems(), "fail info");
  fs::remove_all(bundle);
  fs::create_directory_symlink("/", bundle);
  EXPECT_EQ(problems(), "fail bundle");
}

TEST_F(DoctorTest, IdentifierAndVersion) {
  platform.info["OrvanePayloadVersion"] = "1.11.0";
  EXPECT_EQ(problems(), "warn version");
  platform.info["OrvanePayloadVersion"] = "1.10";
  EXPECT_EQ(newerVersionNotice(), "") << "it is the same one";
  for (const char* older : {"1.9.1", "1.9"}) {
    platform.info["OrvanePayloadVersion"] = older;
    EXPECT_EQ(problems(), "") << "nobody is told to go back to " << older;
    EXPECT_NE(newerVersionNotice(), "");
  }
  info().erase("CFBundleShortVersionString");
  platform.preferences = {{"AppleEnabledInputSources", "no list"}};
  for (const char* identifier : {"", "com.tessal.inputmethodical.Orvane", "x.inputmethod.Orvane"}) {
    info()["CFBundleIdentifier"] = identifier;
    EXPECT_EQ(problems(), "fail identifier, warn version") << identifier;
    EXPECT_EQ(says("缺少 inputmethod 一段"), std::string(identifier).starts_with("com"));
  }
}

TEST_F(DoctorTest, PreferencesAndLeftoversAndLogs) {
  const PropertyListDictionary own = {{"Bundle ID", kBase}, {"Input Mode", kPinyin}};
  const PropertyListDictionary foreign = {{"Bundle ID", "x"}, {"Input Mode", kPinyin}};
  const PropertyListDictionary neighbour = {{"Bundle ID", "x"}, {"Input Mode", "x.mode"}};
  platform.preferences = {{"AppleEnabledInputSources", PropertyListArray{neighbour, own, "text"}},
                          {"AppleSelectedInputSources", PropertyListArray{own, foreign}},
                          {"AppleInputSourceHistory", "no list"}};
  EXPECT_EQ(problems(),
            "fail AppleEnabledInputSources, fail AppleSelectedInputSources, fail "
            "AppleInputSourceHistory");
  platform.preferences = {{"AppleEnabledInputSources", PropertyListArray{own, own}}};
  platform.putFile("/Library/Input Methods/.Orvane.app.leftover.1/x", "");
  platform.putFile("/tmp/tessal_installer.log", "unzip package\nkill Orvane\n");
  platform.putFile("/tmp/tessal_installer_ui.log", std::string(kScriptFailed) + "full\n");
  // A reason that both logs give is told once.
  EXPECT_EQ(problems(), "warn installLog, warn leftovers, warn AppleEnabledInputSources");
  EXPECT_TRUE(says("\nkill Orvane→上一次安装没有做完"));
  platform.putFile("/tmp/tessal_installer.log", "a\nb\n\nc\nerror: full\n");
  fs::last_write_time(platform.root / "tmp/tessal_installer.log",
                      fs::file_time_type::clock::now() - std::chrono::hours(47));
  EXPECT_TRUE(says("，47 小时前\nb\nc\nerror: full→上一次安装失败了，原因在最后一行；"));
  platform.preferences = {{"AppleEnabledInputSources", PropertyListArray{own}}};
  platform.putFile("/Library/Input Methods/.Orvane.app.staging/x", "");
  platform.putFile("/tmp/tessal_installer.log", "unzip package\nfinish\n");
  EXPECT_EQ(problems(), "warn uiLog, fail leftovers");
  fs::remove_all(bundle);
  platform.putFile("/tmp/tessal_installer_ui.log", kNoScript);
  EXPECT_EQ(problems(), "warn uiLog, fail bundle, fail leftovers, warn AppleEnabledInputSources");
}

}  // namespace
