// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSWindow.h>

namespace platform {

class NSBundle;

/// What an interface file held.
struct NibContents {
    /// The file's root in its frame; null where the file could not be read.
    std::shared_ptr<NSWindow> window;
    /// Objects the file made that are no views; the owner keeps them through its strong outlets.
    std::vector<std::shared_ptr<NSObject>> objects;
    /// One sentence for each outlet, action or key that its owner does not have, each outlet that behaviour reads and
    /// the file leaves unconnected, each class that is not registered.
    std::vector<std::string> problems;
};

/// Loads the interface file `name` (a `.ui` file of the bundle) for `owner`: makes its views, connects outlets and
/// actions, then sends `awakeFromNib` to every object. Without a `QApplication` nothing is loaded, and a problem says
/// so. Throws `std::runtime_error` where the toolkit's library is missing or broken.
NibContents loadNibNamedOwner(const NSBundle& bundle, const std::u16string& name,
                              const std::shared_ptr<NSObject>& owner);

} // namespace platform
