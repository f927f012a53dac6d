// Lookups, actions and preferences against the scripted service.

#include <gtest/gtest.h>

#include "inputsource/removal.h"
#include "tests/identifiers.h"
#include "tests/platform/test_platform.h"

namespace {

using platform::InputSourceProperty;
using platform::OpaqueValue;
using platform::PropertyListArray;
using platform::PropertyListDictionary;
using platform::PropertyListValue;
using Mode = TessalInstaller::InputMode;
using Lines = std::vector<std::string>;

const std::string kEnabled = "AppleEnabledInputSources";
const std::string kSelected = "AppleSelectedInputSources";
const std::string kHistory = "AppleInputSourceHistory";

class TessalInstallerTest : public testing::Test {
 protected:
  test::Platform platform;
  TessalInstaller installer;

  static PropertyListValue list(PropertyListArray elements) { return elements; }
  PropertyListDictionary entry(const std::string& bundleID = kBase) const {
    return {{"Bundle ID", bundleID}, {"Input Mode", kPinyin}, {"InputSourceKind", "Input Mode"}};
  }
};

TEST_F(TessalInstallerTest, BaseSourceIsTheFirstAndModeSourceTheLast) {
  platform.addSource("another.bundle", kBase);
  EXPECT_EQ(installer.keyboardInputMethodSource(true), nullptr);
  const auto first = platform.addSource(kBase, kBase);
  platform.addSource(kBase, kBase);
  EXPECT_EQ(installer.keyboardInputMethodSource(true), first);
  EXPECT_EQ(installer.keyboardInputMethodSource(false), nullptr);

  const auto byMode = platform.addSource("x", "other.id");
  byMode->properties[InputSourceProperty::inputModeID] = kPinyin;
  byMode->properties[InputSourceProperty::isEnabled] = true;
  EXPECT_EQ(installer.inputModeSource(Mode::pinyin, true), byMode);
  EXPECT_TRUE(installer.enabledModes().empty());

  platform.addSource("x", kPinyin);
  const auto last = platform.addSource("y", kPinyin);  // by identifier before mode identifier
  EXPECT_EQ(installer.inputModeSource(Mode::pinyin, true), last);
  last->properties[InputSourceProperty::isEnabled] = true;
  EXPECT_EQ(installer.enabledModes(), std::vector{Mode::pinyin});
}

TEST_F(TessalInstallerTest, BaseCountsAsEnabledByIdentifierInTheEnabledList) {
  EXPECT_FALSE(installer.isBaseEnabledBestEffort());
  const auto base = platform.addSource(kBase, kBase);
  base->properties[InputSourceProperty::isEnabled] = OpaqueValue{};  // a number is not a boolean
  EXPECT_FALSE(installer.isBaseEnabledBestEffort());
  const auto foreign = platform.addSource("another.bundle", kBase);
  foreign->properties[InputSourceProperty::isEnabled] = true;
  EXPECT_TRUE(installer.isBaseEnabledBestEffort());

  // The enabled list may lag behind the source's own property.
  platform.listsNoEnabled = true;
  EXPECT_FALSE(installer.isBaseEnabledBestEffort());
  base->properties[InputSourceProperty::isEnabled] = true;
  EXPECT_TRUE(installer.isBaseEnabledBestEffort());
}

TEST_F(TessalInstallerTest, SelectedMeansTheModeAndNotTheBase) {
  EXPECT_FALSE(installer.isSelected(Mode::pinyin));
  platform.addInputMethod();
  platform.current = platform.base;
  EXPECT_FALSE(installer.isSelected(Mode::pinyin));
  platform.current = platform.mode;
  EXPECT_TRUE(installer.isSelected(Mode::pinyin));
  platform.mode->properties[InputSourceProperty::inputSourceID] = "other.id";
  EXPECT_TRUE(installer.isSelected(Mode::pinyin));
  platform.mode->properties[InputSourceProperty::inputSourceID] = kPinyin;
  platform.mode->properties.erase(InputSourceProperty::inputModeID);
  EXPECT_TRUE(installer.isSelected(Mode::pinyin));
}

TEST_F(TessalInstallerTest, SelectForOverwriteTriesTwiceAtMost) {
  EXPECT_FALSE(installer.selectModeForOverwrite(Mode::pinyin));
  platform.addInputMethod();
  auto& capable = platform.mode->properties[InputSourceProperty::isSelectCapable];
  capable = false;
  EXPECT_FALSE(installer.selectModeForOverwrite(Mode::pinyin));
  EXPECT_TRUE(platform.journal.empty());

  capable = true;
  EXPECT_TRUE(installer.selectModeForOverwrite(Mode::pinyin));
  EXPECT_EQ(platform.takeJournal(), (Lines{"deselect " + kPinyin, "select " + kPinyin}));
  platform.statuses["select"] = {-50, 0};
  EXPECT_TRUE(installer.selectModeForOverwrite(Mode::pinyin));
  EXPECT_EQ(platform.takeJournal(),
            (Lines{"deselect " + kPinyin, "select " + kPinyin, "enable " + kPinyin,
                   "deselect " + kPinyin, "select " + kPinyin}));
  platform.allow();
  platform.statuses["select"] = {-50, -50, 0};
  EXPECT_FALSE(installer.selectModeForOverwrite(Mode::pinyin));
  EXPECT_EQ(platform.journal.size(), 4U);
}

TEST_F(TessalInstallerTest, ActionsDoWhatIsNeededStepByStep) {
  EXPECT_EQ(TessalInstaller::modeFromRawValue(kPinyin), Mode::pinyin);
  EXPECT_EQ(TessalInstaller::modeFromRawValue(kPinyin + " "), std::nullopt);
  installer.select(std::nullopt);
  EXPECT_EQ(installer.enableInputModeBestEffort(Mode::pinyin), std::nullopt);
  platform.addSource(kBase, kBase);
  installer.select(std::nullopt);
  EXPECT_EQ(platform.takeJournal(),
            (Lines{"enable " + kBase, "deselect " + kBase, "select " + kBase}));
  platform.sources.clear();
  platform.addInputMethod();
  auto& identifier = platform.mode->properties[InputSourceProperty::inputSourceID];
  identifier = "other.id";
  installer.select(Mode::pinyin);
  EXPECT_EQ(platform.takeJournal(),
            (Lines{"enable " + kBase, "enable other.id", "deselect other.id", "select other.id"}));
  identifier = kPinyin;
  installer.disable({});
  installer.enable();
  platform.allow();
  installer.disable({});
  installer.enable({Mode::pinyin});
  installer.select(Mode::pinyin);
  platform.statuses["enable"] = {-7};
  EXPECT_EQ(installer.enableInputModeBestEffort(Mode::pinyin), -7);
  EXPECT_EQ(platform.journal,
            (Lines{"enable " + kBase, "enable " + kPinyin, "disable " + kPinyin, "enable " + kBase,
                   "deselect " + kPinyin, "select " + kPinyin, "enable " + kPinyin}));
}

TEST_F(TessalInstallerTest, DefaultsGetTheEntryWhereItIsMissing) {
  platform.putInstalledBundle();
  const PropertyListDictionary other = {{"Bundle ID", kBase}, {"Input Mode", OpaqueValue{}}};
  const PropertyListDictionary known = {{"Bundle ID", kBase}, {"Input Mode", kPinyin}};
  const OpaqueValue foreignKeys{nullptr, /*isDictionary=*/true};
  platform.preferences = {{kEnabled, PropertyListArray{"text", known}},
                          {kSelected, PropertyListArray{foreignKeys, other}},
                          {kHistory, PropertyListArray{foreignKeys, "text", other}}};
  EXPECT_TRUE(installer.ensureOrvaneEnabledInHIToolboxDefaults(Mode::pinyin));
  EXPECT_EQ(platform.preferences[kEnabled], list({"text", known}));
  EXPECT_EQ(platform.preferences[kSelected], list({entry(), PropertyListDictionary{}, other}));
  EXPECT_EQ(platform.preferences[kHistory], list({entry(), other}));
  EXPECT_EQ(platform.takeJournal(), (Lines{"set " + kSelected, "set " + kHistory, "synchronize"}));
  installer.ensureOrvaneEnabledInHIToolboxDefaults(Mode::pinyin);
  EXPECT_EQ(platform.journal, Lines{"synchronize"});

  // The entry names the bundle that is installed.
  platform.preferences[kHistory] = "no list";
  auto& info = platform.propertyLists.begin()->second;
  info["CFBundleIdentifier"] = "another";
  installer.ensureOrvaneEnabledInHIToolboxDefaults(Mode::pinyin);
  EXPECT_EQ(platform.preferences[kEnabled], list({known, entry("another")}));
  info.clear();
  installer.ensureOrvaneEnabledInHIToolboxDefaults(Mode::pinyin);
  EXPECT_EQ(platform.preferences[kHistory], list({entry(), entry("another")}));
}

TEST_F(TessalInstallerTest, RemovalTakesOwnEntriesAndKeepsTheRestInOrder) {
  const PropertyListDictionary other = {{"Bundle ID", "x"}, {"Input Mode", kPinyin}};
  const PropertyListDictionary base = {{"Bundle ID", kBase}};
  platform.preferences = {
      {kEnabled, PropertyListArray{"text", entry(), other, base, entry("renamed"), OpaqueValue{}}},
      {kSelected, PropertyListArray{other}},
      {kHistory, "no list"}};
  const auto before = platform.preferences;
  EXPECT_EQ(removeOrvaneFromHIToolboxDefaults("renamed"), 3);
  EXPECT_EQ(platform.preferences[kEnabled], list({"text", other, OpaqueValue{}}));
  EXPECT_EQ(platform.preferences[kSelected], before.at(kSelected));
  EXPECT_EQ(platform.preferences[kHistory], before.at(kHistory));
  EXPECT_EQ(platform.takeJournal(), (Lines{"set " + kEnabled, "synchronize"}));
}

TEST_F(TessalInstallerTest, RetiringUsesTheSourcesThatWereThere) {
  platform.addInputMethod();
  const auto sources = ownSources();
  platform.sources.clear();
  platform.statuses["disable"] = {-50};
  EXPECT_EQ(deselectAndDisable(sources), 1);
  EXPECT_EQ(platform.journal, (Lines{"deselect " + kPinyin, "disable " + kPinyin,
                                     "deselect " + kBase, "disable " + kBase}));
}

}  // namespace
