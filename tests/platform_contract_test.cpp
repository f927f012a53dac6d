// What every platform must do, run against the one that is linked. It needs no
// window. Its files lie in a folder of its own; where the platform knows no other
// root it also uses the user's preferences, under a domain of the run's own that it
// removes again.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>

#include "platform/admin_script.h"
#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/main_queue.h"
#include "platform/preferences.h"
#include "platform/program.h"
#include "platform/text_input_sources.h"

namespace {

using namespace platform;
using namespace std::chrono_literals;

/// Of this run alone.
std::filesystem::path folder;

/// Runs `block` on the main queue and the main loop until endMainLoop().
int runOnMainLoop(Block block) {
  asyncOnMain(std::move(block));
  return runMainLoop();
}

/// What the program has written when it ends.
std::string outputOf(const std::string& program, std::vector<std::string> arguments) {
  std::string output;
  {
    ChildProcess child(program, std::move(arguments), [&](std::string_view piece) {
      EXPECT_FALSE(piece.empty());
      output += piece;
    });
    EXPECT_EQ(child.launch(), std::nullopt);
    while (child.isRunning()) std::this_thread::sleep_for(1ms);
  }
  return output;
}

TEST(Contract, MainQueueKeepsOrderAcrossThreads) {
  std::vector<int> order;
  const auto mainThread = std::this_thread::get_id();
  const int status = runOnMainLoop([&] {
    asyncOnWorker([&] {
      EXPECT_NE(std::this_thread::get_id(), mainThread);
      for (int i = 0; i < 1000; ++i)
        asyncOnMain([&order, i, mainThread] {
          EXPECT_EQ(std::this_thread::get_id(), mainThread);
          order.push_back(i);
        });
      asyncOnMain([] { endMainLoop(7); });
    });
  });
  EXPECT_EQ(status, 7);
  ASSERT_EQ(order.size(), 1000U);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(Contract, WorkItemsAndTimersEndWithTheirHandles) {
  std::vector<std::string> ran;
  std::unique_ptr<WorkItem> cancelled, dropped, own;
  std::unique_ptr<Timer> timer;
  const auto start = now();
  runOnMainLoop([&] {
    cancelled = scheduleWorkItem(5ms, [&] { ran.emplace_back("cancelled"); });
    dropped = scheduleWorkItem(5ms, [&] { ran.emplace_back("dropped"); });
    own = scheduleWorkItem(10ms, [&] {
      ran.emplace_back("own");
      own.reset();
    });
    timer = scheduleTimer(15ms, [&] {
      ran.emplace_back("tick");
      if (ran.size() == 3) {
        timer.reset();
        asyncOnMainAfter(40ms, [] { endMainLoop(0); });
      }
    });
    cancelled->cancel();
    dropped.reset();
  });
  EXPECT_EQ(ran, (std::vector<std::string>{"own", "tick", "tick"}));
  EXPECT_GE(now() - start, 70ms);
}

TEST(Contract, ChildOutputArrivesWholeAndInOrder) {
  const std::string script =
      "read line || i=0; while [ $i -lt 20000 ]; do echo line $i; i=$((i+1)); done; echo \"$1\" "
      ">&2";
  std::string expected;
  for (int i = 0; i < 20000; ++i) expected += "line " + std::to_string(i) + "\n";
  EXPECT_EQ(outputOf("/bin/sh", {"-c", script, "-", "an argument with blanks"}),
            expected + "an argument with blanks\n");
}

TEST(Contract, ChildEndsWhenToldAndWithItsHandle) {
  const auto start = now();
  ChildProcess told("/bin/sleep", {"100"}, [](std::string_view) {});
  EXPECT_FALSE(told.isRunning());
  ASSERT_EQ(told.launch(), std::nullopt);
  EXPECT_TRUE(told.isRunning());
  told.terminate();
  while (told.isRunning()) std::this_thread::sleep_for(1ms);

  std::string output;
  std::atomic<bool> isReady = false;
  {
    // The handle waits neither for the child nor for one that left its group and keeps
    // the pipe open.
    ChildProcess stubborn(
        "/bin/sh",
        {"-c", "trap '' TERM; perl -e '$| = 1; setpgrp; print \"ready\\n\"; sleep 30' & wait"},
        [&](std::string_view piece) {
          output += piece;
          isReady = true;
        });
    ASSERT_EQ(stubborn.launch(), std::nullopt);
    while (!isReady) std::this_thread::sleep_for(1ms);
  }
  EXPECT_EQ(output, "ready\n");
  EXPECT_LT(now() - start, 30s) << "it was not told, or was waited for";

  ChildProcess missing("/no/such/tool", {}, [](std::string_view) {});
  EXPECT_NE(missing.launch().value_or(""), "");
  EXPECT_FALSE(missing.isRunning());
  missing.terminate();
}

TEST(Contract, ACommandIsWaitedForUntilItHasEnded) {
  const auto start = now();
  runAndWait("/bin/sleep", {"2.1"});
  EXPECT_GE(now() - start, 2100ms);
  runAndWait("/no/such/tool", {});
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child is left to be reaped";
}

TEST(Contract, AdminScriptOfAnotherFormIsAnError) {
  const auto error = executeAdminScript("do shell script \"id\"");
  ASSERT_TRUE(error.has_value());
  EXPECT_NE(error->number, kAdminScriptCancelled);
  EXPECT_NE(error->message.value_or(""), "");
}

TEST(Contract, PropertyListsAreReadAndWrittenBackAsTheyCame) {
  const auto file = folder / "list.plist";
  std::ofstream(file) << R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>
    <key>yes</key><true/><key>name</key><string>澄枫 🍁 &amp;</string>
    <key>list</key><array><string>a</string><dict/><string/></array>
    <key>foreign</key><array><integer>1</integer><integer>9223372036854775808</integer><real>0.5</real>
    <date>2001-01-02T00:00:00Z</date><data>AP8=</data></array></dict></plist>)";
  auto read = readPropertyListDictionary(file);
  ASSERT_TRUE(read.has_value());
  const auto* foreign = (*read)["foreign"].as<PropertyListArray>();
  ASSERT_TRUE(foreign && foreign->size() == 5);
  for (const auto& value : *foreign) EXPECT_TRUE(value.as<OpaqueValue>());

  const std::string domain = "com.tessal.installer.contract-test." + std::to_string(::getpid());
  const auto copy = [&](const std::string& key) {
    return copyPreferencesValue(key, domain, PreferencesUser::current, PreferencesHost::current);
  };
  const auto setAll = [&](const auto& valueFor) {
    for (const auto& [key, value] : *read)
      setPreferencesValue(key, valueFor(value), domain, PreferencesUser::current,
                          PreferencesHost::current);
    EXPECT_TRUE(synchronizePreferences(domain, PreferencesUser::current, PreferencesHost::current));
  };
  setAll([](const auto& value) { return std::optional(value); });
  for (const auto& [key, value] : *read) EXPECT_EQ(copy(key), value) << key;
  EXPECT_EQ(copyPreferencesValue("yes", domain, PreferencesUser::current, PreferencesHost::any),
            std::nullopt);
  setAll([](const auto&) { return std::nullopt; });
  EXPECT_EQ(copy("yes"), std::nullopt);

  read->erase("foreign");
  EXPECT_EQ(*read, (PropertyListDictionary{
                       {"yes", true},
                       {"name", "澄枫 🍁 &"},
                       {"list", PropertyListArray{"a", PropertyListDictionary{}, ""}}}));
}

/// A binary list: a dictionary of so many arrays in each other, each of which holds
/// the next one twice, and the last one "true".
std::string doubledList(char arrays) {
  std::string bytes("bplist00\xD1\1\2Qa"), offsets("\x08\x0B");
  for (char next = 3; next < arrays + 3; ++next) {
    offsets += char(bytes.size());
    bytes += {'\xA2', next, next};
  }
  offsets += char(bytes.size());
  const auto number = [](std::size_t value) { return std::string(7, '\0') + char(value); };
  return bytes + '\x09' + offsets + std::string(6, '\0') + "\1\1" + number(offsets.size()) +
         number(0) + number(bytes.size() + 1);
}

TEST(Contract, ListsBeyondTheLimitsOrOfAnotherKindAreRefused) {
  const auto file = folder / "list.plist";
#ifdef __APPLE__  // Linux reads no binary lists
  std::ofstream(file) << doubledList(1);
  EXPECT_EQ(readPropertyListDictionary(file),
            (PropertyListDictionary{{"a", PropertyListArray{true, true}}}));
#endif
  std::string deep;
  for (int i = 0; i < 10'000; ++i) deep = "<array>" + deep + "</array>";
  for (const std::string& bytes :
       {doubledList(60), "<plist><dict><key>a</key>" + deep + "</dict></plist>",
        std::string("<plist><dict>"), std::string("<plist><array/></plist>")}) {
    std::ofstream(file) << bytes;
    EXPECT_EQ(readPropertyListDictionary(file), std::nullopt);
  }
}

/// Where this program lies, and what makes it say where it finds a resource.
std::filesystem::path ownProgram;
constexpr const char* kFindResource = "--find-resource";

TEST(Contract, BundlesAndResourcesMayHaveAnyName) {
  namespace fs = std::filesystem;
  const auto bundle = fs::canonical(folder) / "orvane contract %41 \"' 澄/澄 %20\"'.app";
  const auto program = bundle / "Contents/MacOS/program";
  const auto resource = bundle / "Contents/Resources/中 %41\"'.sh";
  for (const auto& file : {program, resource}) fs::create_directories(file.parent_path());
  fs::copy_file(ownProgram, program);
  std::ofstream(resource) << "#";
  EXPECT_EQ(outputOf(program, {kFindResource, "中 %41\"'", "sh"}),
            resource.string() + "\n" + bundle.string() + "\n");
  EXPECT_EQ(outputOf(program, {kFindResource, "none", "sh"}), "-\n" + bundle.string() + "\n");
}

TEST(Contract, ListedInputSourcesOutliveTheirList) {
  const InputSource first = createInputSourceList(std::nullopt, true).value().at(0);
  const auto id = getInputSourceProperty(first, InputSourceProperty::inputSourceID);
  const auto same = createInputSourceList({{InputSourceProperty::inputSourceID, id.value()}}, true);
  EXPECT_FALSE(same.value().empty());
}

TEST(Contract, BrokenPipesEndChildrenAndNotThisProcess) {
  onTerminationRequest([] {});
  ::raise(SIGPIPE);
  EXPECT_EQ(outputOf("/bin/sh", {"-c", "echo before; kill -s PIPE $$; echo after"}), "before\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && argv[1] == std::string(kFindResource)) {
    const auto resource = bundleResource(argv[2], argv[3]);
    std::cout << resource.value_or("-").string() << '\n' << bundleLocation().string() << '\n';
    return 0;
  }
  ownProgram = std::filesystem::absolute(argv[0]);
  testing::InitGoogleTest(&argc, argv);
  std::string root = std::filesystem::temp_directory_path() / "orvane-contract-XXXXXX";
  folder = ::mkdtemp(root.data());
  for (const auto& option : platform::platformOptions()) option.use(folder);
  const int status = RUN_ALL_TESTS();
  std::filesystem::remove_all(folder);
  return status;
}
