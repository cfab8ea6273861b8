// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <QLabel>
#include <QLineEdit>

namespace platform::qt {

/// One line of text whose editing a text field follows.
class LineEdit final : public QLineEdit, public EditingWidget {
public:
    explicit LineEdit(QWidget* parent);

    /// The field that hears what the user does.
    void setField(const std::shared_ptr<NSTextField>& field) { m_field = field; }
    /// Told when Return or Escape was pressed or the focus has gone, and the field agreed.
    void setFinished(std::function<void()> finished) { m_finished = std::move(finished); }

    /// Shows `text`; the caret keeps its distance from the end.
    void showText(const QString& text);

    /// What is said to the user where a text is refused.
    void setReasons(const QString& notANumber, const QString& tooLong);
    /// Draws a frame of the colour of errors around the field and shows the reason beside it.
    void showRefusal(Refusal refusal);
    bool isRefused() const { return !m_reason.isEmpty(); }

    bool endEditing(NSTextField::Ending ending) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void finish();
    void showReason();

    std::weak_ptr<NSTextField> m_field;
    std::function<void()> m_finished;
    QString m_notANumber;
    QString m_tooLong;
    QString m_reason; // of the refusal on show
};

std::unique_ptr<ViewPeer> makeTextFieldPeer(const std::shared_ptr<NSTextField>& field, LineEdit& edit);
std::unique_ptr<ViewPeer> makeLabelPeer(QLabel& label);

} // namespace platform::qt
