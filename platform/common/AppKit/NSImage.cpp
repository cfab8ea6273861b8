// SPDX-License-Identifier: MIT
#include <AppKit/NSImage.h>

#include <Foundation/NSException.h>

#include "Peers.h"

namespace platform {

namespace {

/// The canvases drawn into, the innermost last.
std::vector<std::shared_ptr<Canvas>>& focused() {
    static std::vector<std::shared_ptr<Canvas>> canvases;
    return canvases;
}

} // namespace

std::shared_ptr<NSImage> NSImage::initWithContentsOfURL(const std::optional<NSURL>& url) {
    auto picture = url ? loadPicture(url->path()) : nullptr;
    if (!picture)
        return nullptr;
    auto image = std::make_shared<NSImage>();
    image->m_picture = std::move(picture);
    return image;
}

std::shared_ptr<NSImage> NSImage::initWithSize(NSSize size) {
    auto image = std::make_shared<NSImage>();
    image->m_size = size;
    image->m_canvas = makeCanvas(size);
    image->m_picture = image->m_canvas->picture();
    return image;
}

void NSImage::lockFocus() {
    if (!m_canvas)
        throw NSException("NSInternalInconsistencyException", "a picture read from a file cannot be drawn into");
    focused().push_back(m_canvas);
}

void NSImage::unlockFocus() {
    if (focused().empty() || focused().back() != m_canvas)
        throw NSException("NSInternalInconsistencyException", "the picture is not being drawn into");
    focused().pop_back();
    m_picture = m_canvas->picture();
}

std::shared_ptr<Canvas> NSImage::focusedCanvas() {
    return focused().empty() ? nullptr : focused().back();
}

} // namespace platform
