#include "installer/content_view.h"

ContentView::ContentView() = default;
ContentView::~ContentView() {
  if (const auto tail = tail_.lock()) tail->terminate();
}

std::shared_ptr<ContentView> ContentView::create() {
  // The constructor is private, out of make_shared's reach.
  struct Shared : ContentView {};
  auto view = std::make_shared<Shared>();
  view->watchWindowHooks();
  return view;
}
