// SPDX-License-Identifier: MIT
#pragma once

#include "Flate.h"

#include <qpdf/QPDF.hh>

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace engine {

/// A page's content without stamps.
struct StrippedContent {
    bool found = false;                    ///< Whether there was any stamp to take away; else nothing else is said.
    std::vector<QPDFObjectHandle> streams; ///< What is left, where it is whole streams;
    std::optional<std::string> text;       ///< else all of it as one text,
    std::optional<std::string> tail;       ///< or, after streams that cannot be decoded, what follows them.
    std::set<std::string> names;           ///< Names of resources that only the stamps used.
    std::set<std::string> kept;            ///< Names that stamps use which stay; told whether there was one or not.
};

/// The identifiers of the stamps in a page's content, each once, in order.
std::vector<std::string> stampsIn(const std::vector<QPDFObjectHandle>& streams, Flate& flate);

/// Finds the stamps of earlier runs in a page's content and takes away those of the configurations whose identifiers
/// are `wanted`; all where it is null. What was wrapped around the content for the stamps goes with the last of them.
/// Where a stream cannot be decoded, stamps are looked for in those behind it.
StrippedContent stripStamps(const std::vector<QPDFObjectHandle>& streams, const std::set<std::string>* wanted,
                            Flate& flate);

} // namespace engine
