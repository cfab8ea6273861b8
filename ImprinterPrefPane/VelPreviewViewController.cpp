// SPDX-License-Identifier: MIT
#include "VelPreviewViewController.h"

#include <Foundation/NSBundle.h>

using namespace platform;

namespace pane {

namespace {

const ClassRegistration registration{VelPreviewViewController::describeClass()};

} // namespace

std::u16string_view VelPreviewViewController::className() const {
    return u"VelPreviewViewController";
}

NSClass VelPreviewViewController::describeClass() {
    return ClassTable<VelPreviewViewController>(u"VelPreviewViewController", u"NSViewController")
        .outlet(u"scrollView", &VelPreviewViewController::m_scrollView)
        .outlet(u"imageView", &VelPreviewViewController::m_imageView);
}

std::optional<NSURL> VelPreviewViewController::samplePictureURL() {
    return tell(NSBundle::bundleForClass(NSClassFromString(u"VelPreviewViewController")),
                &NSBundle::URLForResourceWithExtension, u"Preview", u"jpg");
}

void VelPreviewViewController::setPreviewURL(const std::optional<NSURL>& url) {
    tell(m_imageView, &NSImageView::setImage, NSImage::initWithContentsOfURL(url));
}

void VelPreviewViewController::resetZoom() {
    tell(m_scrollView, &NSScrollView::setMagnification, 1.0);
}

void VelPreviewViewController::setDescriber(const std::function<std::u16string()>& describe) {
    tell(m_imageView, &NSImageView::setAccessibilityDescriber, describe);
}

void VelPreviewViewController::updatePreviewWithImprinterWith(
    const std::shared_ptr<host::Imprinter>& imprinter,
    const std::shared_ptr<host::ImprinterConfiguration>& configuration) {
    const auto url = tell(imprinter, &host::Imprinter::imprintFileAtURLWithIndex, samplePictureURL(), configuration, 0);
    if (url)
        setPreviewURL(url);
}

} // namespace pane
