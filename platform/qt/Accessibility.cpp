// SPDX-License-Identifier: MIT
#include "Accessibility.h"

#include "ColorWellPeer.h"
#include "ImagePeer.h"
#include "ScrollPeer.h"
#include "StepperPeer.h"
#include "TokenFieldPeer.h"

#include <QAccessibleWidget>
#include <QLocale>
#include <QTextDocument>

#include <algorithm>

namespace platform::qt {

namespace {

/// A title as it is read out: a token is its title, set off from what stands beside it. Offsets count the characters of
/// that text; a place inside a title stands for the place before the token.
class SpokenTitle {
public:
    explicit SpokenTitle(const TokenEdit& edit) {
        m_starts.reserve(static_cast<std::size_t>(edit.document()->characterCount()));
        bool afterToken = false;
        for (const auto& [text, isToken] : edit.spokenPieces()) {
            if (afterToken && !isToken && !text[0].isSpace())
                m_text += u' ';
            const auto start = static_cast<int>(m_text.size());
            if (isToken && !m_text.isEmpty() && !m_text.back().isSpace())
                m_text += u' ';
            m_text += text;
            for (int i = 0; i < (isToken ? 1 : text.size()); ++i)
                m_starts.push_back(start + i);
            afterToken = isToken;
        }
        m_starts.push_back(static_cast<int>(m_text.size()));
    }
    const QString& text() const { return m_text; }
    int offsetOf(int position) const {
        const auto last = static_cast<int>(m_starts.size()) - 1;
        return m_starts[static_cast<std::size_t>(std::clamp(position, 0, last))];
    }
    int positionOf(int offset) const {
        const auto after = std::upper_bound(m_starts.begin(), m_starts.end(), std::max(offset, 0));
        return static_cast<int>(after - m_starts.begin()) - 1;
    }
    /// The place after the character that `offset` stands in.
    int endPositionOf(int offset) const {
        const auto at = positionOf(offset);
        return offsetOf(at) < offset ? at + 1 : at;
    }

private:
    QString m_text;
    std::vector<int> m_starts; // of each character of the document, then of its end
};

class AccessibleTitle final : public QAccessibleWidget,
                              public QAccessibleTextInterface,
                              public QAccessibleEditableTextInterface {
public:
    explicit AccessibleTitle(TokenEdit& edit) : QAccessibleWidget(&edit, QAccessible::EditableText) {
        // The toolkit tells of a caret by the characters of the document; what is read out has others.
        const auto tell = [edit = &edit] {
            QAccessibleTextCursorEvent moved(edit, SpokenTitle(*edit).offsetOf(edit->textCursor().position()));
            QAccessible::updateAccessibility(&moved);
        };
        QObject::connect(&edit, &QTextEdit::cursorPositionChanged, &edit, tell, Qt::QueuedConnection);
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface*>(this);
        if (type == QAccessible::EditableTextInterface)
            return static_cast<QAccessibleEditableTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.editable = !edit().isReadOnly();
        state.readOnly = edit().isReadOnly();
        state.multiLine = true;
        state.selectableText = true;
        return state;
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? spoken().text() : QAccessibleWidget::text(kind);
    }
    QStringList actionNames() const override {
        return QAccessibleWidget::actionNames() << QAccessibleActionInterface::showMenuAction();
    }
    void doAction(const QString& name) override {
        if (name == QAccessibleActionInterface::showMenuAction())
            enter([this] { edit().openInsertMenu(); });
        else
            QAccessibleWidget::doAction(name);
    }

    // Reading
    void selection(int index, int* start, int* end) const override {
        const auto cursor = edit().textCursor();
        const auto title = spoken();
        *start = index == 0 && cursor.hasSelection() ? title.offsetOf(cursor.selectionStart()) : 0;
        *end = index == 0 && cursor.hasSelection() ? title.offsetOf(cursor.selectionEnd()) : 0;
    }
    int selectionCount() const override { return edit().textCursor().hasSelection() ? 1 : 0; }
    void addSelection(int start, int end) override { setSelection(0, start, end); }
    void removeSelection(int) override {
        auto cursor = edit().textCursor();
        cursor.clearSelection();
        edit().setTextCursor(cursor);
    }
    void setSelection(int, int start, int end) override {
        const auto title = spoken();
        edit().setTextCursor(cursorOver(title.positionOf(start), title.endPositionOf(end)));
    }
    int cursorPosition() const override { return spoken().offsetOf(edit().textCursor().position()); }
    void setCursorPosition(int offset) override {
        const auto position = spoken().positionOf(offset);
        edit().setTextCursor(cursorOver(position, position));
    }
    QString text(int start, int end) const override { return spoken().text().mid(start, end - start); }
    int characterCount() const override { return static_cast<int>(spoken().text().size()); }
    QRect characterRect(int offset) const override {
        const auto position = spoken().positionOf(offset);
        const auto before = edit().cursorRect(cursorOver(position, position));
        const auto after = edit().cursorRect(cursorOver(position + 1, position + 1));
        const auto rect = before.top() == after.top() ? before.united(after) : before;
        return {edit().viewport()->mapToGlobal(rect.topLeft()), rect.size()};
    }
    int offsetAtPoint(const QPoint& point) const override {
        return spoken().offsetOf(edit().cursorForPosition(edit().viewport()->mapFromGlobal(point)).position());
    }
    void scrollToSubstring(int start, int) override {
        setCursorPosition(start);
        edit().ensureCursorVisible();
    }
    QString attributes(int offset, int* start, int* end) const override {
        const auto title = spoken();
        const auto position = title.positionOf(offset);
        *start = title.offsetOf(position);
        *end = title.offsetOf(position + 1);
        return {};
    }

    // Editing; a token that is touched goes as a whole.
    void deleteText(int start, int end) override { replaceText(start, end, {}); }
    void insertText(int offset, const QString& text) override { replaceText(offset, offset, text); }
    void replaceText(int start, int end, const QString& text) override {
        if (edit().isReadOnly())
            return;
        const auto title = spoken();
        const auto from = title.positionOf(start);
        auto cursor = cursorOver(from, end > start ? title.endPositionOf(end) : from);
        cursor.insertText(text, QTextCharFormat());
        edit().tellChange();
    }

private:
    TokenEdit& edit() const { return *static_cast<TokenEdit*>(object()); }
    SpokenTitle spoken() const { return SpokenTitle(edit()); }
    QTextCursor cursorOver(int anchor, int position) const {
        const int last = edit().document()->characterCount() - 1;
        QTextCursor cursor(edit().document());
        cursor.setPosition(std::clamp(anchor, 0, last));
        cursor.setPosition(std::clamp(position, 0, last), QTextCursor::KeepAnchor);
        return cursor;
    }
};

class AccessibleStepper final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleStepper(StepperWidget& widget) : QAccessibleWidget(&widget, QAccessible::SpinBox) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? QLocale().toString(currentValue().toDouble(), 'g', 7)
                                          : QAccessibleWidget::text(kind);
    }
    QStringList actionNames() const override {
        return {QAccessibleActionInterface::increaseAction(), QAccessibleActionInterface::decreaseAction()};
    }
    void doAction(const QString& name) override {
        widget().step(name == QAccessibleActionInterface::increaseAction() ? 1 : -1);
    }

    QVariant currentValue() const override { return tell(widget().view(), &NSStepper::doubleValue); }
    QVariant maximumValue() const override { return tell(widget().view(), &NSStepper::maxValue); }
    QVariant minimumValue() const override { return tell(widget().view(), &NSStepper::minValue); }
    QVariant minimumStepSize() const override { return tell(widget().view(), &NSStepper::increment); }
    /// A stepper goes by single steps: one in the direction that is asked for.
    void setCurrentValue(const QVariant& value) override {
        const double way = value.toDouble() - currentValue().toDouble();
        if (way != 0)
            widget().step(way > 0 ? 1 : -1);
    }

private:
    StepperWidget& widget() const { return *static_cast<StepperWidget*>(object()); }
};

class AccessibleWell final : public QAccessibleWidget {
public:
    explicit AccessibleWell(ColorWellWidget& well) : QAccessibleWidget(&well, QAccessible::ColorChooser) {}

    QString text(QAccessible::Text kind) const override {
        if (kind != QAccessible::Value)
            return QAccessibleWidget::text(kind);
        const auto& color = well().color();
        return color.alpha() == 255 ? color.name().toUpper()
                                    : color.name().toUpper() + u' ' + QLocale().toString(qRound(color.alphaF() * 100)) +
                                          QLocale().percent();
    }
    QStringList actionNames() const override { return {QAccessibleActionInterface::pressAction()}; }
    void doAction(const QString& name) override {
        if (name == QAccessibleActionInterface::pressAction())
            well().click();
    }

private:
    ColorWellWidget& well() const { return *static_cast<ColorWellWidget*>(object()); }
};

class AccessiblePicture final : public QAccessibleWidget {
public:
    explicit AccessiblePicture(ImageWidget& widget) : QAccessibleWidget(&widget, QAccessible::Graphic) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Description ? static_cast<ImageWidget*>(object())->description()
                                                : QAccessibleWidget::text(kind);
    }
};

/// What is scrolled cannot have the focus itself, so that the area says what there is to see.
class AccessibleArea final : public QAccessibleWidget {
public:
    explicit AccessibleArea(ScrollWidget& area) : QAccessibleWidget(&area, QAccessible::Pane) {}

    QString text(QAccessible::Text kind) const override {
        const auto* picture = dynamic_cast<ImageWidget*>(static_cast<ScrollWidget*>(object())->widget());
        return kind == QAccessible::Description && picture ? picture->description() : QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface* make(const QString&, QObject* object) {
    if (auto* edit = dynamic_cast<TokenEdit*>(object))
        return new AccessibleTitle(*edit);
    if (auto* stepper = dynamic_cast<StepperWidget*>(object))
        return new AccessibleStepper(*stepper);
    if (auto* well = dynamic_cast<ColorWellWidget*>(object))
        return new AccessibleWell(*well);
    if (auto* picture = dynamic_cast<ImageWidget*>(object))
        return new AccessiblePicture(*picture);
    if (auto* area = dynamic_cast<ScrollWidget*>(object))
        return new AccessibleArea(*area);
    return nullptr;
}

} // namespace

void installAccessibility() {
    // The one installed last is asked first.
    static const bool once = (QAccessible::installFactory(make), true);
    static_cast<void>(once);
}

} // namespace platform::qt
