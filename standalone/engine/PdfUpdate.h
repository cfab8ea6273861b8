// SPDX-License-Identifier: MIT
#pragma once

#include "OutputFile.h"
#include "PdfObjects.h"

#include <vector>

namespace engine {

/// An incremental update: the input's bytes as they are, then what is new, then a cross-reference section of the kind
/// the input ends with. (ISO 32000-1, 7.5.6.)
class PdfUpdate final : public PdfObjects {
public:
    /// `bytes` are those of the file open as `descriptor`, which `document` was read from. All of them have to outlive
    /// this object.
    PdfUpdate(QPDF& document, std::string_view bytes, int descriptor, OutputFile& output);

    /// Whether the document can be updated at all: it is not encrypted, begins at the file's first byte, ends with a
    /// cross-reference section that can be continued, and nothing in it had to be repaired.
    static bool isPossible(QPDF& document, std::string_view bytes);

    std::string add(std::string_view body) override;
    std::string reserve() override;
    void fill(const std::string& reference, std::string_view body) override;
    std::string addStream(std::string_view entries, std::string_view data) override;
    void changePage(QPDFObjectHandle page, const std::string& contents, const std::string& resources) override;

    /// Raises the document's version if it is lower.
    void requireVersion(const std::string& version);

    /// Writes the cross-reference section and the trailer.
    void finish();

private:
    struct Entry {
        int number;
        int generation;
        std::uint64_t offset;
    };

    void begin(int number, int generation);
    void put(std::string_view bytes);
    std::string trailerEntries();
    void writeTable();
    void writeStream();

    QPDF& m_document;
    std::string_view m_input;
    OutputFile& m_output;
    std::uint64_t m_at = 0;
    std::uint64_t m_hash[2];
    int m_next;
    std::vector<Entry> m_entries;
};

} // namespace engine
