// SPDX-License-Identifier: MIT
#pragma once

namespace pane {

/// A button whose cell tells it that its menu has closed.
class VelIFontPopUpProtocol {
public:
    virtual ~VelIFontPopUpProtocol();
    virtual void dismissPopUp() = 0;
};

} // namespace pane
