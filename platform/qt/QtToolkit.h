// SPDX-License-Identifier: MIT
#pragma once

#include "Toolkit.h"

namespace platform::qt {

NibContents loadNib(const NSBundle& bundle, const std::u16string& name, const std::shared_ptr<NSObject>& owner);
std::shared_ptr<Canvas> makeCanvas(NSSize size);
NSSize sizeOfToken(const std::u16string& title, NSControlSize size);
std::unique_ptr<PopoverPeer> makePopoverPeer(const std::shared_ptr<NSPopover>& popover);
std::shared_ptr<const Picture> loadPicture(const std::filesystem::path& file);
NSInteger runAlertModally(const NSAlert& alert);

} // namespace platform::qt
