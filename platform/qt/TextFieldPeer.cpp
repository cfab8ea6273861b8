// SPDX-License-Identifier: MIT
#include "TextFieldPeer.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <limits>

namespace platform::qt {

using Ending = NSTextField::Ending;

LineEdit::LineEdit(QWidget* parent) : QLineEdit(parent) {
    // The toolkit cuts silently at its limit; the field has one of its own.
    setMaxLength(std::numeric_limits<int>::max());
    connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
        enter([&] { tell(m_field, &NSTextField::userChangedText, fromQt(text)); });
    });
}

void LineEdit::showText(const QString& shown) {
    if (shown == text())
        return;
    const bool focused = window()->focusWidget() == this;
    const auto fromEnd = text().size() - cursorPosition();
    setText(shown);
    setCursorPosition(focused ? static_cast<int>(std::max<qsizetype>(shown.size() - fromEnd, 0)) : 0);
}

bool LineEdit::endEditing(Ending ending) {
    const auto field = m_field.lock();
    return !field || field->userEndsEditing(ending);
}

void LineEdit::finish() {
    if (m_finished)
        m_finished();
}

void LineEdit::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        enter([this] {
            const QPointer<LineEdit> self(this);
            if (endEditing(Ending::returnKey) && self) { // NOLINT(clang-analyzer-core.CallAndMessage): this is not null
                selectAll();
                finish();
            }
        });
        break;
    case Qt::Key_Escape: {
        const auto field = m_field.lock();
        if (!m_finished && !(field && field->isBeingEdited())) {
            event->ignore();
            break;
        }
        enter([this, &field] {
            tell(field, &NSTextField::userCancelsEditing);
            finish();
        });
        break;
    }
    default:
        QLineEdit::keyPressEvent(event);
    }
}

void LineEdit::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    // A menu, or another window in front, leaves the field as it is.
    if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::MenuBarFocusReason ||
        event->reason() == Qt::ActiveWindowFocusReason)
        return;
    enter([this] {
        if (endEditing(Ending::focusLost)) {
            finish();
            return;
        }
        const auto takeBack = [this] {
            // By now the field may show another value, and have nothing to refuse.
            if (!tell(m_field, &NSTextField::isChangedByUser))
                return;
            if (isVisible() && isEnabled())
                setFocus(Qt::OtherFocusReason);
            showReason();
        };
        QMetaObject::invokeMethod(this, takeBack, Qt::QueuedConnection);
    });
}

void LineEdit::hideEvent(QHideEvent* event) {
    QLineEdit::hideEvent(event);
    const auto field = m_field.lock();
    if (event->spontaneous() || m_finished || !field || !field->isBeingEdited())
        return;
    // Whoever takes the field away although it refuses gets the last good value.
    enter([&] {
        if (!endEditing(Ending::focusLost))
            field->userCancelsEditing();
    });
}

void LineEdit::setReasons(const QString& notANumber, const QString& tooLong) {
    m_notANumber = notANumber;
    m_tooLong = tooLong;
}

void LineEdit::showRefusal(Refusal refusal) {
    m_reason = refusal == Refusal::notANumber ? m_notANumber : refusal == Refusal::tooLong ? m_tooLong : QString();
    setAccessibleDescription(m_reason);
    if (isRefused())
        QApplication::beep();
    else
        QToolTip::hideText();
    showReason();
    update();
}

void LineEdit::showReason() {
    // Past the arrows, and level once the toolkit has moved it below the pointer it expects there: no field is covered.
    const QPoint besideTheField(width() + 20, -20);
    if (isRefused() && isVisible())
        QToolTip::showText(mapToGlobal(besideTheField), m_reason, this);
}

void LineEdit::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    if (!isRefused())
        return;
    QPainter painter(this);
    painter.setPen(QPen(QColor(0xC0, 0x1C, 0x28), 2));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

bool LineEdit::focusNextPrevChild(bool next) {
    bool ended = false;
    enter([&] { ended = endEditing(Ending::tabKey); });
    return ended ? QLineEdit::focusNextPrevChild(next) : true;
}

namespace {

class TextFieldPeer final : public WidgetPeer, public TextPeer {
public:
    using WidgetPeer::WidgetPeer;

    void setText(const std::u16string& text) override {
        if (auto* edit = as<LineEdit>())
            edit->showText(toQt(text));
    }

    void showRefusal(Refusal refusal) override {
        if (auto* edit = as<LineEdit>())
            edit->showRefusal(refusal);
    }

    bool focus() override {
        if (!WidgetPeer::focus())
            return false;
        as<LineEdit>()->selectAll();
        return true;
    }
};

class LabelPeer final : public WidgetPeer, public TextPeer {
public:
    using WidgetPeer::WidgetPeer;

    void setText(const std::u16string& text) override {
        if (auto* label = as<QLabel>())
            label->setText(label->buddy() ? withoutShortcut(text) : toQt(text));
    }
};

} // namespace

std::unique_ptr<ViewPeer> makeTextFieldPeer(const std::shared_ptr<NSTextField>& field, LineEdit& edit) {
    edit.setField(field);
    return std::make_unique<TextFieldPeer>(edit);
}

std::unique_ptr<ViewPeer> makeLabelPeer(QLabel& label) {
    label.setTextFormat(Qt::PlainText);
    return std::make_unique<LabelPeer>(label);
}

} // namespace platform::qt
