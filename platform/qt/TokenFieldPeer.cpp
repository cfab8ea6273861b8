// SPDX-License-Identifier: MIT
#include "TokenFieldPeer.h"

#include "FrameLines.h"
#include "Menu.h"
#include "TokenDrawing.h"
#include "TokenPasteboard.h"

#include <Foundation/NSRunLoop.h>

#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QInputMethodEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace platform::qt {

using Ending = NSTextField::Ending;

namespace {

constexpr int tokenObject = QTextFormat::UserObject + 1;
constexpr int tokenKey = QTextFormat::UserProperty + 1;
constexpr double markWidth = 2;

bool isToken(const QTextCharFormat& format) {
    return format.objectType() == tokenObject;
}

/// Whether one shown character is a picture made of several: a flag, a family, a hand in some skin. Elsewhere Backspace
/// takes the last part only, an accent or a vowel sign for one.
bool isPicture(const QString& character) {
    const auto codes = character.toUcs4();
    const auto belongs = [](uint code) {
        constexpr uint joiner = 0x200D;
        constexpr uint inColours = 0xFE0F;
        constexpr uint onKey = 0x20E3;
        return code == joiner || code == inColours || code == onKey || code >= 0x1F000;
    };
    return codes.size() > 1 && std::any_of(codes.begin(), codes.end(), belongs);
}

/// The nearest place at or before `position` where a caret may stand: in no surrogate pair, behind no letter that a
/// combining mark follows.
int caretPlaceBefore(const QTextDocument& document, int position) {
    const auto block = document.findBlock(position);
    const auto inside = position - block.position();
    return inside == 0 || block.layout()->isValidCursorPosition(inside)
               ? position
               : block.position() + block.layout()->previousCursorPosition(inside);
}

int caretPlaceAfter(const QTextDocument& document, int position) {
    const auto before = caretPlaceBefore(document, position);
    const auto block = document.findBlock(before);
    return before == position ? position
                              : block.position() + block.layout()->nextCursorPosition(before - block.position());
}

} // namespace

/// The tokens a document ever had, so that undoing brings back the very objects; and how they are drawn.
class TokenEdit::Tokens final : public QObject, public QTextObjectInterface {
public:
    explicit Tokens(TokenEdit& edit) : QObject(&edit), m_edit(edit) {
        edit.document()->documentLayout()->registerHandler(tokenObject, this);
    }

    // By this name the document asks for the interface.
    void* qt_metacast(const char* name) override {
        return std::strcmp(name, qobject_interface_iid<QTextObjectInterface*>()) == 0
                   ? static_cast<QTextObjectInterface*>(this)
                   : QObject::qt_metacast(name);
    }

    QTextCharFormat formatOf(const RepresentedObject& object) {
        QTextCharFormat format;
        format.setObjectType(tokenObject);
        format.setProperty(tokenKey, ++m_last);
        m_tokens[m_last] = measured(object, titleOf(object));
        return format;
    }
    const RepresentedObject& objectOf(const QTextFormat& format) const {
        return m_tokens.at(format.intProperty(tokenKey)).object;
    }
    /// Lets go of all that are not in the document, where nothing can bring them back.
    void prune() {
        std::unordered_map<int, Token> left;
        for (auto block = m_edit.document()->begin(); block.isValid(); block = block.next())
            for (auto it = block.begin(); !it.atEnd(); ++it)
                if (const auto format = it.fragment().charFormat(); isToken(format))
                    left.insert(m_tokens.extract(format.intProperty(tokenKey)));
        m_tokens = std::move(left);
    }
    /// Answers whether a title is another one now.
    bool retitle() {
        bool changed = false;
        for (auto& [key, token] : m_tokens)
            if (auto title = titleOf(token.object); title != token.title) {
                token = measured(token.object, std::move(title));
                changed = true;
            }
        return changed;
    }
    /// Has the tokens in the font of the field as it is now.
    void measure() {
        for (auto& [key, token] : m_tokens)
            token.size = tokenSize(token.title, m_edit.font());
    }

    QString titleOf(const QTextFormat& format) const { return m_tokens.at(format.intProperty(tokenKey)).title; }

    QSizeF intrinsicSize(QTextDocument*, int, const QTextFormat& format) override {
        // The document puts the object on the baseline; what is drawn below it has room by the height of lines.
        const auto& size = m_tokens.at(format.intProperty(tokenKey)).size;
        return {size.width(), size.height() - belowBaseline(m_edit.font())};
    }
    void drawObject(QPainter* painter, const QRectF& rect, QTextDocument*, int position,
                    const QTextFormat& format) override {
        const auto whole = rect.adjusted(0, 0, 0, belowBaseline(m_edit.font()));
        const auto cursor = m_edit.textCursor();
        // The document veils what is selected, so that is drawn again on top.
        if (cursor.selectionStart() <= position && position < cursor.selectionEnd())
            m_selected.emplace_back(painter->worldTransform().mapRect(whole), format.intProperty(tokenKey));
        else
            draw(*painter, whole, format.intProperty(tokenKey), false);
    }
    void drawSelected(QPainter& painter) {
        const auto cursor = m_edit.textCursor();
        const bool alone = cursor.selectionEnd() - cursor.selectionStart() == 1;
        for (const auto& [place, key] : std::exchange(m_selected, {})) {
            painter.fillRect(place, palette().color(alone ? QPalette::Base : QPalette::Highlight));
            draw(painter, place, key, true);
        }
    }

private:
    struct Token {
        RepresentedObject object;
        QString title;
        QSizeF size; // asked for at every layout, which is at every key
    };

    Token measured(const RepresentedObject& object, QString title) const {
        const auto size = tokenSize(title, m_edit.font());
        return {object, std::move(title), size};
    }
    QString titleOf(const RepresentedObject& object) const {
        const auto field = m_edit.m_field.lock();
        return field ? toQt(field->displayStringOf(object)).simplified() : QString();
    }

    QPalette palette() const {
        auto colours = m_edit.palette();
        if (!m_edit.hasFocus())
            colours.setCurrentColorGroup(QPalette::Inactive);
        return colours;
    }
    void draw(QPainter& painter, const QRectF& place, int key, bool selected) const {
        const auto field = m_edit.m_field.lock();
        const auto& token = m_tokens.at(key);
        drawToken(painter, place, token.title, m_edit.font(), palette(),
                  field ? field->styleOf(token.object) : NSTokenStyle::rounded, selected);
    }

    TokenEdit& m_edit;
    std::vector<std::pair<QRectF, int>> m_selected; // since the last painting
    std::unordered_map<int, Token> m_tokens;
    int m_last = 0;
};

TokenEdit::TokenEdit(QWidget* parent)
    : QTextEdit(parent), m_tokens(new Tokens(*this)), m_button(new QToolButton(this)) {
    setAcceptRichText(false);
    setTabChangesFocus(true);
    // The strip beside the text, in which the button stands, is part of the field.
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    m_button->setFocusPolicy(Qt::NoFocus);
    m_button->setArrowType(Qt::DownArrow);
    m_button->setAutoRaise(true);
    m_button->setCursor(Qt::ArrowCursor);
    m_button->hide();
    connect(m_button, &QToolButton::pressed, this, [this] { enter([this] { openInsertMenu(); }); });
    // The document only asks for the lines it knows of, and tokens reach below theirs.
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::update, this, [this](const QRectF& changed) {
        const QPointF scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
        const auto below = changed.translated(-scrolled).adjusted(0, 0, 0, 2 * belowBaseline(font()));
        viewport()->update(below.toAlignedRect() & viewport()->rect());
    });
    // What changes the text outside the events handled here, assistive technology for one.
    connect(document(), &QTextDocument::contentsChanged, this, [this] {
        if (!m_ownChange)
            QMetaObject::invokeMethod(
                this, [this] { tellChange(); }, Qt::QueuedConnection);
    });
}

TokenEdit::~TokenEdit() = default;

void TokenEdit::setLineHeight() {
    constexpr double between = 3;
    m_tokens->measure();
    QTextBlockFormat lines;
    lines.setLineHeight(tokenSize({}, font()).height() + between, QTextBlockFormat::MinimumHeight);
    QTextCursor all(document());
    all.select(QTextCursor::Document);
    m_ownChange = true;
    all.mergeBlockFormat(lines);
    m_ownChange = false;
    document()->clearUndoRedoStacks();
    document()->markContentsDirty(0, document()->characterCount());
    m_revision = document()->revision();
}

void TokenEdit::setField(const std::shared_ptr<NSTokenField>& field) {
    m_field = field;
    setPlainText({});
    setLineHeight();
    m_button->setVisible(field->hasInsertMenu());
    m_button->setAccessibleName(toQt(field->insertButtonLabel()));
    m_button->setToolTip(toQt(field->insertButtonLabel()));
    placeButton();
}

// The text

TokenText TokenEdit::content() const {
    TokenText content;
    for (auto block = document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockNumber() > 0)
            content.appendText(u"\n");
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const auto fragment = it.fragment();
            const auto format = fragment.charFormat();
            if (isToken(format))
                for (int i = 0; i < fragment.length(); ++i)
                    content.appendToken(m_tokens->objectOf(format));
            else
                content.appendText(fromQt(fragment.text()));
        }
    }
    return content;
}

std::vector<TokenEdit::Spoken> TokenEdit::spokenPieces() const {
    std::vector<Spoken> spoken;
    for (auto block = document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockNumber() > 0)
            spoken.push_back({QStringLiteral("\n"), false});
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const auto fragment = it.fragment();
            const auto format = fragment.charFormat();
            if (isToken(format))
                spoken.insert(spoken.end(), static_cast<std::size_t>(fragment.length()),
                              {m_tokens->titleOf(format), true});
            else
                spoken.push_back({fragment.text(), false});
        }
    }
    return spoken;
}

void TokenEdit::replaceCharacters(NSRange range, const TokenText& replacement, Undoing undoing) {
    m_ownChange = true;
    auto cursor = textCursor(); // where it stands as the step begins is where undoing leaves it
    if (undoing == Undoing::sameStep)
        cursor.joinPreviousEditBlock();
    else
        cursor.beginEditBlock();
    cursor.setPosition(static_cast<int>(range.location));
    cursor.setPosition(static_cast<int>(range.location + range.length), QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    for (const auto& piece : replacement.pieces())
        if (piece.isToken)
            cursor.insertText(QString(QChar::ObjectReplacementCharacter), m_tokens->formatOf(piece.object));
        else
            cursor.insertText(toQt(std::get<std::u16string>(piece.object)), QTextCharFormat());
    cursor.endEditBlock();
    if (undoing == Undoing::forgotten)
        forgetUndo();
    m_ownChange = false;
    m_revision = document()->revision();
}

void TokenEdit::forgetUndo() {
    document()->clearUndoRedoStacks();
    m_tokens->prune();
}

NSRange TokenEdit::selectedRange() const {
    const auto cursor = textCursor();
    return {static_cast<NSUInteger>(cursor.selectionStart()),
            static_cast<NSUInteger>(cursor.selectionEnd() - cursor.selectionStart())};
}

void TokenEdit::setSelectedRange(NSRange range) {
    const auto last = static_cast<NSUInteger>(std::max(document()->characterCount() - 1, 0));
    const auto start = std::min(range.location, last);
    const auto first = static_cast<int>(start);
    const auto end = static_cast<int>(start + std::min(range.length, last - start));
    auto cursor = textCursor();
    cursor.setPosition(caretPlaceBefore(*document(), first));
    cursor.setPosition(end > first ? caretPlaceAfter(*document(), end) : cursor.anchor(), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
}

void TokenEdit::tellChange() {
    if (std::exchange(m_revision, document()->revision()) == m_revision)
        return;
    enter([this] { tell(m_field, &NSTokenField::userTyped, content()); });
}

void TokenEdit::undoOrRedo(bool again) {
    const auto available = [&] { return again ? document()->isRedoAvailable() : document()->isUndoAvailable(); };
    const auto before = content();
    m_ownChange = true;
    // Steps that changed nothing in the end, such as a sign typed and taken out again, are passed over.
    do {
        again ? document()->redo() : document()->undo();
    } while (available() && content() == before);
    m_ownChange = false;
    m_revision = document()->revision();
    const auto after = content();
    const auto change = TokenText::change(before, after);
    setSelectedRange({change.range.location + change.length, 0});
    tell(m_field, &NSTokenField::userUndid, after);
}

void TokenEdit::retitle() {
    if (std::exchange(m_retitles, true))
        return;
    const auto measure = [this] {
        m_retitles = false;
        if (m_tokens->retitle())
            document()->markContentsDirty(0, document()->characterCount());
    };
    QMetaObject::invokeMethod(this, measure, Qt::QueuedConnection);
}

// Keys

/// Makes what the toolkit does with an event that brings `text` one step to undo, to which what the field makes of it
/// can be joined; plain text is left to the toolkit, which makes one step of all that is typed in a row.
class TokenEdit::Step {
public:
    Step(const TokenEdit& edit, const QString& text) {
        const auto field = edit.m_field.lock();
        if (field && fromQt(text).find_first_of(field->tokenizingCharacterSet()) != std::u16string::npos)
            m_cursor = edit.textCursor();
        m_cursor.beginEditBlock();
    }
    ~Step() { m_cursor.endEditBlock(); }
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

private:
    QTextCursor m_cursor; // of no document where there is no step to make
};

void TokenEdit::typeLineBreak() {
    textCursor().insertBlock();
    ensureCursorVisible();
    tellChange();
}

bool TokenEdit::deletePictureBefore() {
    auto cursor = textCursor();
    if (cursor.hasSelection() || !cursor.movePosition(QTextCursor::PreviousCharacter, QTextCursor::KeepAnchor) ||
        !isPicture(cursor.selectedText()))
        return false;
    cursor.removeSelectedText();
    return true;
}

void TokenEdit::keyPressEvent(QKeyEvent* event) {
    const auto field = m_field.lock();
    if (!field || isReadOnly()) {
        QTextEdit::keyPressEvent(event);
        return;
    }
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isPlain = !(event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier));
    const bool backward = event->key() == Qt::Key_Backspace;
    if (isReturn && (event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)))
        typeLineBreak();
    else if (isReturn)
        endEditing(Ending::returnKey);
    else if (event->key() == Qt::Key_Down && event->modifiers() == Qt::AltModifier && !m_button->isHidden())
        enter([this] { openInsertMenu(); }); // as the list of a pop-up button is opened
    else if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab)
        event->ignore();
    else if (event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo))
        enter([&] { undoOrRedo(event->matches(QKeySequence::Redo)); });
    else if (event->matches(QKeySequence::Cut))
        enter([&] { field->userCuts(); });
    else if (event->matches(QKeySequence::Copy))
        enter([&] { field->userCopies(); });
    else if (event->matches(QKeySequence::Paste))
        enter([&] { field->userPastes(pasteboardOf(QApplication::clipboard()->mimeData())); });
    else if (backward && isPlain && deletePictureBefore())
        ;
    else if (!isPlain || (!backward && event->key() != Qt::Key_Delete) || !field->userSelectsTokenToDelete(!backward)) {
        const Step step(*this, event->text());
        QTextEdit::keyPressEvent(event);
    }
    tellChange();
    ensureCursorVisible();
}

void TokenEdit::inputMethodEvent(QInputMethodEvent* event) {
    {
        const Step step(*this, event->commitString());
        QTextEdit::inputMethodEvent(event);
    }
    tellChange();
}

bool TokenEdit::endEditing(Ending ending) {
    const auto field = m_field.lock();
    bool ended = true;
    if (field)
        enter([&] { ended = field->userEndsEditing(ending); });
    return ended;
}

void TokenEdit::focusOutEvent(QFocusEvent* event) {
    QTextEdit::focusOutEvent(event);
    // A menu, or another window in front, leaves the field as it is.
    if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::MenuBarFocusReason ||
        event->reason() == Qt::ActiveWindowFocusReason)
        return;
    tellChange(); // what an input method has just committed
    if (!endEditing(Ending::focusLost))
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (isVisible() && isEnabled())
                    setFocus(Qt::OtherFocusReason);
            },
            Qt::QueuedConnection);
}

bool TokenEdit::focusNextPrevChild(bool next) {
    return endEditing(Ending::tabKey) ? QTextEdit::focusNextPrevChild(next) : true;
}

void TokenEdit::hideEvent(QHideEvent* event) {
    QTextEdit::hideEvent(event);
    const auto field = m_field.lock();
    if (!event->spontaneous() && field && field->isBeingEdited())
        endEditing(Ending::focusLost);
}

// Pointer

bool TokenEdit::isTokenAt(int position) const {
    QTextCursor cursor(document());
    cursor.setPosition(position);
    return cursor.movePosition(QTextCursor::NextCharacter) && isToken(cursor.charFormat());
}

std::optional<int> TokenEdit::characterAt(const QPoint& point) const {
    const auto near = cursorForPosition(point).position();
    for (const auto position : {near - 1, near}) {
        if (position < 0 || position + 1 >= document()->characterCount())
            continue;
        QTextCursor cursor(document());
        cursor.setPosition(position);
        const auto before = cursorRect(cursor);
        cursor.setPosition(position + 1);
        const auto after = cursorRect(cursor);
        const bool sameLine = std::abs(before.bottom() - after.bottom()) < after.height() / 2;
        const auto left = std::min(before.left(), after.left()); // text may run either way
        const auto right = std::max(before.left(), after.left());
        if (sameLine && left <= point.x() && point.x() < right && std::min(before.top(), after.top()) <= point.y() &&
            point.y() <= std::max(before.bottom(), after.bottom()))
            return position;
    }
    return std::nullopt;
}

void TokenEdit::mousePressEvent(QMouseEvent* event) {
    m_pressed.reset();
    const auto character = characterAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier) && character) {
        const auto cursor = textCursor();
        m_pressedSelection = cursor.selectionStart() <= *character && *character < cursor.selectionEnd();
        if (m_pressedSelection || isTokenAt(*character)) {
            if (!m_pressedSelection)
                setSelectedRange({static_cast<NSUInteger>(*character), 1});
            m_pressed = event->position().toPoint();
            event->accept();
            return;
        }
    }
    QTextEdit::mousePressEvent(event);
    tellChange();
}

void TokenEdit::mouseMoveEvent(QMouseEvent* event) {
    if (!m_pressed) {
        QTextEdit::mouseMoveEvent(event);
        return;
    }
    if ((event->buttons() & Qt::LeftButton) &&
        (event->position().toPoint() - *m_pressed).manhattanLength() >= QApplication::startDragDistance()) {
        m_pressed.reset();
        enter([this] { startDrag(); });
    }
}

void TokenEdit::mouseReleaseEvent(QMouseEvent* event) {
    if (!std::exchange(m_pressed, std::nullopt)) {
        QTextEdit::mouseReleaseEvent(event);
        tellChange();
        return;
    }
    const auto point = event->position().toPoint();
    const auto character = characterAt(point);
    if (m_pressedSelection && character && isTokenAt(*character))
        setSelectedRange({static_cast<NSUInteger>(*character), 1});
    else if (m_pressedSelection)
        setTextCursor(cursorForPosition(point));
}

void TokenEdit::startDrag() {
    const auto field = m_field.lock();
    std::u16string plainText;
    const auto pasteboard = tell(field, &NSTokenField::userDrags, plainText);
    if (!pasteboard)
        return;
    auto* drag = new QDrag(this); // deletes itself when it has ended
    drag->setMimeData(mimeDataOf(*pasteboard, plainText).release());
    const auto cursor = textCursor();
    QTextCursor edge(document());
    edge.setPosition(cursor.selectionStart());
    const auto start = cursorRect(edge);
    edge.setPosition(cursor.selectionEnd());
    const auto end = cursorRect(edge);
    const auto shown = (start.bottom() == end.bottom() ? start.united(end) : viewport()->rect()) & viewport()->rect();
    if (!shown.isEmpty()) {
        drag->setPixmap(viewport()->grab(shown));
        drag->setHotSpot(viewport()->mapFromGlobal(QCursor::pos()) - shown.topLeft());
    }
    const TrackingLoop dragging;
    drag->exec(Qt::CopyAction);
    field->userEndedDrag();
}

bool TokenEdit::canInsertFromMimeData(const QMimeData* source) const {
    const auto field = m_field.lock();
    // A file is for whatever is behind the field; its address is no title.
    return field && hasTexts(source) && !hasFiles(source) && field->takesDraggedTypes({NSPasteboardTypeString});
}

void TokenEdit::dropEvent(QDropEvent* event) {
    const auto place = cursorForPosition(event->position().toPoint()).position();
    const auto pasteboard = pasteboardOf(event->mimeData());
    QDragLeaveEvent over; // takes the mark of the place away
    QTextEdit::dragLeaveEvent(&over);
    setFocus(Qt::OtherFocusReason);
    bool taken = false;
    enter([&] { taken = tell(m_field, &NSTokenField::userDrops, pasteboard, static_cast<NSUInteger>(place)); });
    event->setDropAction(taken ? Qt::CopyAction : Qt::IgnoreAction);
    event->setAccepted(taken);
}

void TokenEdit::insertFromMimeData(const QMimeData* source) {
    enter([&] { tell(m_field, &NSTokenField::userPastes, pasteboardOf(source)); });
}

QMimeData* TokenEdit::createMimeDataFromSelection() const {
    // For the selection that the window system passes on; copies and drags are made by the field.
    std::u16string plainText;
    const auto pasteboard = tell(m_field, &NSTokenField::selectedTexts, plainText);
    return pasteboard ? mimeDataOf(*pasteboard, plainText).release() : new QMimeData;
}

// Menus

void TokenEdit::runMenu(const std::shared_ptr<NSMenu>& menu, QPoint place, bool endsThere) {
    const auto field = m_field.lock();
    if (!menu || !field)
        return;
    menu->update();
    std::shared_ptr<NSMenuItem> chosen;
    {
        ShownMenu shown(*menu, *this);
        if (endsThere)
            place.rx() -= shown.widget().sizeHint().width() - 1;
        if (!shown.isEmpty())
            chosen = shown.run(place);
    }
    field->userChoosesMenuItem(chosen);
}

void TokenEdit::openInsertMenu() {
    const QPointer<QToolButton> button(m_button);
    if (window()->focusWidget() != this)
        setFocus(Qt::OtherFocusReason);
    const auto menu = tell(m_field, &NSTokenField::insertMenu);
    const bool mirrored = layoutDirection() == Qt::RightToLeft;
    const auto corner = mirrored ? m_button->rect().bottomLeft() : m_button->rect().bottomRight();
    runMenu(menu, m_button->mapToGlobal(corner), !mirrored);
    if (button)
        button->setDown(false);
}

void TokenEdit::contextMenuEvent(QContextMenuEvent* event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const auto pressed = byKey ? std::nullopt : characterAt(event->pos());
    const auto selected = textCursor();
    if (!byKey && !(pressed && selected.selectionStart() <= *pressed && *pressed < selected.selectionEnd())) {
        if (pressed && isTokenAt(*pressed))
            setSelectedRange({static_cast<NSUInteger>(*pressed), 1});
        else
            setTextCursor(cursorForPosition(event->pos()));
    }
    const auto at = byKey ? viewport()->mapToGlobal(cursorRect().bottomLeft()) : event->globalPos();
    enter([&] { runMenu(tell(m_field, &NSTokenField::contextMenu), at, false); });
    event->accept();
}

void TokenEdit::placeButton() {
    if (m_button->isHidden())
        return;
    const auto size = m_button->sizeHint();
    const bool mirrored = layoutDirection() == Qt::RightToLeft;
    // A little room on each side: where a point has several pixels the text would cover half of the frame.
    setViewportMargins(mirrored ? size.width() : 1, 1, mirrored ? 1 : size.width(), 1);
    const int edge = frameWidth() + 1;
    const auto inside = rect().adjusted(edge, edge, -edge, -edge);
    const int scroll = verticalScrollBar()->isVisible() ? verticalScrollBar()->width() : 0;
    m_button->setGeometry(mirrored ? inside.left() + scroll : inside.right() + 1 - size.width() - scroll, inside.top(),
                          size.width(), size.height());
    m_button->raise();
}

void TokenEdit::resizeEvent(QResizeEvent* event) {
    QTextEdit::resizeEvent(event);
    placeButton();
}

void TokenEdit::changeEvent(QEvent* event) {
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        setLineHeight();
    if (event->type() == QEvent::LayoutDirectionChange)
        placeButton();
}

// Refusals

void TokenEdit::showRefusal(Refusal refusal) {
    m_refused = refusal != Refusal::none;
    setAccessibleDescription(m_refused ? m_tooLong : QString());
    if (m_refused) {
        QApplication::beep();
        if (isVisible())
            QToolTip::showText(mapToGlobal(QPoint(width() + 20, -20)), m_tooLong, this);
    } else {
        QToolTip::hideText();
    }
    viewport()->update();
}

bool TokenEdit::event(QEvent* event) {
    const bool answer = QTextEdit::event(event);
    if (event->type() == QEvent::Paint)
        mendFrameLines(*this);
    return answer;
}

void TokenEdit::paintEvent(QPaintEvent* event) {
    QTextEdit::paintEvent(event);
    QPainter painter(viewport());
    m_tokens->drawSelected(painter);
    if (!m_refused)
        return;
    painter.setPen(QPen(QColor(0xC0, 0x1C, 0x28), markWidth));
    painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
}

namespace {

class FieldPeer final : public WidgetPeer, public TokenPeer {
public:
    using WidgetPeer::WidgetPeer;

    void setText(const std::u16string&) override {} // the field shows pieces of text and tokens
    void setWraps(bool wraps) override {
        if (auto* shown = edit())
            shown->setLineWrapMode(wraps ? QTextEdit::WidgetWidth : QTextEdit::NoWrap);
    }
    void showRefusal(Refusal refusal) override {
        if (auto* shown = edit())
            shown->showRefusal(refusal);
    }
    void replaceCharacters(NSRange range, const TokenText& replacement, Undoing undoing) override {
        if (auto* shown = edit())
            shown->replaceCharacters(range, replacement, undoing);
    }
    NSRange selectedRange() override { return edit() ? edit()->selectedRange() : NSRange(); }
    void setSelectedRange(NSRange range) override {
        if (auto* shown = edit())
            shown->setSelectedRange(range);
    }
    bool isFirstResponder() override { return edit() && edit()->window()->focusWidget() == edit(); }
    void forgetUndo() override {
        if (auto* shown = edit())
            shown->forgetUndo();
    }
    bool canUndo(bool again) override {
        const auto* document = edit() ? edit()->document() : nullptr;
        return document && (again ? document->isRedoAvailable() : document->isUndoAvailable());
    }
    void undo(bool again) override {
        if (auto* shown = edit())
            shown->undoOrRedo(again);
    }
    void retitle() override {
        if (auto* shown = edit())
            shown->retitle();
    }
    std::shared_ptr<NSPasteboard> clipboard() override { return pasteboardOf(QApplication::clipboard()->mimeData()); }
    void setClipboard(const NSPasteboard& pasteboard, const std::u16string& plainText) override {
        QApplication::clipboard()->setMimeData(mimeDataOf(pasteboard, plainText).release());
    }
    bool focus() override {
        if (!WidgetPeer::focus())
            return false;
        edit()->selectAll();
        return true;
    }

private:
    TokenEdit* edit() const { return as<TokenEdit>(); }
};

} // namespace

std::unique_ptr<ViewPeer> makeTokenFieldPeer(const std::shared_ptr<NSTokenField>& field, TokenEdit& edit) {
    edit.setField(field);
    return std::make_unique<FieldPeer>(edit);
}

} // namespace platform::qt
