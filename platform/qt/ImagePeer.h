// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <QImage>
#include <QLabel>

namespace platform::qt {

/// Draws a picture whole, in its proportions, inside its margin; a thin line sets a white page off from a light ground.
/// A press goes to what is around it.
class ImageWidget final : public QLabel {
public:
    explicit ImageWidget(QWidget* parent);

    /// A null image shows nothing.
    void setImage(const QImage& image);
    /// Where the picture is drawn; empty without one.
    QRect pictureRect() const;

    void setDescriber(std::function<std::u16string()> describe) { m_describe = std::move(describe); }
    /// What the picture shows, in words.
    QString description() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::function<std::u16string()> m_describe;
    QImage m_image;
    QImage m_reduced; // to the size last drawn, where that is smaller
};

std::unique_ptr<ViewPeer> makeImagePeer(ImageWidget& widget);

} // namespace platform::qt
