// SPDX-License-Identifier: MIT
#include "RowArchive.h"

#include <string>

namespace app {

namespace {

using platform::NSUInteger;

/// A binary property list that is written object by object. An archive has fewer than 256 of them, so that a reference
/// is one byte.
class BinaryList {
public:
    using Reference = std::uint8_t;

    Reference string(const std::string& ascii) { return add(counted(0x5, ascii.size()) + ascii); }
    Reference data(const std::string& bytes) { return add(counted(0x4, bytes.size()) + bytes); }
    Reference integer(NSUInteger number) { return add("\x13" + bigEndian(number, 8)); }
    Reference uid(std::uint8_t index) { return add(std::string("\x80") + static_cast<char>(index)); }
    Reference array(const std::vector<Reference>& elements) {
        return add(counted(0xA, elements.size()) + std::string(elements.begin(), elements.end()));
    }
    Reference dictionary(const std::vector<std::pair<std::string, Reference>>& entries) {
        std::string keys;
        std::string values;
        for (const auto& [key, value] : entries) {
            keys += static_cast<char>(string(key));
            values += static_cast<char>(value);
        }
        return add(counted(0xD, entries.size()) + keys + values);
    }

    platform::NSData finish(Reference root) const {
        std::string file = "bplist00";
        std::string offsets;
        for (const auto& object : m_objects) {
            offsets += bigEndian(file.size(), 8);
            file += object;
        }
        const auto table = file.size();
        file += offsets + std::string(6, '\0') + "\x08\x01" + bigEndian(m_objects.size(), 8) + bigEndian(root, 8) +
                bigEndian(table, 8);
        return std::make_shared<const std::vector<std::uint8_t>>(file.begin(), file.end());
    }

private:
    Reference add(std::string object) {
        m_objects.push_back(std::move(object));
        return static_cast<Reference>(m_objects.size() - 1);
    }
    static std::string bigEndian(NSUInteger number, int size) {
        std::string text;
        for (int shift = 8 * (size - 1); shift >= 0; shift -= 8)
            text += static_cast<char>(number >> shift);
        return text;
    }
    static std::string counted(unsigned marker, NSUInteger count) {
        if (count < 15)
            return {static_cast<char>(marker << 4 | count)};
        return static_cast<char>(marker << 4 | 0xF) + ("\x13" + bigEndian(count, 8));
    }

    std::vector<std::string> m_objects;
};

/// Base 128, low seven bits first, bit 7 set while more follow.
std::string packed(const platform::NSIndexSet& rows) {
    std::string bytes;
    const auto put = [&bytes](NSUInteger number) {
        for (; number >= 0x80; number >>= 7)
            bytes += static_cast<char>(number | 0x80);
        bytes += static_cast<char>(number);
    };
    for (const auto& [location, length] : rows.ranges()) {
        put(location);
        put(length);
    }
    return bytes;
}

} // namespace

platform::NSData archiveOfRows(const platform::NSIndexSet& rows) {
    BinaryList list;
    const auto& ranges = rows.ranges();
    std::vector<std::pair<std::string, BinaryList::Reference>> set{{"$class", list.uid(2)},
                                                                   {"NSRangeCount", list.integer(ranges.size())}};
    std::vector<BinaryList::Reference> objects{
        list.string("$null"), 0,
        list.dictionary({{"$classname", list.string("NSIndexSet")},
                         {"$classes", list.array({list.string("NSIndexSet"), list.string("NSObject")})}})};
    if (ranges.size() == 1) {
        set.emplace_back("NSLocation", list.integer(ranges.front().location));
        set.emplace_back("NSLength", list.integer(ranges.front().length));
    } else if (ranges.size() > 1) {
        set.emplace_back("NSRangeData", list.uid(3));
        objects.push_back(list.data(packed(rows)));
    }
    objects[1] = list.dictionary(set);
    return list.finish(list.dictionary({{"$archiver", list.string("NSKeyedArchiver")},
                                        {"$version", list.integer(100000)},
                                        {"$top", list.dictionary({{"root", list.uid(1)}})},
                                        {"$objects", list.array(objects)}}));
}

} // namespace app
