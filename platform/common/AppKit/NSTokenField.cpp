// SPDX-License-Identifier: MIT
#include <AppKit/NSTokenField.h>

#include <AppKit/NSCell.h>

#include "Peers.h"

namespace platform {

std::u16string_view NSTokenField::className() const {
    return u"NSTokenField";
}

void NSTokenField::setObjectValue(const NSArray<RepresentedObject>& objects) {
    m_objects = objects;
    std::u16string text;
    if (objects)
        for (const auto& object : *objects)
            if (const auto* piece = std::get_if<std::u16string>(&object))
                text += *piece;
    setValue(text);
}

void NSTokenField::cellChanged() {
    if (auto* shown = dynamic_cast<TextPeer*>(peer()))
        shown->setWraps(cell()->wraps());
}

void NSTokenField::showAll() {
    NSTextField::showAll();
    cellChanged();
}

} // namespace platform
