// SPDX-License-Identifier: MIT
#include <AppKit/FontSource.h>

#include "SystemFonts.h"

#include <mutex>

namespace platform {

namespace {

struct Current {
    std::mutex mutex;
    std::shared_ptr<FontSource> source;
};

Current& held() {
    static Current current;
    return current;
}

} // namespace

FontSource::~FontSource() = default;

std::shared_ptr<FontSource> FontSource::current() {
    auto& current = held();
    const std::lock_guard lock(current.mutex);
    if (!current.source)
        current.source = makeSystemFonts();
    return current.source;
}

void FontSource::setCurrent(std::shared_ptr<FontSource> source) {
    auto& current = held();
    const std::lock_guard lock(current.mutex);
    current.source = std::move(source);
}

} // namespace platform
