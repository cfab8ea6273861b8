// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSViewController.h>

namespace pane {

/// Shows the stamped sample page.
class VelPreviewViewController final : public platform::NSViewController {
public:
    std::u16string_view className() const override;
};

} // namespace pane
