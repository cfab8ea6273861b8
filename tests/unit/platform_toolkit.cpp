// SPDX-License-Identifier: MIT
// A program without a toolkit: what the toolkit's side of the layer would provide.
#include "../support/FakeQueue.h"
#include "platform_peers.h"

#include <AppKit/NSNib.h>

namespace platform {

MainQueue::~MainQueue() = default;

namespace {

std::shared_ptr<MainQueue>& queue() {
    static std::shared_ptr<MainQueue> inForce = std::make_shared<testing_support::FakeQueue>();
    return inForce;
}

} // namespace

MainQueue& mainQueue() {
    return *queue();
}
std::shared_ptr<MainQueue> setMainQueue(std::shared_ptr<MainQueue> replacement) {
    return std::exchange(queue(), std::move(replacement));
}
void dispatchAsync(MainQueue::Block block) {
    mainQueue().async(std::move(block));
}
void dispatchAfter(double seconds, MainQueue::Block block) {
    mainQueue().after(seconds, std::move(block));
}

NSInteger runAlertModally(const NSAlert&) {
    throw std::logic_error("nobody is there to answer an alert");
}

std::unique_ptr<PopoverPeer> makePopoverPeer(const std::shared_ptr<NSPopover>&) {
    throw std::logic_error("nothing is there to show a popover");
}

std::shared_ptr<const Picture> loadPicture(const std::filesystem::path&) {
    throw std::logic_error("nothing is there to read a picture");
}

std::shared_ptr<Canvas> makeCanvas(NSSize) {
    throw std::logic_error("nothing is there to draw a picture");
}

NSSize sizeOfToken(const std::u16string&, NSControlSize) {
    throw std::logic_error("nothing is there to measure a token");
}

NibContents loadNibNamedOwner(const NSBundle&, const std::u16string&, const std::shared_ptr<NSObject>&) {
    throw std::logic_error("nothing is there to show an interface file");
}

} // namespace platform

namespace platform_test {

namespace {

const platform::ClassRegistration registration{
    platform::ClassTable<Listener>(u"UnitListener").action(u"onAction:", &Listener::onAction)};

} // namespace

} // namespace platform_test

/// The font catalog keeps a part of its own configuration until the program ends.
extern "C" const char* __lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    return "leak:libfontconfig";
}
