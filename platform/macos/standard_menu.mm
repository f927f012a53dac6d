#include "platform/macos/standard_menu.h"

#import <AppKit/AppKit.h>

#include <string>

#include "platform/bundle.h"
#include "platform/macos/ns_string.h"

namespace platform {

namespace {

/// The title for an item that does this; nil for one that is not of the standard menu.
NSString* titleFor(SEL action, NSString* applicationName) {
  if (action == @selector(hide:)) return [@"隐藏" stringByAppendingString:applicationName];
  if (action == @selector(hideOtherApplications:)) return @"隐藏其他";
  if (action == @selector(unhideAllApplications:)) return @"全部显示";
  if (action == @selector(terminate:)) {
    return [@"退出" stringByAppendingString:applicationName];
  }
  return nil;
}

void translate(NSMenu* menu, NSString* applicationName) {
  for (NSInteger index = 0; index < menu.numberOfItems; ++index) {
    NSMenuItem* item = [menu itemAtIndex:index];
    NSMenu* submenu = item.submenu;
    if (submenu != nil && submenu == NSApplication.sharedApplication.servicesMenu) {
      item.title = @"服务";
    } else if (submenu != nil) {
      translate(submenu, applicationName);
    }
    SEL action = item.action;
    NSString* title = action == nullptr ? nil : titleFor(action, applicationName);
    if (title != nil) item.title = title;
  }
}

}  // namespace

void completeStandardMenu() {
  @autoreleasepool {
    NSMenu* menu = NSApplication.sharedApplication.mainMenu;
    if (menu == nil) return;
    NSString* applicationName = toNSString(bundleInfoText("CFBundleDisplayName").value_or(""));
    translate(menu, applicationName);
    // The standard panel shows Credits.html of the bundle.
    [[menu itemAtIndex:0].submenu
        insertItemWithTitle:[@"关于" stringByAppendingString:applicationName]
                     action:@selector(orderFrontStandardAboutPanel:)
              keyEquivalent:@""
                    atIndex:0];
  }
}

}  // namespace platform
