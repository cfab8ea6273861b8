// SPDX-License-Identifier: MIT
#pragma once

#include <engine/Placement.h>

#include <qpdf/QPDF.hh>

#include <map>
#include <set>
#include <vector>

namespace engine {

/// What a page has of its own or gets from its ancestors in the tree; null objects for what it has not.
struct PageAttributes {
    QPDFObjectHandle mediaBox;
    QPDFObjectHandle cropBox;
    QPDFObjectHandle rotate;
    QPDFObjectHandle resources;
};

/// Looks inheritable attributes up, each node of the page tree once.
class Inheritance {
public:
    PageAttributes of(QPDFObjectHandle page);
    /// Forgets what was looked up.
    void clear() { m_nodes.clear(); }

private:
    const PageAttributes& ofNode(QPDFObjectHandle node, int level);

    const PageAttributes m_none{QPDFObjectHandle::newNull(), QPDFObjectHandle::newNull(), QPDFObjectHandle::newNull(),
                                QPDFObjectHandle::newNull()};
    std::map<QPDFObjGen, PageAttributes> m_nodes;
};

PageGeometry geometryOf(QPDFObjectHandle page, const PageAttributes& attributes);

/// Takes out of the page tree what is neither a page nor a node of it, such as references to objects that are missing,
/// and corrects its counts then. Answers whether there was any. To be called before anybody asks for the pages.
bool dropMissingPages(QPDF& document);

/// The streams of a page's contents, in order.
std::vector<QPDFObjectHandle> streamsOf(QPDFObjectHandle contents);

} // namespace engine
