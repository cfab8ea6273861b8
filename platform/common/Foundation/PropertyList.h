// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSObject.h>

#include <optional>
#include <string>

namespace platform {

/// A property list, binary or XML, whose objects stay where they are and are addressed by index.
///
/// Each question costs at most one walk over the object asked about; nothing follows a reference by itself, so a list
/// that contains itself is harmless. Memory is bounded by a small multiple of the data's size.
class PropertyList {
public:
    using Object = std::size_t;

    /// Null, with the reason in `error`, for data that is neither form or is damaged.
    static std::unique_ptr<const PropertyList> read(const NSData& data, std::string& error);
    virtual ~PropertyList() = default;

    virtual Object root() const = 0;
    /// The value of the first `key` (ASCII) of a dictionary; none for anything else.
    virtual std::optional<Object> valueForKey(Object dictionary, std::string_view key) const = 0;
    /// None beyond the end, and for anything but an array.
    virtual std::optional<Object> elementAt(Object array, std::uint64_t index) const = 0;
    /// The number an object refers to as "$objects"' index: a UID, or in XML a dictionary with "CF$UID".
    virtual std::optional<std::uint64_t> reference(Object object) const = 0;
    virtual std::optional<std::int64_t> integer(Object object) const = 0;
    /// The bytes of a data object.
    virtual std::optional<std::vector<std::uint8_t>> bytes(Object object) const = 0;
    /// Whether it is a string with just this ASCII text.
    virtual bool isString(Object object, std::string_view text) const = 0;
};

std::unique_ptr<const PropertyList> readBinaryPropertyList(const NSData& data, std::string& error);
std::unique_ptr<const PropertyList> readXmlPropertyList(const NSData& data, std::string& error);

} // namespace platform
