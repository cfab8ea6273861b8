// SPDX-License-Identifier: MIT
#pragma once

#include "Peers.h"

#include <QImage>

namespace platform::qt {

class QtPicture final : public Picture {
public:
    explicit QtPicture(QImage decoded) : image(std::move(decoded)) {}

    const QImage image;
};

} // namespace platform::qt
