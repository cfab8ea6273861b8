// SPDX-License-Identifier: MIT
#include "ButtonPeer.h"

namespace platform::qt {

namespace {

class PushPeer final : public WidgetPeer, public ButtonPeer {
public:
    using WidgetPeer::WidgetPeer;

    void setTitle(const std::u16string& title) override {
        if (auto* button = as<QAbstractButton>())
            button->setText(withoutShortcut(title));
    }
    void setOn(bool on) override {
        if (auto* button = as<QAbstractButton>())
            button->setChecked(on);
    }
};

} // namespace

std::unique_ptr<ViewPeer> makeButtonPeer(const std::shared_ptr<NSButton>& view, QAbstractButton& button) {
    QObject::connect(&button, &QAbstractButton::clicked, &button, [weak = std::weak_ptr<NSButton>(view)] {
        enter([&weak] { tell(weak, &NSButton::performClick); });
    });
    return std::make_unique<PushPeer>(button);
}

} // namespace platform::qt
