// SPDX-License-Identifier: MIT
#include <Foundation/NSKeyedUnarchiver.h>

#include <Foundation/NSString.h>

#include "PropertyList.h"

namespace platform {

namespace {

using Object = PropertyList::Object;

constexpr std::int64_t archiveVersion = 100000;

/// Follows a reference into "$objects".
std::optional<Object> referredTo(const PropertyList& list, std::optional<Object> reference) {
    const auto index = reference ? list.reference(*reference) : std::nullopt;
    const auto objects = index ? list.valueForKey(list.root(), "$objects") : std::nullopt;
    return objects ? list.elementAt(*objects, *index) : std::nullopt;
}

bool isOfClass(const PropertyList& list, Object object, std::initializer_list<std::string_view> names) {
    const auto cls = referredTo(list, list.valueForKey(object, "$class"));
    const auto name = cls ? list.valueForKey(*cls, "$classname") : std::nullopt;
    for (const auto wanted : names)
        if (name && list.isString(*name, wanted))
            return true;
    return false;
}

/// 0 for a missing key; none where something else than an index stands under it.
std::optional<NSUInteger> indexForKey(const PropertyList& list, Object object, std::string_view key) {
    const auto value = list.valueForKey(object, key);
    const auto number = value ? list.integer(*value) : std::optional<std::int64_t>(0);
    return number && *number >= 0 ? std::optional(static_cast<NSUInteger>(*number)) : std::nullopt;
}

/// The data under `key`: a reference to it, or to an object that holds it.
std::optional<std::vector<std::uint8_t>> dataForKey(const PropertyList& list, Object object, std::string_view key) {
    const auto data = referredTo(list, list.valueForKey(object, key));
    if (!data)
        return std::nullopt;
    if (auto bytes = list.bytes(*data))
        return bytes;
    const auto held =
        isOfClass(list, *data, {"NSData", "NSMutableData"}) ? list.valueForKey(*data, "NS.data") : std::nullopt;
    return held ? list.bytes(*held) : std::nullopt;
}

/// Base 128, low seven bits first, bit 7 set while more follow; `at` moves behind the number. None where the data ends
/// early or the number exceeds 2^63 - 1.
std::optional<NSUInteger> packedNumber(const std::vector<std::uint8_t>& data, std::size_t& at) {
    NSUInteger value = 0;
    for (unsigned shift = 0; at < data.size() && shift < 63; shift += 7) {
        const auto byte = data[at++];
        value |= static_cast<NSUInteger>(byte & 0x7F) << shift;
        if (!(byte & 0x80))
            return value;
    }
    return std::nullopt;
}

/// Indexes lie between 0 and 2^63 - 2.
bool isRange(NSUInteger location, NSUInteger length) {
    return location < NSNotFound && length <= NSNotFound - location;
}

/// Exactly `count` ranges of at least one index, each behind the one before.
std::optional<NSIndexSet> packedRanges(const std::vector<std::uint8_t>& data, NSUInteger count) {
    NSIndexSet set;
    std::size_t at = 0;
    NSUInteger end = 0;
    for (NSUInteger i = 0; i < count; ++i) {
        const auto location = packedNumber(data, at);
        const auto length = location ? packedNumber(data, at) : std::nullopt;
        if (!length || *length == 0 || *location < end || !isRange(*location, *length))
            return std::nullopt;
        set.addRange({*location, *length});
        end = *location + *length;
    }
    return at == data.size() ? std::optional(std::move(set)) : std::nullopt;
}

std::optional<NSIndexSet> indexSet(const PropertyList& list, Object object) {
    const auto count = indexForKey(list, object, "NSRangeCount");
    if (!count)
        return std::nullopt;
    if (*count == 0) {
        const auto data = dataForKey(list, object, "NSRangeData");
        return data && !data->empty() ? std::nullopt : std::optional<NSIndexSet>(NSIndexSet());
    }
    if (*count == 1) {
        const auto location = indexForKey(list, object, "NSLocation");
        const auto length = indexForKey(list, object, "NSLength");
        if (!location || !length || (*length > 0 && !isRange(*location, *length)))
            return std::nullopt;
        NSIndexSet set;
        set.addRange({*location, *length});
        return set;
    }
    const auto data = dataForKey(list, object, "NSRangeData");
    return data ? packedRanges(*data, *count) : std::nullopt;
}

void tell(std::string* error, const std::string& reason) {
    if (error)
        *error = reason;
}

} // namespace

NSKeyedUnarchiver::NSKeyedUnarchiver(std::unique_ptr<const PropertyList> list) : m_list(std::move(list)) {}
NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

std::shared_ptr<NSKeyedUnarchiver> NSKeyedUnarchiver::initForReadingFromData(const NSData& data, std::string* error) {
    std::string reason;
    auto list = PropertyList::read(data, reason);
    if (!list) {
        tell(error, reason);
        return nullptr;
    }
    const auto archiver = list->valueForKey(list->root(), "$archiver");
    const auto version = list->valueForKey(list->root(), "$version");
    if (!archiver || !list->isString(*archiver, "NSKeyedArchiver") || !version ||
        list->integer(*version) != archiveVersion) {
        tell(error, "the property list is no keyed archive");
        return nullptr;
    }
    return std::shared_ptr<NSKeyedUnarchiver>(new NSKeyedUnarchiver(std::move(list)));
}

template <>
std::optional<NSIndexSet> NSKeyedUnarchiver::decodeTopLevelObjectOfClassForKey<NSIndexSet>(const std::u16string& key,
                                                                                           std::string* error) const {
    const auto top = m_list->valueForKey(m_list->root(), "$top");
    const auto object = top ? referredTo(*m_list, m_list->valueForKey(*top, toUtf8(key))) : std::nullopt;
    if (!object) {
        tell(error, "the archive has no object " + toUtf8(key));
        return std::nullopt;
    }
    if (!isOfClass(*m_list, *object, {"NSIndexSet", "NSMutableIndexSet"})) {
        tell(error, toUtf8(key) + " is no index set");
        return std::nullopt;
    }
    auto set = indexSet(*m_list, *object);
    if (!set)
        tell(error, "the ranges of the index set are damaged");
    return set;
}

} // namespace platform
