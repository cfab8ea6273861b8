// SPDX-License-Identifier: MIT
// A program without a toolkit: what the toolkit's side of the layer would provide.
#include "platform_peers.h"

#include <AppKit/NSNib.h>

namespace platform {

NSInteger runAlertModally(const NSAlert&) {
    throw std::logic_error("nobody is there to answer an alert");
}

std::unique_ptr<PopoverPeer> makePopoverPeer(const std::shared_ptr<NSPopover>&) {
    throw std::logic_error("nothing is there to show a popover");
}

std::shared_ptr<const Picture> loadPicture(const std::filesystem::path&) {
    throw std::logic_error("nothing is there to read a picture");
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
