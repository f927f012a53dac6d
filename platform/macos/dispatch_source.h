// Ownership of dispatch sources.

#pragma once

#include <dispatch/dispatch.h>

#include <memory>
#include <type_traits>
#include <utility>

#include "platform/main_queue.h"

namespace platform {

struct DispatchSourceCanceller {
  void operator()(dispatch_source_t source) const {
    dispatch_source_cancel(source);
    dispatch_release(source);
  }
};

/// To destroy it is to cancel the source.
using DispatchSource =
    std::unique_ptr<std::remove_pointer_t<dispatch_source_t>, DispatchSourceCanceller>;

/// A source whose events run `block` on the main queue, once it is resumed.
inline DispatchSource makeMainQueueSource(dispatch_source_type_t type, uintptr_t handle,
                                          uintptr_t mask, Block block) {
  DispatchSource source(dispatch_source_create(type, handle, mask, dispatch_get_main_queue()));
  dispatch_source_set_event_handler(source.get(), ^{
    block();
  });
  return source;
}

}  // namespace platform
