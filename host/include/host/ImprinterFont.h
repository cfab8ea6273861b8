// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSColor.h>
#include <AppKit/NSFont.h>
#include <Foundation/NSObject.h>

namespace host {

using platform::NSArray;
using platform::NSColor;
using platform::NSFont;
using platform::NSInteger;
using platform::NSUInteger;

/// One font run of a title: from its place on, text is set in this font until the next run.
///
/// An object of the host's class "VelIFontType"; made only by a configuration's `createFontToken`, and told apart by
/// identity.
class ImprinterFont : public platform::NSObject {
public:
    /// How the title field and the run's menu call it.
    virtual std::u16string name() const = 0;

    /// The run's position among the title's runs, from 0.
    virtual NSUInteger fontNumber() const = 0;
    virtual void setFontNumber(NSUInteger number) = 0;

    /// The PostScript name of the face.
    virtual std::u16string fullFontName() const = 0;
    virtual void setFullFontName(const std::u16string& name) = 0;
    /// The face at the run's size; where the machine lacks it, the one that will be drawn instead; null if there is
    /// none.
    virtual std::shared_ptr<NSFont> font() const = 0;

    /// Null where none was set.
    virtual std::shared_ptr<const NSColor> colour() const = 0;
    virtual void setColour(const std::shared_ptr<const NSColor>& colour) = 0;

    /// In points.
    virtual double fontSize() const = 0;
    virtual void setFontSize(double points) = 0;
    /// The width of the outline in points.
    virtual double strokeWidth() const = 0;
    virtual void setStrokeWidth(double points) = 0;

    virtual bool outline() const = 0;
    virtual void setOutline(bool outline) = 0;
    virtual bool underline() const = 0;
    virtual void setUnderline(bool underline) = 0;
    virtual bool strikethrough() const = 0;
    virtual void setStrikethrough(bool strikethrough) = 0;
};

} // namespace host
