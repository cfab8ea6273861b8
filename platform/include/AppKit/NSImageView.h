// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>
#include <AppKit/NSImage.h>

#include <functional>

namespace platform {

/// Shows one picture, whole and in its proportions, as large as it fits.
class NSImageView final : public NSControl {
public:
    std::u16string_view className() const override;
    bool acceptsFirstResponder() const override { return false; }

    const std::shared_ptr<NSImage>& image() const { return m_image; }
    /// Null clears the view.
    void setImage(const std::shared_ptr<NSImage>& image);

    /// Asked by assistive technology, each time, for what the picture shows; the label stays the view's name.
    const std::function<std::u16string()>& accessibilityDescriber() const { return m_describe; }
    void setAccessibilityDescriber(std::function<std::u16string()> describe);

protected:
    void showAll() override;

private:
    void showImage();

    std::shared_ptr<NSImage> m_image;
    std::function<std::u16string()> m_describe;
};

} // namespace platform
