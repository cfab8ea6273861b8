// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSTokenField.h>

#include <QFont>
#include <QPainter>
#include <QPalette>

namespace platform::qt {

/// The place a token of this title takes in a text of this font; its title stands on the text's baseline.
QSizeF tokenSize(const QString& title, const QFont& font);

/// The part of its height that lies below the baseline.
double belowBaseline(const QFont& font);

/// Draws a token that fills `place`, in the palette's colours.
void drawToken(QPainter& painter, const QRectF& place, const QString& title, const QFont& font, const QPalette& palette,
               NSTokenStyle style, bool selected);

} // namespace platform::qt
