// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSData.h>
#include <Foundation/NSIndexSet.h>

#include <optional>

namespace platform {

class PropertyList;

inline const std::u16string NSKeyedArchiveRootObjectKey = u"root";

/// Reads objects out of a keyed archive: a property list, binary or XML, whose "$objects" are addressed by index.
///
/// Only index sets are decoded. The archive may come from anywhere: nothing in it makes the reader throw, recurse, loop
/// or take more memory than a small multiple of the archive's own size. Objects are looked up where they stand and
/// never expanded. An archive of more than 16 MiB is not read.
class NSKeyedUnarchiver {
public:
    /// Null for nil and for data that is no keyed archive; the reason is then in `error`, if there is one.
    static std::shared_ptr<NSKeyedUnarchiver> initForReadingFromData(const NSData& data, std::string* error = nullptr);
    ~NSKeyedUnarchiver();

    /// Whether the class of an object has to be the one asked for or inherit from it; YES at first. An index set is all
    /// that can be asked for, so both answers decode the same archives.
    void setRequiresSecureCoding(bool secure) { m_requiresSecureCoding = secure; }
    bool requiresSecureCoding() const { return m_requiresSecureCoding; }

    /// The object under `key` of the archive's top level; none, with the reason in `error`, where there is no such key
    /// or what stands there is no well-formed object of the class.
    template <class Class>
    std::optional<Class> decodeTopLevelObjectOfClassForKey(const std::u16string& key,
                                                           std::string* error = nullptr) const;

private:
    explicit NSKeyedUnarchiver(std::unique_ptr<const PropertyList> list);

    std::unique_ptr<const PropertyList> m_list;
    bool m_requiresSecureCoding = true;
};

template <>
std::optional<NSIndexSet> NSKeyedUnarchiver::decodeTopLevelObjectOfClassForKey<NSIndexSet>(const std::u16string& key,
                                                                                           std::string* error) const;

} // namespace platform
