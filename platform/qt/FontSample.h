// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSMenu.h>

#include <QFont>
#include <QPainterPath>

class QPainter;

namespace platform::qt {

/// A text in the font it names, as menus and the faces of pop-up buttons show it.
///
/// Sizes are relative to the widget's own font, which is what 13 points stand for. A face whose file is gone, damaged
/// or lacks letters of the text is replaced by the widget's font.
class FontSample {
public:
    /// By what the text is drawn.
    enum class Means {
        /// The widget's own font.
        control,
        /// The toolkit, which sets the text in the very face.
        toolkit,
        /// The outlines in the face's file, because the toolkit opens another face for its names.
        outlines,
    };

    /// The title of `item`, in a widget whose own font is `control`.
    FontSample(const NSMenuItem& item, const QFont& control);

    Means means() const { return m_means; }
    /// Whether the name stands readable before the sample, because letters show as something else in its font.
    bool isSymbolic() const { return m_symbolic; }
    /// The font of the toolkit's means.
    const QFont& font() const { return m_font; }
    /// In logical pixels, from the start of the text's baseline, y down; of the outlines' means.
    const QPainterPath& outlines() const { return m_outlines; }

    /// Draws the text on the painter's pen, vertically in the middle of `rect` and no wider than that; from the right
    /// where the painter's layout runs from there.
    void draw(QPainter& painter, const QRect& rect) const;

private:
    void drawText(QPainter& painter, const QRect& rect, const QFont& font) const;

    QString m_text;
    QFont m_control;
    QFont m_font;
    QPainterPath m_outlines;
    Means m_means = Means::control;
    bool m_symbolic = false;
};

} // namespace platform::qt
