// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSImageView.h>
#include <AppKit/NSScrollView.h>
#include <AppKit/NSViewController.h>
#include <Foundation/NSURL.h>
#include <host/Imprinter.h>

#include <functional>

namespace pane {

/// Shows the stamped sample page, which the user may magnify.
class VelPreviewViewController : public platform::NSViewController {
public:
    std::u16string_view className() const override;
    static platform::NSClass describeClass();

    /// The picture that ships with the pane, for the host to stamp; nil where it is missing.
    static std::optional<platform::NSURL> samplePictureURL();

    /// Loads the picture and shows it; a nil URL or an unreadable file clears what is shown.
    virtual void setPreviewURL(const std::optional<platform::NSURL>& url);
    virtual void resetZoom();
    /// Asked by assistive technology for what the picture shows.
    virtual void setDescriber(const std::function<std::u16string()>& describe);
    /// Has `imprinter` stamp the sample page with `configuration` and shows the result; a nil answer leaves the picture
    /// on show.
    virtual void updatePreviewWithImprinterWith(const std::shared_ptr<host::Imprinter>& imprinter,
                                                const std::shared_ptr<host::ImprinterConfiguration>& configuration);

private:
    std::weak_ptr<platform::NSScrollView> m_scrollView;
    std::weak_ptr<platform::NSImageView> m_imageView;
};

} // namespace pane
