// SPDX-License-Identifier: MIT
#include "FrameLines.h"

#include <QFrame>
#include <QPainter>
#include <QStyle>

#include <cmath>

namespace platform::qt {

void mendFrameLines(QFrame& frame) {
    const double scale = frame.devicePixelRatioF();
    const bool drawn = frame.frameShape() == QFrame::StyledPanel && frame.frameWidth() == 1;
    if (!drawn || scale == std::floor(scale) || frame.style()->name() != QLatin1String("fusion"))
        return;
    constexpr int darker = 140; // as the style has its outlines
    const auto colour = frame.palette().color(QPalette::Window).darker(darker);
    QPainter painter(&frame);
    const auto area = frame.rect();
    for (const auto& side : QRegion(area).subtracted(area.adjusted(1, 1, -1, -1)))
        painter.fillRect(side, colour);
}

} // namespace platform::qt
