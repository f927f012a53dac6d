// Ownership of Core Foundation objects.

#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

namespace platform {

struct CfReleaser {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

/// Owns one reference; may be null.
template <class Ref>
using CfRef = std::unique_ptr<std::remove_pointer_t<Ref>, CfReleaser>;

/// Takes over what a function named Create or Copy has returned.
template <class Ref>
CfRef<Ref> adopt(Ref CF_CONSUMED created);

/// Shares what a function named Get has returned, or an element of a container.
template <class Ref>
CfRef<Ref> retain(Ref borrowed);

// The static analyser cannot follow a reference through the pointer's own code. It
// goes by the mark where it does not see the code.
#ifndef __clang_analyzer__
template <class Ref>
CfRef<Ref> adopt(Ref created) {
  return CfRef<Ref>(created);
}

template <class Ref>
CfRef<Ref> retain(Ref borrowed) {
  if (borrowed != nullptr) CFRetain(borrowed);
  return CfRef<Ref>(borrowed);
}
#endif

}  // namespace platform
