// SPDX-License-Identifier: MIT
#include "TextFieldPeer.h"

#include <QFocusEvent>
#include <QKeyEvent>

namespace platform::qt {

using Ending = NSTextField::Ending;

LineEdit::LineEdit(QWidget* parent) : QLineEdit(parent) {
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
            if (endEditing(Ending::returnKey) && self) {
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
            if (isVisible() && isEnabled())
                setFocus(Qt::OtherFocusReason);
        };
        QMetaObject::invokeMethod(this, takeBack, Qt::QueuedConnection);
    });
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
