// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSTokenField.h>

#include <QTextCursor>
#include <QTextEdit>
#include <QTextObjectInterface>
#include <QToolButton>

#include <unordered_map>

namespace platform::qt {

/// The editor of a token field: a rich text with an embedded object for each token.
class TokenEdit final : public QTextEdit, public EditingWidget {
public:
    explicit TokenEdit(QWidget* parent);
    ~TokenEdit() override;

    /// The field that hears what the user does.
    void setField(const std::shared_ptr<NSTokenField>& field);

    TokenText content() const;
    void replaceCharacters(NSRange range, const TokenText& replacement, Undoing undoing);
    NSRange selectedRange() const;
    void setSelectedRange(NSRange range);
    void undoOrRedo(bool again);
    void forgetUndo();
    /// Measures the tokens anew where their titles have changed, once the event is over.
    void retitle();

    void setTooLongReason(const QString& reason) { m_tooLong = reason; }
    void showRefusal(Refusal refusal);
    bool isRefused() const { return m_refused; }

    /// What is read out: a run of the document's characters, or the title of the one token that a character stands for.
    struct Spoken {
        QString text;
        bool isToken;
    };
    std::vector<Spoken> spokenPieces() const;
    /// Opens the menu of the button in the field.
    void openInsertMenu();
    /// Takes a change to the text that was not made by an event handled here.
    void tellChange();

    bool endEditing(NSTextField::Ending ending) override;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;
    QMimeData* createMimeDataFromSelection() const override;
    void dropEvent(QDropEvent* event) override;

private:
    class Step;
    class Tokens;

    /// Gives every line the height of a token.
    void setLineHeight();
    /// Deletes the picture before the caret as the one character it looks like. NO where none is there.
    bool deletePictureBefore();
    void typeLineBreak();
    /// The position of the character whose place the point is in; none beside the text.
    std::optional<int> characterAt(const QPoint& point) const;
    bool isTokenAt(int position) const;
    void startDrag();
    /// Its left upper corner stands at `place`, or its right one.
    void runMenu(const std::shared_ptr<NSMenu>& menu, QPoint place, bool endsThere);
    void placeButton();

    std::weak_ptr<NSTokenField> m_field;
    Tokens* m_tokens;
    QToolButton* m_button;
    std::optional<QPoint> m_pressed; // on what a drag would take along
    bool m_pressedSelection = false; // which was selected before
    QString m_tooLong;
    int m_revision = 0; // of the document, as the field knows it
    bool m_ownChange = false;
    bool m_retitles = false;
    bool m_refused = false;
};

std::unique_ptr<ViewPeer> makeTokenFieldPeer(const std::shared_ptr<NSTokenField>& field, TokenEdit& edit);

} // namespace platform::qt
