#include <Carbon/Carbon.h>
#import <Foundation/Foundation.h>

#include <memory>
#include <utility>

#include "platform/text_input_sources.h"

namespace platform {

namespace {

class EnabledSourcesObserver {
 public:
  explicit EnabledSourcesObserver(Block block) : block_(std::make_shared<Block>(std::move(block))) {
    // Weak: a notification may already wait in the operation queue when the
    // observer goes, and the block may destroy the observer.
    const std::weak_ptr weak(block_);
    token_ = [NSDistributedNotificationCenter.defaultCenter
        addObserverForName:(__bridge NSString*)kTISNotifyEnabledKeyboardInputSourcesChanged
                    object:nil
                     queue:NSOperationQueue.mainQueue
                usingBlock:^(NSNotification*) {
                  if (const auto alive = weak.lock()) (*alive)();
                }];
  }
  ~EnabledSourcesObserver() {
    [NSDistributedNotificationCenter.defaultCenter removeObserver:token_];
  }

  EnabledSourcesObserver(const EnabledSourcesObserver&) = delete;
  EnabledSourcesObserver& operator=(const EnabledSourcesObserver&) = delete;

 private:
  std::shared_ptr<Block> block_;
  id<NSObject> token_;
};

}  // namespace

Observation observeEnabledInputSourcesChanged(Block block) {
  return std::make_shared<EnabledSourcesObserver>(std::move(block));
}

}  // namespace platform
