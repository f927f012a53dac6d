#import <AppKit/AppKit.h>

#include <algorithm>
#include <cstddef>

#include "platform/macos/cf_ref.h"
#include "platform/macos/ns_string.h"
#include "platform/main_queue.h"
#include "platform/pictures.h"

namespace platform {

namespace {

// Draws the picture into the middle of a transparent square, as large as fits.
Image draw(NSImage* picture, int side) {
  Image image{side, side, {}};
  const std::size_t bytesPerRow = static_cast<std::size_t>(side) * 4;
  image.pixels.resize(bytesPerRow * static_cast<std::size_t>(side));

  const auto colours = adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
  const auto bitmap =
      adopt(CGBitmapContextCreate(image.pixels.data(), static_cast<std::size_t>(side),
                                  static_cast<std::size_t>(side), 8, bytesPerRow, colours.get(),
                                  static_cast<std::uint32_t>(kCGImageAlphaPremultipliedLast) |
                                      static_cast<std::uint32_t>(kCGBitmapByteOrder32Big)));
  if (!bitmap) return image;
  const NSSize size = picture.size;
  const double scale = side / std::max({size.width, size.height, 1.0});
  const NSSize fitted = NSMakeSize(size.width * scale, size.height * scale);
  const NSRect place = NSMakeRect((side - fitted.width) / 2, (side - fitted.height) / 2,
                                  fitted.width, fitted.height);

  [NSGraphicsContext saveGraphicsState];
  NSGraphicsContext.currentContext = [NSGraphicsContext graphicsContextWithCGContext:bitmap.get()
                                                                             flipped:NO];
  [picture drawInRect:place
             fromRect:NSZeroRect
            operation:NSCompositingOperationSourceOver
             fraction:1.0];
  [NSGraphicsContext restoreGraphicsState];
  return image;
}

}  // namespace

Image applicationIcon(int side) {
  assertMainThread();
  @autoreleasepool {
    return draw(NSApplication.sharedApplication.applicationIconImage, side);
  }
}

std::optional<Image> systemSymbol(const std::string& name, int side) {
  assertMainThread();
  @autoreleasepool {
    NSImage* symbol = [NSImage imageWithSystemSymbolName:toNSString(name)
                                accessibilityDescription:nil];
    if (symbol == nil) return std::nullopt;
    return draw(symbol, side);
  }
}

}  // namespace platform
