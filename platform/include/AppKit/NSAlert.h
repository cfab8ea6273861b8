// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

#include <functional>

namespace platform {

enum class NSAlertStyle { warning = 0, informational = 1, critical = 2 };

/// What the first button answers; the next ones follow by one.
inline constexpr NSInteger NSAlertFirstButtonReturn = 1000;

/// A message that waits for an answer. The first button is the default one.
class NSAlert final : public NSObject {
public:
    const std::u16string& messageText() const { return m_messageText; }
    void setMessageText(const std::u16string& text) { m_messageText = text; }
    const std::u16string& informativeText() const { return m_informativeText; }
    void setInformativeText(const std::u16string& text) { m_informativeText = text; }
    NSAlertStyle alertStyle() const { return m_style; }
    void setAlertStyle(NSAlertStyle style) { m_style = style; }
    void addButtonWithTitle(const std::u16string& title) { m_buttons.push_back(title); }
    const std::vector<std::u16string>& buttonTitles() const { return m_buttons; }

    /// Shows the alert and waits; deferred blocks go on running meanwhile. With a single button, Escape and the
    /// window's close box mean that button.
    NSInteger runModal();

    /// Answers alerts in place of the user, for tests; empty shows them again.
    using Answerer = std::function<NSInteger(const NSAlert&)>;
    static void setAnswerer(Answerer answerer);

private:
    std::u16string m_messageText;
    std::u16string m_informativeText;
    std::vector<std::u16string> m_buttons;
    NSAlertStyle m_style = NSAlertStyle::warning;
};

} // namespace platform
