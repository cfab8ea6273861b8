// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace render {

/// A PDF file written object by object, with a correct cross-reference table.
class DocumentBytes {
public:
    /// Adds an object and answers its number; the first one is 1 and must be the catalog.
    int add(const std::string& body);
    /// Gives an object that was added another body.
    void replace(int number, const std::string& body);
    int addStream(const std::string& data, const std::string& entries = {});
    /// `trailer`: further entries of the trailer.
    std::string bytes(const std::string& trailer = {}) const;

private:
    std::vector<std::string> m_objects;
};

/// A document of `count` pages. `entries` go into every page's dictionary ("/MediaBox [0 0 300 200]" and the like);
/// every page shares one content stream.
std::string document(int count, const std::string& entries, const std::string& content,
                     const std::string& catalog = {});

} // namespace render
