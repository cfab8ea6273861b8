// SPDX-License-Identifier: MIT
#include <AppKit/NSImageView.h>

#include "Peers.h"

namespace platform {

std::u16string_view NSImageView::className() const {
    return u"NSImageView";
}

void NSImageView::setImage(const std::shared_ptr<NSImage>& image) {
    m_image = image;
    showImage();
}

void NSImageView::setAccessibilityDescriber(std::function<std::u16string()> describe) {
    m_describe = std::move(describe);
    if (auto* shown = dynamic_cast<ImagePeer*>(peer()))
        shown->setDescriber(m_describe);
}

void NSImageView::showImage() {
    if (auto* shown = dynamic_cast<ImagePeer*>(peer()))
        shown->setImage(m_image);
}

void NSImageView::showAll() {
    NSControl::showAll();
    showImage();
    if (auto* shown = dynamic_cast<ImagePeer*>(peer()))
        shown->setDescriber(m_describe);
}

} // namespace platform
