#include "installer/content_view.h"

ContentView::ContentView() = default;
ContentView::~ContentView() {
  for (const auto& tail : tails_)
    if (const auto running = tail.lock()) running->terminate();
}

std::shared_ptr<ContentView> ContentView::create() {
  // The constructor is private, out of make_shared's reach.
  struct Shared : ContentView {};
  auto view = std::make_shared<Shared>();
  view->watchWindowHooks();
  return view;
}
