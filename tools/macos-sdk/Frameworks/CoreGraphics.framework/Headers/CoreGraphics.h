// What this project uses of Core Graphics. See tools/macos-sdk/README.md.

#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef double CGFloat;
struct CGPoint { CGFloat x, y; };
struct CGSize { CGFloat width, height; };
struct CGRect { CGPoint origin; CGSize size; };

typedef struct CGColorSpace* CGColorSpaceRef;
typedef struct CGContext* CGContextRef;

enum CGImageAlphaInfo : uint32_t { kCGImageAlphaPremultipliedLast = 1 };
typedef uint32_t CGBitmapInfo;  // as C++ sees CF_OPTIONS
enum : CGBitmapInfo { kCGBitmapByteOrder32Big = 4U << 12U };

CF_ASSUME_NONNULL_BEGIN
CF_IMPLICIT_BRIDGING_ENABLED
CF_EXPORT const CFStringRef kCGColorSpaceSRGB;
CF_EXPORT CGColorSpaceRef _Nullable CGColorSpaceCreateWithName(CFStringRef _Nullable name);
CF_EXPORT CGContextRef _Nullable CGBitmapContextCreate(
    void* _Nullable data, size_t width, size_t height, size_t bitsPerComponent, size_t bytesPerRow,
    CGColorSpaceRef _Nullable space, uint32_t bitmapInfo);
CF_IMPLICIT_BRIDGING_DISABLED
CF_ASSUME_NONNULL_END
