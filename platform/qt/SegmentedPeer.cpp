// SPDX-License-Identifier: MIT
#include "SegmentedPeer.h"

namespace platform::qt {

namespace {

class SegmentsPeer final : public WidgetPeer, public SegmentedPeer {
public:
    SegmentsPeer(QWidget& widget, const std::vector<QToolButton*>& buttons)
        : WidgetPeer(widget), m_buttons(buttons.begin(), buttons.end()) {}

    void setSelected(NSInteger segment, bool selected) override {
        const auto& button = m_buttons.at(static_cast<std::size_t>(segment));
        if (button)
            button->setChecked(selected);
    }

private:
    std::vector<QPointer<QToolButton>> m_buttons;
};

} // namespace

std::unique_ptr<ViewPeer> makeSegmentedPeer(const std::shared_ptr<NSSegmentedControl>& view, QWidget& widget,
                                            const std::vector<QToolButton*>& buttons) {
    const std::weak_ptr<NSSegmentedControl> weak = view;
    NSInteger segment = 0;
    for (auto* button : buttons) {
        QObject::connect(button, &QAbstractButton::clicked, button, [weak, segment] {
            enter([&] { tell(weak, &NSSegmentedControl::userTogglesSegment, segment); });
        });
        ++segment;
    }
    return std::make_unique<SegmentsPeer>(widget, buttons);
}

} // namespace platform::qt
