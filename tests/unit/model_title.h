// SPDX-License-Identifier: MIT
#pragma once

#include <host/ImprinterConfiguration.h>

/// The title of these tokens, as a setter takes it.
inline host::NSArray<host::TitleToken> titleOf(std::vector<host::TitleToken> tokens) {
    return std::make_shared<const std::vector<host::TitleToken>>(std::move(tokens));
}

/// The font run at `index` of the title; null where there is none.
inline std::shared_ptr<host::ImprinterFont> runAt(const host::ImprinterConfiguration& configuration,
                                                  std::size_t index) {
    const auto title = configuration.titleTokens();
    if (!title || index >= title->size())
        return nullptr;
    const auto* run = std::get_if<std::shared_ptr<host::ImprinterFont>>(&(*title)[index]);
    return run ? *run : nullptr;
}
