// SPDX-License-Identifier: MIT
#include <AppKit/NSImage.h>

#include "Peers.h"

namespace platform {

std::shared_ptr<NSImage> NSImage::initWithContentsOfURL(const std::optional<NSURL>& url) {
    auto picture = url ? loadPicture(url->path()) : nullptr;
    if (!picture)
        return nullptr;
    auto image = std::make_shared<NSImage>();
    image->m_picture = std::move(picture);
    return image;
}

} // namespace platform
