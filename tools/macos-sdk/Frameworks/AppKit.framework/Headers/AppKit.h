// What this project uses of AppKit. See tools/macos-sdk/README.md.

#pragma once

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

@class NSImage, NSMenu, NSRunningApplication, NSWindow;

NS_ASSUME_NONNULL_BEGIN

enum NSApplicationActivationPolicy : NSInteger { NSApplicationActivationPolicyProhibited = 2 };

@interface NSApplication : NSObject
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
@property(null_resettable, strong) NSImage* applicationIconImage;
@property(nullable, strong) NSMenu* mainMenu;
@property(nullable, strong) NSMenu* servicesMenu;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activateIgnoringOtherApps:(BOOL)flag;
- (void)activate API_AVAILABLE_MACOS(14.0);  // not used: shows that newer calls are caught
- (void)terminate:(nullable id)sender;
- (void)hide:(nullable id)sender;
- (void)orderFrontStandardAboutPanel:(nullable id)sender;
- (void)hideOtherApplications:(nullable id)sender;
- (void)unhideAllApplications:(nullable id)sender;
@end

@interface NSMenuItem : NSObject
@property(copy) NSString* title;
@property(nullable, strong) NSMenu* submenu;
@property(nullable) SEL action;
@end
@interface NSMenu : NSObject
@property(readonly) NSInteger numberOfItems;
- (nullable NSMenuItem*)itemAtIndex:(NSInteger)index;
- (NSMenuItem*)insertItemWithTitle:(NSString*)title action:(nullable SEL)action
                     keyEquivalent:(NSString*)keyEquivalent atIndex:(NSInteger)index;
@end

enum NSCompositingOperation : NSUInteger { NSCompositingOperationSourceOver = 2 };

@interface NSImage : NSObject
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description
    API_AVAILABLE_MACOS(11.0);
@property NSSize size;
- (void)drawInRect:(NSRect)rect fromRect:(NSRect)fromRect
         operation:(NSCompositingOperation)operation fraction:(CGFloat)fraction;
@end

@interface NSGraphicsContext : NSObject
@property(class, nullable, strong) NSGraphicsContext* currentContext;
+ (NSGraphicsContext*)graphicsContextWithCGContext:(CGContextRef)context flipped:(BOOL)flipped;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@end

@interface NSView : NSObject
@property(nullable, readonly, unsafe_unretained) NSWindow* window;
@end
@interface NSButton : NSView
@property(getter=isEnabled) BOOL enabled;
@end

typedef NSUInteger NSWindowStyleMask;  // as C++ sees NS_OPTIONS
enum : NSWindowStyleMask {
  NSWindowStyleMaskMiniaturizable = 1U << 2U, NSWindowStyleMaskResizable = 1U << 3U,
  NSWindowStyleMaskFullSizeContentView = 1U << 15U
};
typedef NSUInteger NSWindowCollectionBehavior;
enum : NSWindowCollectionBehavior {
  NSWindowCollectionBehaviorFullScreenPrimary = 1U << 7U,
  NSWindowCollectionBehaviorFullScreenNone = 1U << 9U,
};
enum NSWindowTitleVisibility : NSInteger { NSWindowTitleHidden = 1 };
enum NSWindowButton : NSUInteger { NSWindowMiniaturizeButton = 1, NSWindowZoomButton = 2 };

@interface NSWindow : NSObject
@property(copy) NSString* title;
@property(copy) NSString* accessibilityTitle;
@property NSWindowTitleVisibility titleVisibility;
@property BOOL titlebarAppearsTransparent;
@property NSWindowStyleMask styleMask;
@property NSWindowCollectionBehavior collectionBehavior;
@property(readonly) NSRect frame;
@property(readonly) CGFloat backingScaleFactor;
@property NSSize contentMinSize;
@property NSSize contentMaxSize;
- (NSRect)frameRectForContentRect:(NSRect)contentRect;
- (void)setFrame:(NSRect)frameRect display:(BOOL)displayFlag animate:(BOOL)animateFlag;
- (nullable NSButton*)standardWindowButton:(NSWindowButton)button;
@end

@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
@end
@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
- (BOOL)openURL:(NSURL*)url;
- (void)openApplicationAtURL:(NSURL*)applicationURL
               configuration:(NSWorkspaceOpenConfiguration*)configuration
           completionHandler:(nullable void (^)(NSRunningApplication* _Nullable application,
                                                NSError* _Nullable error))completionHandler
    API_AVAILABLE_MACOS(10.15);
- (nullable NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier;
@end

NS_ASSUME_NONNULL_END
