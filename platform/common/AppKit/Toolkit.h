// SPDX-License-Identifier: MIT
#pragma once

#include "Peers.h"

#include <AppKit/NSNib.h>

namespace platform {

/// What the layer asks the toolkit's part for, which is a library of its own: a program that shows nothing never loads
/// it.
class Toolkit {
public:
    virtual ~Toolkit();
    virtual NibContents loadNib(const NSBundle& bundle, const std::u16string& name,
                                const std::shared_ptr<NSObject>& owner) = 0;
    virtual std::shared_ptr<Canvas> makeCanvas(NSSize size) = 0;
    virtual NSSize sizeOfToken(const std::u16string& title, NSControlSize size) = 0;
    virtual std::unique_ptr<PopoverPeer> makePopoverPeer(const std::shared_ptr<NSPopover>& popover) = 0;
    virtual std::shared_ptr<const Picture> loadPicture(const std::filesystem::path& file) = 0;
    virtual NSInteger runAlertModally(const NSAlert& alert) = 0;
};

/// The name under which the toolkit's library offers a function that answers its `Toolkit*`.
inline constexpr const char* toolkitEntry = "imprinterToolkit";

} // namespace platform
