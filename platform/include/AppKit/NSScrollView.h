// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>

namespace platform {

/// Shows a part of a document that may be larger than the view.
///
/// The magnification is a factor: at 1.0 the document is as large as the view. It stays between 0.25 and 4.0.
class NSScrollView final : public NSView {
public:
    std::u16string_view className() const override;

    double magnification() const { return m_magnification; }
    /// A value out of range becomes the nearest in it; what is no number becomes 1.0.
    void setMagnification(double magnification);

    /// Whether the user may magnify, by pinching, with the wheel or by keys. NO at first.
    bool allowsMagnification() const { return m_allowsMagnification; }
    void setAllowsMagnification(bool allows) { m_allowsMagnification = allows; }

    /// The user wants another magnification. Does nothing where that is not allowed.
    void userMagnifiesTo(double magnification);

protected:
    void showAll() override;

private:
    void showMagnification();

    double m_magnification = 1.0;
    bool m_allowsMagnification = false;
};

} // namespace platform
