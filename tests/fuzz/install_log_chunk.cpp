// Pieces of an install log, cut at each 0xFF, through the view: every piece is
// logged once and in order, "finish" starts one activation and takes nothing from
// the progress.

#include <sstream>

#include "installer/content_view.h"
#include "tests/fuzz/require.h"
#include "tests/platform/test_platform.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  test::Platform platform;
  platform.addInputMethod();
  platform.putInstalledBundle();
  const auto view = ContentView::create();
  std::istringstream pieces(std::string(reinterpret_cast<const char*>(data), size));
  for (std::string piece; std::getline(pieces, piece, '\xFF');) {
    const std::size_t before = view->logText->size();
    const double progress = view->installProgress;
    const bool wasTriggered = view->didTriggerActivation;
    view->handleInstallLogChunk(piece);
    platform.drain();
    require(view->logText->size() >= before + piece.size() &&
            view->logText->substr(before).ends_with(piece));
    require(view->installProgress >= 0.0 && view->installProgress <= 1.0);
    if (view->didTriggerActivation != wasTriggered) {
      require(piece.find("finish") != std::string::npos && view->installProgress >= progress);
    } else {
      require(view->logText->size() == before + piece.size());
    }
  }
  // Text that does not decode is in memory only.
  const std::string log = platform.readFile("/tmp/tessal_installer_ui.log");
  require(log.size() <= view->logText->size());
  return 0;
}
