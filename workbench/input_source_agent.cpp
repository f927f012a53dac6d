// input-source-agent: the windows of the input-source service. One asks the user
// whether an input method may be used, the other one stands for the system's settings.

#include <QDir>
#include <QLockFile>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "installer/content_view.h"
#include "platform/common/program_options.h"
#include "platform/linux/file_root_linux.h"
#include "platform/linux/input_source_service.h"
#include "ui/installer_ui.h"
#include "workbench/helper_window.h"
#include "workbench/input_source_list.h"

namespace {

namespace service = platform::linux_;

constexpr const char* kName = "input-source-agent";

/// Where the agent that shows this window keeps its lock.
QString lockFile(const std::string& window) {
  const auto folder = QString::fromStdString(service::userStore().string());
  QDir().mkpath(folder);
  return folder + QStringLiteral("/.%1.lock").arg(QString::fromStdString(window));
}

/// Whether another agent shows the window.
bool isShown(QLockFile& lock) {
  lock.setStaleLockTime(0);  // an agent may run for days
  return !lock.tryLock() && lock.error() == QLockFile::LockFailedError;
}

int askForConsent(const std::string& id) {
  const auto source = service::findInputSource(id);
  if (!source) {
    std::cerr << kName << ": no input source has the identifier " << id << '\n';
    return EXIT_FAILURE;
  }
  QLockFile lock(lockFile("consent-" + source->bundleId));
  if (isShown(lock)) return EXIT_SUCCESS;

  const auto isAsked = [&id] {
    const auto now = service::findInputSource(id);
    return now && now->isAsked;
  };
  const auto observer = service::observeInputSources([&] {
    if (!isAsked()) QGuiApplication::exit();
  });
  if (!isAsked()) return EXIT_SUCCESS;

  QQmlApplicationEngine engine;
  const QObject* const window =
      openHelperWindow(engine, QStringLiteral("ConsentWindow"),
                       {{"appName", QString::fromStdString(ContentView::appDisplayName())},
                        {"inputMethodName", QString::fromStdString(source->name)}});
  QGuiApplication::exec();
  lock.unlock();  // the next question needs a window of its own
  const QVariant isAllowed = window->property("isAllowed");
  if (!isAllowed.isValid()) return EXIT_SUCCESS;  // it was answered elsewhere
  const auto status = service::answerForUser(source, isAllowed.toBool());
  if (status == platform::kNoError) return EXIT_SUCCESS;
  std::cerr << kName << ": the answer was not taken: status " << status << '\n';
  return EXIT_FAILURE;
}

int showSettings() {
  QLockFile lock(lockFile("settings"));
  if (isShown(lock)) return EXIT_SUCCESS;
  InputSourceList list;
  QQmlApplicationEngine engine;
  openHelperWindow(engine, QStringLiteral("SettingsWindow"),
                   {{"list", QVariant::fromValue(&list)}});
  return QGuiApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> arguments;
  if (const auto status = platform::parseArguments(
          kName, "The windows of the input-source service: --consent ID, or --settings.", argc,
          argv, arguments))
    return *status;
  const bool settings = arguments == std::vector<std::string>{"--settings"};
  if (!settings && !(arguments.size() == 2 && arguments[0] == "--consent")) {
    std::cerr << kName << ": --consent ID or --settings is needed\n";
    return platform::kBadUsage;
  }
  const auto application = startToolkit(argv, "input-source-agent: there is no display");
  return settings ? showSettings() : askForConsent(arguments[1]);
}
