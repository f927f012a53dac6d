// input-source-agent: the windows of the input-source service. It asks the user
// whether an input method may be used, and shows the list that stands for the
// system's settings.

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "platform/application.h"
#include "platform/common/program_options.h"
#include "platform/linux/input_source_service.h"
#include "platform/linux/input_source_state.h"
#include "ui/installer_ui.h"
#include "workbench/consent_question.h"
#include "workbench/helper_program.h"
#include "workbench/input_source_list.h"
#include "workbench/single_instance.h"

namespace {

namespace service = platform::linux_;

constexpr const char* kName = "input-source-agent";
constexpr int kFailed = 1;
constexpr int kNoDisplay = 69;

int askForConsent(const std::string& id) {
  const auto source = service::findInputSource(id);
  if (!source) {
    std::cerr << kName << ": no input source has the identifier " << id << '\n';
    return kFailed;
  }
  std::string place = "consent-" + source->bundleId;
  std::replace(place.begin(), place.end(), '/', '_');
  SingleInstance instance(place);
  if (!instance.take()) return 0;

  HelperProgram program(kName, kName, kNoDisplay);
  const auto isAsked = [&id] {
    const auto now = service::findInputSource(id);
    return now && now->isAsked;
  };
  const auto observer = service::observeInputSources(service::WatchedState::everything, [&] {
    if (isAsked()) return;
    instance.release();
    // The question may have come up again before release(). The agent that was
    // started for it then found the place taken and ended, so this one goes on.
    if (isAsked() && instance.take()) return;
    HelperProgram::end(0);
  });
  if (!isAsked()) return 0;

  ConsentQuestion question(appDisplayName(), QString::fromStdString(source->name));
  QObject::connect(&question, &ConsentQuestion::answered, [&](bool allowed) {
    instance.release();  // the next question needs a window of its own
    const auto status = allowed ? service::allowInputMethod(id) : service::denyInputMethod(id);
    if (status != platform::kNoError)
      std::cerr << kName << ": the answer was not taken: status " << status << '\n';
    HelperProgram::end(status == platform::kNoError ? 0 : kFailed);
  });
  instance.onOtherStart(platform::activateIgnoringOtherApps);
  program.keepOnTop();
  program.open(QStringLiteral("ConsentWindow"), {{"question", QVariant::fromValue(&question)}},
               QStringLiteral("输入法许可"), /*isClosable=*/false,
               [] { return false; });  // only its buttons answer it
  return program.run();
}

int showSettings() {
  SingleInstance instance("settings");
  if (!instance.take()) return 0;
  HelperProgram program(kName, kName, kNoDisplay);
  InputSourceList list;
  instance.onOtherStart(platform::activateIgnoringOtherApps);
  program.open(QStringLiteral("SettingsWindow"), {{"list", QVariant::fromValue(&list)}},
               QStringLiteral("键盘 · 输入法"), /*isClosable=*/true, [] {
                 HelperProgram::end(0);
                 return true;
               });
  return program.run();
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> others;
  if (const auto status = platform::parseArguments(
          kName,
          "The windows of the input-source service.\n"
          "--consent ID asks the user to allow this input method, if it is to be asked for;\n"
          "--settings shows the input sources, each with a switch.",
          argc, argv, others))
    return *status;
  if (others.size() == 1 && others[0] == "--settings") return showSettings();
  if (others.size() == 2 && others[0] == "--consent") return askForConsent(others[1]);
  std::cerr << kName << ": either --consent ID or --settings\n";
  return platform::kBadUsage;
}
