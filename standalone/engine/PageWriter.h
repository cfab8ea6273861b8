// SPDX-License-Identifier: MIT
#pragma once

#include "ContentReader.h"
#include "StampPress.h"

#include <engine/Placement.h>

#include <deque>
#include <unordered_map>

namespace engine {

/// Writes pages with their stamps, or without those they had.
class PageWriter {
public:
    /// A page as it is to be written.
    struct Page {
        QPDFObjectHandle object;
        QPDFObjectHandle resources; ///< Its own or inherited.
        PageGeometry geometry;
        bool isRead = false;         ///< Whether it has:
        std::size_t content = 0;     ///< Of the reader; without removed stamps.
        std::set<std::string> drops; ///< Names that its resources shall lose.
        std::set<std::string> keeps; ///< Names of stamps that stay on it.
    };

    /// The arguments have to outlive this object; `press` is null where nothing is stamped.
    PageWriter(PdfObjects& objects, const std::vector<StampPlan>& plans, StampPress* press,
               const ContentReader& reader);

    /// Tells of a page with names to lose or to keep, before any page is written: pages may share their resources.
    void expect(const Page& page);
    /// Puts stamps onto the page.
    void stamp(const Page& page, const std::vector<StampPress::Bearing>& bearings);
    /// Writes the page as it is without stamps.
    void bare(const Page& page);
    /// Writes what pages share. To be called once, after the last page.
    void finish();

private:
    /// The forms and pictures among the resources of a page, or of several.
    struct Objects {
        std::string entries;         ///< As text.
        std::set<std::string> taken; ///< Names of ours that are in use.

        bool isRead = false;
        std::set<std::string> drops; ///< Names that a page loses,
        std::set<std::string> keeps; ///< and that a page keeps.
        /// Where there are many, pages share one dictionary of them and of the stamps; else empty.
        std::string reference;
        std::map<std::uint32_t, std::string> stamps; ///< Names by number of the form.
        std::size_t next = 0;
    };
    /// Something for each dictionary that several pages share, be it indirect or inherited.
    template <class T>
    class PerDictionary {
    public:
        T& of(const QPDFObjectHandle& dictionary) {
            if (dictionary.isIndirect())
                return m_indirect[dictionary.getObjGen()];
            for (auto& [known, value] : m_inherited)
                if (known.isSameObjectAs(dictionary))
                    return value;
            return m_inherited.emplace_back(dictionary, T()).second;
        }
        template <class Do>
        void forEach(const Do& what) {
            for (auto& [id, value] : m_indirect)
                what(value);
            for (auto& [dictionary, value] : m_inherited)
                what(value);
        }

    private:
        std::map<QPDFObjGen, T> m_indirect;
        std::deque<std::pair<QPDFObjectHandle, T>> m_inherited; ///< One for each node of the tree that has any.
    };

    void appendContent(const PageContent& content, std::string& contents);
    std::string addStream(const std::string& content);
    static bool ownsResources(const Page& page);
    Objects* sharedObjectsOf(const Page& page);
    Objects& objectsOf(const Page& page);
    static void readObjects(const Page& page, Objects& objects);
    const std::string& othersOf(const Page& page);
    std::string readOthers(QPDFObjectHandle resources, bool shared);
    static std::string nextName(const Objects& objects, std::size_t& number);
    const std::string& formFor(std::uint32_t number);

    PdfObjects& m_objects;
    const std::vector<StampPlan>& m_plans;
    StampPress* m_press;
    const ContentReader& m_reader;
    std::string m_resources; ///< A reference, as are the following.
    std::vector<std::string> m_forms;
    std::string m_save;
    std::map<const PageContent*, std::string> m_mended;
    std::unordered_map<std::string, std::string> m_suffixes;
    std::vector<std::string> m_marks; ///< What begins a stamp of each plan.
    Flate m_flate;
    Objects m_ownObjects;
    PerDictionary<Objects> m_sharedObjects;
    std::string m_ownOthers;
    PerDictionary<std::optional<std::string>> m_sharedOthers;
};

} // namespace engine
