// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSObject.h>

#include <string>

namespace platform {

/// Plain text; "NSStringPboardType" is an older name of the same type.
inline const std::u16string NSPasteboardTypeString = u"NSPasteboardTypeString";
inline const std::u16string NSStringPboardType = u"NSStringPboardType";

/// What a drag or the clipboard carries: items, each with data under the names of types.
class NSPasteboard final : public NSObject {
public:
    NSPasteboard();
    ~NSPasteboard() override;

    /// Rises with each `clearContents`.
    NSInteger changeCount() const { return m_changeCount; }
    void clearContents();
    /// Puts data into the first item, which is made if there is none. Nil takes the type out.
    void setDataForType(const NSData& data, const std::u16string& type);
    /// Appends an item of plain text for each of the texts, to what is there. Answers YES, for an empty list too.
    bool writeObjects(const std::vector<std::u16string>& texts);
    /// The plain texts of the items in order, `readObjectsForClasses:options:` for texts; items without one are left
    /// out. nil where there is none.
    NSArray<std::u16string> readObjects() const;

    /// All types of all items, each once.
    std::vector<std::u16string> types() const;
    /// The data of the first item that has the type; nil where none has.
    NSData dataForType(const std::u16string& type) const;

private:
    using Item = std::vector<std::pair<std::u16string, NSData>>; // in the order set
    std::vector<Item> m_items;
    NSInteger m_changeCount = 0;
};

} // namespace platform
