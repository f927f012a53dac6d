// input-source-agent: the windows of the input-source service. It asks the user
// whether an input method may be used, and shows the list that stands for the
// system's settings.

#include <algorithm>
#include <iostream>
#include <string>

#include "cli/program_options.h"
#include "platform/application.h"
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

/// A frame of four numbers; not valid if there are none.
QRect toFrame(const std::vector<int>& numbers) {
  return numbers.size() == 4 ? QRect(numbers[0], numbers[1], numbers[2], numbers[3]) : QRect();
}

int askForConsent(const std::string& id, const QRect& beside) {
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
  program.placeBeside(beside, Side::right);
  program.open(QStringLiteral("ConsentWindow"), {{"question", QVariant::fromValue(&question)}},
               QStringLiteral("输入法许可"), /*isClosable=*/false,
               [] { return false; });  // only its buttons answer it
  return program.run();
}

int showSettings(const QRect& beside) {
  SingleInstance instance("settings");
  if (!instance.take()) return 0;
  HelperProgram program(kName, kName, kNoDisplay);
  InputSourceList list;
  instance.onOtherStart(platform::activateIgnoringOtherApps);
  program.placeBeside(beside, Side::left);
  program.open(QStringLiteral("SettingsWindow"), {{"list", QVariant::fromValue(&list)}},
               QStringLiteral("键盘 · 输入法"), /*isClosable=*/true, [] {
                 HelperProgram::end(0);
                 return true;
               });
  return program.run();
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App program("The windows of the input-source service.", kName);
  std::string id;
  CLI::Option_group* const window = program.add_option_group("Window");
  window
      ->add_option("--consent", id,
                   "ask the user to allow this input method, if it is to be asked for")
      ->type_name("ID");
  bool settings = false;
  window->add_flag("--settings", settings, "show the input sources, each with a switch");
  window->require_option(1);
  std::vector<int> beside;
  program.add_option("--beside", beside, "open the window beside this frame, in points")
      ->type_name("X,Y,WIDTH,HEIGHT")
      ->delimiter(',')
      ->expected(4);
  addCommonOptions(program);
  if (const auto status = parseArguments(program, argc, argv)) return *status;
  return settings ? showSettings(toFrame(beside)) : askForConsent(id, toFrame(beside));
}
