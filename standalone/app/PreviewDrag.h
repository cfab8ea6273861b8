// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPoint>

class QMimeData;
class QWidget;

namespace app {

class Session;

/// Lets the stamped page be dragged out of the preview that was torn off, as a PNG file and as a picture, and copied.
/// A preview that is still attached is moved by a drag.
class PreviewDrag final : public QObject {
public:
    PreviewDrag(Session& session, QObject* parent);

    /// The stamped page on the clipboard. NO where there is none.
    bool copy();
    /// What a drag carries: the picture, and a PNG file of it in a folder of this program; null without a preview. The
    /// caller owns it.
    QMimeData* content();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void drag(QWidget& from);

    Session& m_session;
    QPoint m_press; // on the screen
    bool m_pressed = false;
};

} // namespace app
