// SPDX-License-Identifier: MIT
#include "PopUpPeer.h"

#include "FontSample.h"
#include "Menu.h"
#include "MenuList.h"
#include "NamedImage.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopeGuard>
#include <QStylePainter>

namespace platform::qt {

namespace {

constexpr int facePadding = 1;

} // namespace

void PopUpWidget::showFace(const NSPopUpButton& button) {
    clear();
    const auto face = std::static_pointer_cast<NSPopUpButtonCell>(button.cell())->faceItem();
    // A button that is as wide as its widest choice has to know them all; else the face is enough.
    if (sizeAdjustPolicy() == AdjustToContents && !button.pullsDown()) {
        for (NSInteger i = 0; i < button.numberOfItems(); ++i)
            addItem(namedImage(button.itemAtIndex(i)->imageName()), toQt(button.itemAtIndex(i)->title()));
        setCurrentIndex(static_cast<int>(button.indexOfSelectedItem()));
    } else if (face) {
        addItem(namedImage(face->imageName()), toQt(face->title()));
    }
    m_face = face && face->attributedTitle() ? face : nullptr;
    m_sample = nullptr;
    update();
}

void PopUpWidget::changeEvent(QEvent* event) {
    m_sample = nullptr; // the font may be another one
    QComboBox::changeEvent(event);
}

void PopUpWidget::paintEvent(QPaintEvent* event) {
    if (!m_face) {
        QComboBox::paintEvent(event);
        return;
    }
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    const auto place = style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText));
    if (!m_sample)
        m_sample = std::make_shared<FontSample>(*m_face, font());
    m_sample->draw(painter, place.adjusted(facePadding, 0, -facePadding, 0));
}

std::shared_ptr<NSMenuItem> PopUpWidget::runMenu(const NSPopUpButton& button, const NSMenu& menu, bool byKey) {
    if (!button.pullsDown() && isShownAsList(menu)) {
        const QPointer<MenuList> list(new MenuList(menu, button.selectedItem(), *this));
        auto chosen = list->run();
        delete list;
        return chosen;
    }
    ShownMenu shown(menu, *this);
    if (shown.isEmpty())
        return nullptr;
    shown.widget().setMinimumWidth(button.pullsDown() ? 0 : width());
    if (button.pullsDown()) {
        if (byKey) // whoever has no pointer sees where the next key goes
            shown.widget().setActiveAction(shown.firstLine());
        return shown.run(mapToGlobal(rect().bottomLeft()));
    }
    auto* selected = shown.lineOf(button.selectedItem());
    shown.widget().setActiveAction(selected);
    return shown.run(mapToGlobal(rect().topLeft()), selected);
}

void PopUpWidget::showPopup() {
    showPopup(false);
}

void PopUpWidget::showPopup(bool byKey) {
    enter([this, byKey] {
        const auto button = m_button.lock();
        if (!button || m_open)
            return;
        const QPointer<PopUpWidget> self(this);
        m_open = true;
        // Whoever is told may raise, and may take the widget away.
        const auto closed = qScopeGuard([&self] {
            if (self)
                self->m_open = false;
        });
        const auto menu = button->userOpens();
        const auto chosen = menu && self ? runMenu(*button, *menu, byKey) : nullptr;
        if (self)
            m_open = false;
        if (menu)
            button->userChose(chosen);
    });
}

void PopUpWidget::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Space:
    case Qt::Key_F4:
        showPopup(true);
        break;
    default:
        event->ignore();
    }
}

void PopUpWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        showPopup();
}

void PopUpWidget::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

namespace {

class FacePeer final : public WidgetPeer, public PopUpPeer {
public:
    using WidgetPeer::WidgetPeer;

    void showFace(const NSPopUpButton& button) override {
        if (auto* face = as<PopUpWidget>())
            face->showFace(button);
    }
    // The menu is the button's own, not one for right clicks.
    void setMenu(const std::shared_ptr<NSMenu>&) override {}
};

} // namespace

std::unique_ptr<ViewPeer> makePopUpPeer(const std::shared_ptr<NSPopUpButton>& view, PopUpWidget& widget) {
    widget.setButton(view);
    return std::make_unique<FacePeer>(widget);
}

} // namespace platform::qt
