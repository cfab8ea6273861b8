// SPDX-License-Identifier: MIT
#include <engine/Warning.h>

namespace engine {

namespace {

std::string quoted(const std::string& name) {
    return '"' + name + '"';
}

/// "page 3", or "page 3 and 4 others".
std::string pages(const std::vector<std::string>& firstAndOthers) {
    const auto& others = firstAndOthers.at(1);
    return "page " + firstAndOthers.at(0) +
           (others == "0" ? "" : " and " + others + (others == "1" ? " other" : " others"));
}

} // namespace

std::string Warning::sentence() const {
    const auto& a = arguments;
    switch (kind) {
    case Kind::fontMissing:
        return "The font " + quoted(a.at(0)) + " is not on this machine; " + quoted(a.at(1)) + " is used instead.";
    case Kind::characterElsewhere:
        return "The font " + quoted(a.at(0)) + " lacks the character " + a.at(1) + "; it is taken from " +
               quoted(a.at(2)) + '.';
    case Kind::characterMissing:
        return "No font on this machine has the character " + a.at(0) + '.';
    case Kind::noFont:
        return "This machine has no font that can be stamped.";
    case Kind::notEmbeddable:
        return "The font " + quoted(a.at(0)) + " may not be embedded; its text is drawn as outlines.";
    case Kind::unknownPlaceholder:
        return "The placeholder " + quoted(a.at(0)) + " is unknown; it is stamped as it stands.";
    case Kind::outsidePage:
        return "The stamp lies outside " + pages(a) + ", where nobody sees it.";
    case Kind::largerThanPage:
        return "The stamp is larger than " + pages(a) + '.';
    case Kind::beyondEdge:
        return "The stamp reaches beyond the edge of " + pages(a) + '.';
    case Kind::contentUnread:
        return "The content of " + pages(a) + " cannot be decoded; the stamp may not look as it should.";
    case Kind::repaired:
        return "The document was damaged; it was repaired as far as possible.";
    case Kind::pictureDamaged:
        return "The picture is damaged; it was read as far as possible.";
    case Kind::paintedInGreys:
        return "The picture has a colour profile of greys; the stamp was painted in greys.";
    case Kind::profileLeftOut:
        return "The picture's colour profile is for greys only and was left out.";
    case Kind::otherNames:
        return "The file has other names too (hard links), under which it is as it was.";
    }
    return {};
}

} // namespace engine
