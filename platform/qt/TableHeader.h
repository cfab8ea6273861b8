// SPDX-License-Identifier: MIT
#pragma once

#include <QHeaderView>

namespace platform::qt {

/// Column titles as lists of settings show them: bold, at the leading edge, on the window's colour, with a line below.
class TableHeader final : public QHeaderView {
public:
    explicit TableHeader(QWidget* parent);
    void setBottomBorder(bool border);
    QSize sizeHint() const override;

protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;
    bool event(QEvent* event) override;

private:
    bool m_bottomBorder = false;
};

} // namespace platform::qt
