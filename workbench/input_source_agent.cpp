// input-source-agent ID: asks the user in a window whether the input method of this
// input source may be used.

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

namespace {

namespace service = platform::linux_;

constexpr const char* kName = "input-source-agent";

int askForConsent(const std::string& id) {
  const auto source = service::findInputSource(id);
  if (!source) {
    std::cerr << kName << ": no input source has the identifier " << id << '\n';
    return EXIT_FAILURE;
  }
  const auto folder = QString::fromStdString(service::userStore().string());
  QDir().mkpath(folder);
  QLockFile lock(folder + "/.consent-" + QString::fromStdString(source->bundleId) + ".lock");
  lock.setStaleLockTime(0);  // an agent may run for days
  if (!lock.tryLock() && lock.error() == QLockFile::LockFailedError) return EXIT_SUCCESS;

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

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> arguments;
  if (const auto status = platform::parseArguments(
          kName, "Asks whether the input method of the source ID may be used.", argc, argv,
          arguments))
    return *status;
  if (arguments.size() != 1) {
    std::cerr << kName << ": the identifier of an input source is needed\n";
    return platform::kBadUsage;
  }
  const auto application = startToolkit(argv, "input-source-agent: there is no display");
  return askForConsent(arguments.front());
}
