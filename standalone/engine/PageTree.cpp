// SPDX-License-Identifier: MIT
#include "PageTree.h"

#include <cmath>

namespace engine {

namespace {

Box boxOf(QPDFObjectHandle object, const Box& missing) {
    if (!object.isRectangle())
        return missing;
    const auto box = object.getArrayAsRectangle();
    return {box.llx, box.lly, box.urx, box.ury};
}

constexpr int kDeepest = 1000;

/// Whether a node or one below it has something to drop, which then is dropped. A tree that leads back to itself, or
/// has no end, is the library's to judge.
bool dropMissing(QPDFObjectHandle node, std::set<QPDFObjGen>& seen, int level) {
    auto kids = node.getKey("/Kids");
    if (!kids.isArray() || level == kDeepest || (node.isIndirect() && !seen.insert(node.getObjGen()).second))
        return false;
    bool found = false;
    for (int i = kids.getArrayNItems(); i-- > 0;) {
        auto kid = kids.getArrayItem(i);
        if (!kid.isDictionary()) {
            kids.eraseItem(i);
            found = true;
        } else if (kid.hasKey("/Kids")) {
            found = dropMissing(kid, seen, level + 1) || found;
        }
    }
    return found;
}

/// Corrects the number of pages of a node and of those below it.
int countAnew(QPDFObjectHandle node, std::set<QPDFObjGen>& seen, int level) {
    auto kids = node.getKey("/Kids");
    if (!kids.isArray() || level == kDeepest || (node.isIndirect() && !seen.insert(node.getObjGen()).second))
        return 0;
    int count = 0;
    for (auto kid : kids.getArrayAsVector())
        count += kid.hasKey("/Kids") ? countAnew(kid, seen, level + 1) : 1;
    node.replaceKey("/Count", QPDFObjectHandle::newInteger(count));
    return count;
}

} // namespace

bool dropMissingPages(QPDF& document) {
    auto root = document.getRoot().getKey("/Pages");
    std::set<QPDFObjGen> seen;
    if (!root.isDictionary() || !dropMissing(root, seen, 0))
        return false;
    seen.clear();
    countAnew(root, seen, 0);
    return true;
}

PageAttributes Inheritance::of(QPDFObjectHandle page) {
    PageAttributes result{page.getKey("/MediaBox"), page.getKey("/CropBox"), page.getKey("/Rotate"),
                          page.getKey("/Resources")};
    if (result.mediaBox.isNull() || result.cropBox.isNull() || result.rotate.isNull() || result.resources.isNull()) {
        const auto& above = ofNode(page.getKey("/Parent"), 0);
        const auto fill = [](QPDFObjectHandle& own, const QPDFObjectHandle& inherited) {
            if (own.isNull())
                own = inherited;
        };
        fill(result.mediaBox, above.mediaBox);
        fill(result.cropBox, above.cropBox);
        fill(result.rotate, above.rotate);
        fill(result.resources, above.resources);
    }
    return result;
}

const PageAttributes& Inheritance::ofNode(QPDFObjectHandle node, int level) {
    constexpr int deepest = 200; // a tree that leads back to itself ends here
    if (!node.isDictionary() || level == deepest)
        return m_none;
    const auto found = m_nodes.find(node.getObjGen());
    if (found != m_nodes.end() && node.isIndirect())
        return found->second;
    PageAttributes own{node.getKey("/MediaBox"), node.getKey("/CropBox"), node.getKey("/Rotate"),
                       node.getKey("/Resources")};
    const PageAttributes above = ofNode(node.getKey("/Parent"), level + 1);
    for (const auto attribute :
         {&PageAttributes::mediaBox, &PageAttributes::cropBox, &PageAttributes::rotate, &PageAttributes::resources})
        if ((own.*attribute).isNull())
            own.*attribute = above.*attribute;
    return m_nodes[node.getObjGen()] = own;
}

PageGeometry geometryOf(QPDFObjectHandle page, const PageAttributes& attributes) {
    PageGeometry geometry;
    const Box letter = geometry.mediaBox;
    geometry.mediaBox = boxOf(attributes.mediaBox, letter);
    if (geometry.mediaBox.width() == 0 || geometry.mediaBox.height() == 0)
        geometry.mediaBox = letter;
    geometry.cropBox = boxOf(attributes.cropBox, geometry.mediaBox);
    auto rotate = attributes.rotate;
    if (rotate.isNumber() && std::abs(rotate.getNumericValue()) < 1e6 &&
        rotate.getNumericValue() == std::floor(rotate.getNumericValue()))
        geometry.rotate = static_cast<int>(rotate.getNumericValue());
    auto unit = page.getKey("/UserUnit");
    if (unit.isNumber())
        geometry.userUnit = unit.getNumericValue();
    return geometry;
}

std::vector<QPDFObjectHandle> streamsOf(QPDFObjectHandle contents) {
    std::vector<QPDFObjectHandle> streams;
    if (contents.isStream())
        streams.push_back(contents);
    else if (contents.isArray())
        for (auto item : contents.getArrayAsVector())
            if (item.isStream())
                streams.push_back(item);
    return streams;
}

} // namespace engine
