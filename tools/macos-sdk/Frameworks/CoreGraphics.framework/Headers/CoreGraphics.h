// What this project uses of Core Graphics. See tools/macos-sdk/README.md.

#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef double CGFloat;
typedef struct CGPoint {
  CGFloat x;
  CGFloat y;
} CGPoint;
typedef struct CGSize {
  CGFloat width;
  CGFloat height;
} CGSize;
typedef struct CGRect {
  CGPoint origin;
  CGSize size;
} CGRect;

typedef struct CGColorSpace* CGColorSpaceRef;
typedef struct CGContext* CGContextRef;

typedef enum CGImageAlphaInfo : uint32_t { kCGImageAlphaPremultipliedLast = 1 } CGImageAlphaInfo;
typedef uint32_t CGBitmapInfo;  // as C++ sees CF_OPTIONS
enum : CGBitmapInfo { kCGBitmapByteOrder32Big = 4U << 12U };

CF_EXPORT const CFStringRef kCGColorSpaceSRGB;
CF_EXPORT CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name);
CF_EXPORT CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height,
                                             size_t bitsPerComponent, size_t bytesPerRow,
                                             CGColorSpaceRef space, uint32_t bitmapInfo);
