// What this project uses of Foundation. See tools/macos-sdk/README.md.

#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <objc/NSObject.h>
#include <objc/objc.h>

#define API_AVAILABLE_MACOS(version) __attribute__((availability(macos, introduced = version)))
#define NS_ASSUME_NONNULL_BEGIN CF_ASSUME_NONNULL_BEGIN
#define NS_ASSUME_NONNULL_END CF_ASSUME_NONNULL_END

@class NSAppleEventDescriptor, NSError, NSNotification, NSOperationQueue;

NS_ASSUME_NONNULL_BEGIN

typedef CGSize NSSize;
typedef CGRect NSRect;
CF_EXPORT const NSRect NSZeroRect;
inline NSSize NSMakeSize(CGFloat w, CGFloat h) { return {w, h}; }
inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat w, CGFloat h) { return {{x, y}, {w, h}}; }

inline id _Nullable CFBridgingRelease(CFTypeRef CF_CONSUMED _Nullable object) {
  return (__bridge_transfer id)object;
}

@interface NSString : NSObject
- (NSString*)stringByAppendingString:(NSString*)text;
@end

@interface NSNumber : NSObject
@property(readonly) int intValue;
@end

@interface NSDictionary<KeyType, ObjectType> : NSObject
- (nullable ObjectType)objectForKeyedSubscript:(KeyType)key;
@end

@interface NSURL : NSObject
@end

CF_EXPORT NSString* const NSAppleScriptErrorMessage;
CF_EXPORT NSString* const NSAppleScriptErrorNumber;
@interface NSAppleScript : NSObject
- (nullable instancetype)initWithSource:(NSString*)source;
- (NSAppleEventDescriptor*)executeAndReturnError:
    (NSDictionary<NSString*, id>* _Nullable* _Nullable)errorInfo;
@end

@interface NSDistributedNotificationCenter : NSObject
+ (NSDistributedNotificationCenter*)defaultCenter;
- (id<NSObject>)addObserverForName:(nullable NSString*)name object:(nullable id)object
                             queue:(nullable NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block;
- (void)removeObserver:(id)observer;
@end

@interface NSOperationQueue : NSObject
@property(class, readonly, strong) NSOperationQueue* mainQueue;
@end

NS_ASSUME_NONNULL_END
