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
        std::size_t content = 0;     ///< Of the reader; without removed stamps.
        std::set<std::string> drops; ///< Names that its resources shall lose.
    };

    /// The arguments have to outlive this object; `press` is null where nothing is stamped.
    PageWriter(PdfObjects& objects, const std::vector<StampPlan>& plans, StampPress* press,
               const ContentReader& reader);

    /// Puts stamps onto the page.
    void stamp(const Page& page, const std::vector<StampPress::Bearing>& bearings);
    /// Writes the page as it is without stamps.
    void bare(const Page& page);

private:
    /// A page's resources as text, without its forms and pictures; and these.
    struct Names {
        std::string others;
        std::string objects;
        std::set<std::string> taken; ///< Names of ours that are in use.
    };

    void appendContent(const PageContent& content, std::string& contents);
    std::string addStream(const std::string& content);
    const Names& namesOf(const Page& page);
    Names read(QPDFObjectHandle resources, bool shared, const std::set<std::string>& drops);
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
    Names m_ownNames;
    std::map<QPDFObjGen, Names> m_indirectNames;
    std::deque<std::pair<QPDFObjectHandle, Names>> m_inheritedNames; ///< One for each node of the tree that has any.
};

} // namespace engine
