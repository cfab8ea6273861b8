// SPDX-License-Identifier: MIT
#pragma once

#include "Peers.h"

#include <QImage>

#include <utility>

namespace platform::qt {

class QtPicture final : public Picture {
public:
    explicit QtPicture(QImage decoded, QString said = {}) : image(std::move(decoded)), description(std::move(said)) {}

    const QImage image;
    const QString description; // the texts drawn into it
};

} // namespace platform::qt
