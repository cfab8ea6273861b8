// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSGeometry.h>
#include <host/ImprinterFont.h>

#include <optional>
#include <variant>

namespace host {

using platform::NSPoint;

/// One element of a title: text (a placeholder begins and ends with "%"), a font run, or an object of another kind,
/// which is kept and stamps nothing.
using TitleToken = std::variant<std::u16string, std::shared_ptr<ImprinterFont>, std::shared_ptr<platform::NSObject>>;

/// Where a stamp is anchored, in reading order. Stored as the plain number.
enum class Anchor : NSInteger {
    topLeft = 0,
    topCenter = 1,
    topRight = 2,
    centerLeft = 3,
    center = 4,
    centerRight = 5,
    bottomLeft = 6,
    bottomCenter = 7,
    bottomRight = 8,
};

/// Which pages are stamped. Stored as the plain number.
enum class Occurrence : NSInteger { everyPage = 0, firstPageOnly = 1, evenPages = 2, oddPages = 3, custom = 4 };

/// What becomes of the item that is stamped. Stored as the plain number; any value but 0 and 1 means `inPlace`.
enum class DuplicateRecord : NSInteger { followDefault = 0, duplicate = 1, inPlace = 2 };

/// One stored configuration: what is stamped, where, and on which pages.
///
/// Setters change it in memory only. A combined configuration is a list of ordinary ones that are stamped together; it
/// takes what the pane writes, and keeps title, place and appearance out of its stamp.
class ImprinterConfiguration : public platform::NSObject {
public:
    /// Stays the same across launches.
    virtual std::u16string uniqueID() const = 0;

    virtual std::u16string name() const = 0;
    virtual void setName(const std::u16string& name) = 0;

    virtual bool combinedConfiguration() const = 0;
    /// The members of a combined configuration, in order; nil for an ordinary one.
    virtual NSArray<std::shared_ptr<ImprinterConfiguration>> configurations() const = 0;
    /// Appends a member.
    virtual void addConfiguration(const std::shared_ptr<ImprinterConfiguration>& member) = 0;
    /// Removes a member at once.
    virtual void deleteConfiguration(const std::shared_ptr<ImprinterConfiguration>& member) = 0;

    /// Makes a run that the title does not hold so far; the pane puts it there.
    virtual std::shared_ptr<ImprinterFont> createFontToken() = 0;

    /// A number of `DuplicateRecord`.
    virtual NSInteger duplicateRecord() const = 0;
    virtual void setDuplicateRecord(NSInteger code) = 0;

    virtual NSArray<TitleToken> titleTokens() const = 0;
    virtual void setTitleTokens(const NSArray<TitleToken>& tokens) = 0;

    /// A number of `Anchor`.
    virtual NSInteger position() const = 0;
    virtual void setPosition(NSInteger anchor) = 0;
    /// From the anchor, in pixels of 1/72 inch; x runs right and y up on the page as shown.
    virtual NSPoint offset() const = 0;
    virtual void setOffset(NSPoint offset) = 0;
    /// In degrees, counter-clockwise.
    virtual double rotation() const = 0;
    virtual void setRotation(double degrees) = 0;

    /// A number of `Occurrence`.
    virtual NSInteger occurance() const = 0; // sic
    virtual void setOccurance(NSInteger code) = 0;
    /// Page numbers from 1, joined by commas; none where no list was ever set.
    virtual std::optional<std::u16string> customOccurance() const = 0; // sic
    virtual void setCustomOccurance(const std::u16string& pages) = 0;

    virtual bool borderEnabled() const = 0;
    virtual void setBorderEnabled(bool enabled) = 0;
    /// 0 is no border and no fill.
    virtual NSInteger borderStyle() const = 0;
    virtual void setBorderStyle(NSInteger style) = 0;
    /// In points.
    virtual double borderThickness() const = 0;
    virtual void setBorderThickness(double points) = 0;
    /// Null where none was set.
    virtual std::shared_ptr<const NSColor> borderColour() const = 0;
    virtual void setBorderColour(const std::shared_ptr<const NSColor>& colour) = 0;

    virtual bool fillEnabled() const = 0;
    virtual void setFillEnabled(bool enabled) = 0;
    /// Null where none was set.
    virtual std::shared_ptr<const NSColor> fillColour() const = 0;
    virtual void setFillColour(const std::shared_ptr<const NSColor>& colour) = 0;
    /// From 0, clear, to 1.
    virtual double fillOpacity() const = 0;
    virtual void setFillOpacity(double opacity) = 0;
};

using ConfigurationArray = NSArray<std::shared_ptr<ImprinterConfiguration>>;

} // namespace host
