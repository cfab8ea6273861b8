// SPDX-License-Identifier: MIT
#include "SegmentedPeer.h"

#include "ButtonPeer.h"

#include <QHBoxLayout>

namespace platform::qt {

SegmentedWidget::SegmentedWidget(QWidget* parent) : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SegmentedWidget::setTitles(const QStringList& titles) {
    for (const auto& title : titles) {
        auto* button = new ToldButton<QToolButton>(this);
        button->setText(withoutShortcut(fromQt(title)));
        button->setCheckable(true);
        button->setFocusPolicy(Qt::TabFocus);
        layout()->addWidget(button);
        m_buttons.push_back(button);
    }
}

namespace {

class SegmentsPeer final : public WidgetPeer, public SegmentedPeer {
public:
    using WidgetPeer::WidgetPeer;

    void setSelected(NSInteger segment, bool selected) override {
        const auto* shown = as<SegmentedWidget>();
        if (shown && segment >= 0 && segment < static_cast<NSInteger>(shown->buttons().size()))
            shown->buttons()[static_cast<std::size_t>(segment)]->setChecked(selected);
    }
};

} // namespace

std::unique_ptr<ViewPeer> makeSegmentedPeer(const std::shared_ptr<NSSegmentedControl>& view, SegmentedWidget& widget) {
    const std::weak_ptr<NSSegmentedControl> weak = view;
    NSInteger segment = 0;
    for (auto* button : widget.buttons()) {
        QObject::connect(button, &QAbstractButton::clicked, button, [weak, segment] {
            enter([&] { tell(weak, &NSSegmentedControl::userTogglesSegment, segment); });
        });
        ++segment;
    }
    return std::make_unique<SegmentsPeer>(widget);
}

} // namespace platform::qt
