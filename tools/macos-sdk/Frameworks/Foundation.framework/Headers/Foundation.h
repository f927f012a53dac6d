// What this project uses of Foundation. See tools/macos-sdk/README.md.

#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <objc/NSObject.h>
#include <objc/objc.h>

@class NSAppleEventDescriptor, NSError, NSOperationQueue;

typedef CGSize NSSize;
typedef CGRect NSRect;
CF_EXPORT const NSRect NSZeroRect;
inline NSSize NSMakeSize(CGFloat width, CGFloat height) {
  return {width, height};
}
inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
  return {{x, y}, {width, height}};
}

inline id CFBridgingRelease(CFTypeRef __attribute__((cf_consumed)) object) {
  return (__bridge_transfer id)object;
}

@interface NSString : NSObject
@end

@interface NSValue : NSObject
@end
@interface NSNumber : NSValue
@property(readonly) int intValue;
@end

@interface NSDictionary<KeyType, ObjectType> : NSObject
- (ObjectType)objectForKeyedSubscript:(KeyType)key;
@end

@interface NSURL : NSObject
@end

CF_EXPORT NSString* const NSAppleScriptErrorMessage;
CF_EXPORT NSString* const NSAppleScriptErrorNumber;
@interface NSAppleScript : NSObject
- (instancetype)initWithSource:(NSString*)source;
- (NSAppleEventDescriptor*)executeAndReturnError:(NSDictionary<NSString*, id>**)errorInfo;
@end

typedef NSString* NSNotificationName;
@interface NSNotification : NSObject
@end
@interface NSNotificationCenter : NSObject
- (id<NSObject>)addObserverForName:(NSNotificationName)name
                            object:(id)object
                             queue:(NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block;
- (void)removeObserver:(id)observer;
@end
@interface NSDistributedNotificationCenter : NSNotificationCenter
+ (NSDistributedNotificationCenter*)defaultCenter;
@end

@interface NSOperationQueue : NSObject
@property(class, readonly, strong) NSOperationQueue* mainQueue;
@end
