// SPDX-License-Identifier: MIT
#include "Picture.h"

#include <QImageReader>

namespace platform {

std::shared_ptr<const Picture> loadPicture(const std::filesystem::path& file) {
    QImageReader reader(QString::fromStdString(file.string()));
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    auto image = reader.read();
    return image.isNull() ? nullptr : std::make_shared<qt::QtPicture>(std::move(image));
}

} // namespace platform
