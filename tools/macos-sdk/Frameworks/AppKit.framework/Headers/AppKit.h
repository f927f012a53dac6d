// What this project uses of AppKit. See tools/macos-sdk/README.md.

#pragma once

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

@class NSImage, NSRunningApplication, NSWindow;

typedef enum NSApplicationActivationPolicy : NSInteger {
  NSApplicationActivationPolicyRegular = 0,
  NSApplicationActivationPolicyAccessory = 1,
  NSApplicationActivationPolicyProhibited = 2,
} NSApplicationActivationPolicy;

@interface NSResponder : NSObject
@end

@interface NSApplication : NSResponder
@property(class, readonly, strong) NSApplication* sharedApplication;
@property(strong) NSImage* applicationIconImage;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activateIgnoringOtherApps:(BOOL)flag;
- (void)terminate:(id)sender;
@end

typedef enum NSCompositingOperation : NSUInteger {
  NSCompositingOperationSourceOver = 2,
} NSCompositingOperation;

@interface NSImage : NSObject
+ (instancetype)imageWithSystemSymbolName:(NSString*)name
                 accessibilityDescription:(NSString*)description;
@property NSSize size;
- (void)drawInRect:(NSRect)rect
          fromRect:(NSRect)fromRect
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)fraction;
@end

@interface NSGraphicsContext : NSObject
@property(class, strong) NSGraphicsContext* currentContext;
+ (NSGraphicsContext*)graphicsContextWithCGContext:(CGContextRef)context
                                           flipped:(BOOL)initialFlippedState;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@end

@interface NSView : NSResponder
@property(readonly, unsafe_unretained) NSWindow* window;
@end
@interface NSControl : NSView
@property(getter=isEnabled) BOOL enabled;
@end
@interface NSButton : NSControl
@end

typedef NSUInteger NSWindowStyleMask;  // as C++ sees NS_OPTIONS
enum : NSWindowStyleMask {
  NSWindowStyleMaskMiniaturizable = 1U << 2U,
  NSWindowStyleMaskResizable = 1U << 3U,
  NSWindowStyleMaskFullSizeContentView = 1U << 15U
};
typedef enum NSWindowTitleVisibility : NSInteger {
  NSWindowTitleVisible = 0,
  NSWindowTitleHidden = 1,
} NSWindowTitleVisibility;
typedef enum NSWindowButton : NSUInteger {
  NSWindowMiniaturizeButton = 1,
  NSWindowZoomButton = 2,
} NSWindowButton;

@interface NSWindow : NSResponder
@property(copy) NSString* title;
@property NSWindowTitleVisibility titleVisibility;
@property BOOL titlebarAppearsTransparent;
@property NSWindowStyleMask styleMask;
@property(readonly) NSRect frame;
@property(readonly) CGFloat backingScaleFactor;
@property NSSize contentMinSize;
@property NSSize contentMaxSize;
- (NSRect)frameRectForContentRect:(NSRect)contentRect;
- (void)setFrame:(NSRect)frameRect display:(BOOL)displayFlag animate:(BOOL)animateFlag;
- (NSButton*)standardWindowButton:(NSWindowButton)button;
@end

@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
@end
@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
- (BOOL)openURL:(NSURL*)url;
- (void)openApplicationAtURL:(NSURL*)applicationURL
               configuration:(NSWorkspaceOpenConfiguration*)configuration
           completionHandler:
               (void (^)(NSRunningApplication* application, NSError* error))completionHandler;
- (NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier;
@end
