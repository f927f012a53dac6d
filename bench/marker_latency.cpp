// How long a marker takes from the install log to the field that it sets and to the
// frame that shows it, in milliseconds, as JSON; and to a reader of the same pipe
// that does nothing with it.
//
//   marker_latency ROOT COUNT

#include <QGuiApplication>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "installer/content_view.h"
#include "platform/child_process.h"
#include "platform/file_root.h"
#include "platform/program.h"
#include "ui/installer_model.h"
#include "ui/installer_ui.h"
#include "ui/named_window.h"

namespace {

using Clock = std::chrono::steady_clock;
// So long that the bar stands still again.
constexpr auto kPause = std::chrono::milliseconds(300);

struct Series {
  const char* name;
  std::vector<double> milliseconds;
};

void print(const Series& series, const char* end) {
  std::printf("\"%s\": [", series.name);
  for (std::size_t i = 0; i < series.milliseconds.size(); ++i)
    std::printf("%s%.4f", i == 0 ? "" : ", ", series.milliseconds[i]);
  std::printf("]%s", end);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: marker_latency ROOT COUNT\n");
    return 64;
  }
  const std::string root = argv[1];
  const int count = std::atoi(argv[2]);
  prepareToolkit();
  QGuiApplication application(argc, argv);
  for (const auto& option : platform::platformOptions()) option.use(root);
  setApplicationLook();
  registerInstallerUi();

  const auto view = ContentView::create();
  view->isInstalling = true;
  InstallerModel model(view);
  NamedWindow window(model.appDisplayName());
  window.setResizeMode(QQuickView::SizeRootObjectToView);
  window.setInitialProperties({{"model", QVariant::fromValue(&model)}});
  window.setSource(contentBodyUrl());
  window.resize(1000, 900);
  window.show();

  const auto logPath = platform::onDisk(kInstallLogPath);
  std::ofstream log(logPath);
  Clock::time_point written;
  const auto passed = [&] {
    return std::chrono::duration<double, std::milli>(Clock::now() - written).count();
  };
  Series pipe{"pipe", {}};
  Series field{"field", {}};
  Series frame{"frame", {}};
  std::atomic<double> readAfter = 0.0;
  platform::ChildProcess reader("/usr/bin/tail", {"-n", "+1", "-F", logPath.string()},
                                [&](std::string_view) { readAfter = passed(); });
  reader.launch();
  const auto follower = view->startFollowingInstallLog();

  bool isFrameDue = false;
  const auto changed = view->installProgress.observe([&](double, auto) {
    field.milliseconds.push_back(passed());
    isFrameDue = true;
  });
  QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [&] {
    if (isFrameDue) frame.milliseconds.push_back(passed());
    isFrameDue = false;
  });
  int number = 0;
  const auto timer = platform::scheduleTimer(kPause, [&] {
    if (number > 0) pipe.milliseconds.push_back(readAfter);
    if (number == count) return QGuiApplication::quit();
    written = Clock::now();
    log << (number++ % 2 == 0 ? "unzip package\n" : "kill Orvane\n") << std::flush;
  });
  QGuiApplication::exec();

  std::printf("{");
  print(pipe, ", ");
  print(field, ", ");
  print(frame, "}\n");
  const auto wanted = static_cast<std::size_t>(count);
  return field.milliseconds.size() == wanted && frame.milliseconds.size() == wanted ? 0 : 1;
}
