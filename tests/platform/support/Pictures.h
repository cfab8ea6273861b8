// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSURL.h>

#include <QImage>
#include <QTemporaryDir>

namespace testing_support {

/// Picture files of one colour, in a folder that goes with the object.
class Pictures {
public:
    platform::NSURL write(const char* name, const QColor& colour, QSize size = {30, 40}) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        const auto path = m_folder.filePath(QString::fromLatin1(name));
        image.save(path);
        return platform::NSURL::fileURLWithPath(path.toStdString());
    }
    platform::NSURL missing() const {
        return platform::NSURL::fileURLWithPath(m_folder.filePath(QStringLiteral("missing.png")).toStdString());
    }

private:
    QTemporaryDir m_folder;
};

} // namespace testing_support
