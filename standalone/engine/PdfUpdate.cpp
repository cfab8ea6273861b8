// SPDX-License-Identifier: MIT
#include "PdfUpdate.h"

#include "Flate.h"
#include "PdfText.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace engine {

namespace {

/// What cross-reference tables have room for.
constexpr std::uint64_t kLargestFile = 9'999'999'999;

/// Where the last cross-reference section of a file begins, as its end says.
std::optional<std::uint64_t> lastSection(std::string_view bytes) {
    const auto tail = bytes.substr(bytes.size() - std::min<std::size_t>(bytes.size(), 1024));
    auto at = tail.rfind("startxref");
    if (at == std::string_view::npos)
        return std::nullopt;
    at = tail.find_first_of("0123456789", at);
    if (at == std::string_view::npos)
        return std::nullopt;
    std::uint64_t offset = 0;
    const auto read = std::from_chars(tail.data() + at, tail.data() + tail.size(), offset);
    return read.ec == std::errc() && offset < bytes.size() ? std::optional(offset) : std::nullopt;
}

bool isTable(std::string_view bytes, std::uint64_t section) {
    return bytes.substr(section, 4) == "xref";
}

std::string hexadecimal(std::uint64_t value) {
    std::string text;
    for (int shift = 60; shift >= 0; shift -= 4)
        text += "0123456789ABCDEF"[value >> shift & 0xF];
    return text;
}

/// Each byte as the difference from the one above it, lines led by the predictor's number.
std::string differencesOfLines(const std::string& lines, std::size_t width) {
    std::string result;
    result.reserve(lines.size() + lines.size() / width);
    for (std::size_t at = 0; at < lines.size(); at += width) {
        result += '\x02';
        for (std::size_t i = at; i < at + width; ++i)
            result += static_cast<char>(lines[i] - (at == 0 ? 0 : lines[i - width]));
    }
    return result;
}

} // namespace

PdfUpdate::PdfUpdate(QPDF& document, std::string_view bytes, int descriptor, OutputFile& output)
    : m_document(document), m_input(bytes), m_output(output), m_hash{14695981039346656037ULL, 1099511628211ULL},
      m_next(static_cast<int>(document.getTrailer().getKey("/Size").getIntValue())) {
    m_output.copy(descriptor, bytes.size());
    m_at = bytes.size();
    if (!bytes.ends_with('\n') && !bytes.ends_with('\r'))
        put("\n");
}

bool PdfUpdate::isPossible(QPDF& document, std::string_view bytes) {
    const auto section = lastSection(bytes);
    auto size = document.getTrailer().getKey("/Size");
    return !document.isEncrypted() && !document.anyWarnings() && bytes.starts_with("%PDF-") && section &&
           bytes.size() < kLargestFile / 2 && size.isInteger() && size.getIntValue() > 0 &&
           size.getIntValue() < 0x40000000;
}

void PdfUpdate::put(std::string_view bytes) {
    m_output.write(bytes);
    m_at += bytes.size();
    // FNV-1a, eight bytes at a time in two lanes: an identifier, no protection.
    for (std::size_t at = 0; at < bytes.size(); at += 8) {
        std::uint64_t word = 0;
        bytes.copy(reinterpret_cast<char*>(&word), 8, at);
        m_hash[0] = (m_hash[0] ^ word) * 1099511628211ULL;
        m_hash[1] = (m_hash[1] ^ (word >> 32 | word << 32)) * 14695981039346656037ULL;
    }
}

void PdfUpdate::begin(int number, int generation) {
    m_entries.push_back({number, generation, m_at});
    put(std::to_string(number) + ' ' + std::to_string(generation) + " obj\n");
}

std::string PdfUpdate::add(std::string_view body) {
    auto reference = reserve();
    fill(reference, body);
    return reference;
}

std::string PdfUpdate::reserve() {
    return std::to_string(m_next++) + " 0 R";
}

void PdfUpdate::fill(const std::string& reference, std::string_view body) {
    begin(std::stoi(reference), std::stoi(reference.substr(reference.find(' '))));
    put(body);
    put("\nendobj\n");
}

std::string PdfUpdate::addStream(std::string_view entries, std::string_view data) {
    std::string body = "<<";
    body += entries;
    body += "/Length " + std::to_string(data.size()) + ">>\nstream\n";
    body += data;
    body += "\nendstream";
    return add(body);
}

void PdfUpdate::changePage(QPDFObjectHandle page, const std::string& contents, const std::string& resources) {
    std::string body = "<<";
    for (const auto& [key, value] : page.getDictAsMap())
        if (key != "/Contents" && key != "/Resources") {
            appendName(body, key);
            body += ' ';
            body += QPDFObjectHandle(value).unparse();
        }
    body += "/Contents " + contents + "/Resources " + resources + ">>\nendobj\n";
    begin(page.getObjectID(), page.getGeneration());
    put(body);
}

void PdfUpdate::requireVersion(const std::string& version) {
    auto root = m_document.getRoot();
    auto entry = root.getKey("/Version");
    const auto own = m_document.getPDFVersion();
    if (own >= version || (entry.isName() && entry.getName().substr(1) >= version))
        return;
    auto raised = root.shallowCopy();
    raised.replaceKey("/Version", QPDFObjectHandle::newName("/" + version));
    begin(root.getObjectID(), root.getGeneration());
    put(raised.unparse() + "\nendobj\n");
}

std::string PdfUpdate::trailerEntries() {
    std::string entries;
    for (const auto& [key, value] : m_document.getTrailer().getDictAsMap()) {
        // What describes the section itself, and what is written below.
        static const char* const own[] = {"/Size",  "/Prev",   "/XRefStm",     "/ID",     "/Type", "/W",
                                          "/Index", "/Filter", "/DecodeParms", "/Length", "/DL"};
        if (std::find(std::begin(own), std::end(own), key) != std::end(own))
            continue;
        appendName(entries, key);
        entries += ' ' + QPDFObjectHandle(value).unparse();
    }
    auto identifiers = m_document.getTrailer().getKey("/ID");
    const auto fresh = '<' + hexadecimal(m_hash[0]) + hexadecimal(m_hash[1]) + '>';
    const bool given =
        identifiers.isArray() && identifiers.getArrayNItems() == 2 && identifiers.getArrayItem(0).isString();
    entries += "/ID [" + (given ? identifiers.getArrayItem(0).unparse() : fresh) + fresh + ']';
    entries += "/Prev " + std::to_string(*lastSection(m_input));
    return entries;
}

void PdfUpdate::finish() {
    if (isTable(m_input, *lastSection(m_input)))
        writeTable();
    else
        writeStream();
}

void PdfUpdate::writeTable() {
    std::sort(m_entries.begin(), m_entries.end(), [](const Entry& a, const Entry& b) { return a.number < b.number; });
    const auto start = m_at;
    std::string table = "xref\n";
    for (std::size_t first = 0; first < m_entries.size();) {
        auto end = first + 1;
        while (end < m_entries.size() && m_entries[end].number == m_entries[end - 1].number + 1)
            ++end;
        table += std::to_string(m_entries[first].number) + ' ' + std::to_string(end - first) + '\n';
        for (; first < end; ++first) {
            char line[32];
            std::snprintf(line, sizeof line, "%010llu %05d n \n",
                          static_cast<unsigned long long>(m_entries[first].offset), m_entries[first].generation);
            table += line;
        }
    }
    table += "trailer\n<<" + trailerEntries() + "/Size " + std::to_string(m_next) + ">>\n";
    put(table + "startxref\n" + std::to_string(start) + "\n%%EOF\n");
}

void PdfUpdate::writeStream() {
    const auto start = m_at;
    const int number = m_next++;
    m_entries.push_back({number, 0, start});
    std::sort(m_entries.begin(), m_entries.end(), [](const Entry& a, const Entry& b) { return a.number < b.number; });
    unsigned offsetBytes = 1;
    while (offsetBytes < 8 && start >> (8 * offsetBytes) != 0)
        ++offsetBytes;
    std::string lines;
    std::string index;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        const auto& entry = m_entries[i];
        if (i == 0 || entry.number != m_entries[i - 1].number + 1) {
            auto end = i + 1;
            while (end < m_entries.size() && m_entries[end].number == m_entries[end - 1].number + 1)
                ++end;
            index += std::to_string(entry.number) + ' ' + std::to_string(end - i) + ' ';
        }
        lines += '\x01';
        for (unsigned byte = offsetBytes; byte-- > 0;)
            lines += static_cast<char>(entry.offset >> (8 * byte) & 0xFF);
        lines += static_cast<char>(entry.generation >> 8 & 0xFF);
        lines += static_cast<char>(entry.generation & 0xFF);
    }
    const auto width = 3 + offsetBytes;
    const auto data = Flate().deflate(differencesOfLines(lines, width));
    put(std::to_string(number) + " 0 obj\n<</Type/XRef/Size " + std::to_string(m_next) + "/W [1 " +
        std::to_string(offsetBytes) + " 2]/Index [" + index +
        "]/Filter/FlateDecode/DecodeParms<</Predictor 12/Columns " + std::to_string(width) + ">>" + trailerEntries() +
        "/Length " + std::to_string(data.size()) + ">>\nstream\n" + data + "\nendstream\nendobj\nstartxref\n" +
        std::to_string(start) + "\n%%EOF\n");
}

} // namespace engine
