// SPDX-License-Identifier: MIT
#include "Documents.h"

#include <cstdio>

namespace render {

int DocumentBytes::add(const std::string& body) {
    m_objects.push_back(body);
    return static_cast<int>(m_objects.size());
}

void DocumentBytes::replace(int number, const std::string& body) {
    m_objects[static_cast<std::size_t>(number) - 1] = body;
}

int DocumentBytes::addStream(const std::string& data, const std::string& entries) {
    return add("<< /Length " + std::to_string(data.size()) + " " + entries + " >>\nstream\n" + data + "\nendstream");
}

std::string DocumentBytes::bytes(const std::string& trailer) const {
    std::string file = "%PDF-1.3\n%\xE2\xE3\xCF\xD3\n";
    std::string table;
    for (std::size_t i = 0; i < m_objects.size(); ++i) {
        char line[32];
        std::snprintf(line, sizeof line, "%010zu 00000 n \n", file.size());
        table += line;
        file += std::to_string(i + 1) + " 0 obj\n" + m_objects[i] + "\nendobj\n";
    }
    const auto size = std::to_string(m_objects.size() + 1);
    const auto start = std::to_string(file.size());
    return file + "xref\n0 " + size + "\n0000000000 65535 f \n" + table + "trailer\n<< /Size " + size +
           " /Root 1 0 R " + trailer + " >>\nstartxref\n" + start + "\n%%EOF\n";
}

std::string document(int count, const std::string& entries, const std::string& content, const std::string& catalog) {
    DocumentBytes file;
    file.add("<< /Type /Catalog /Pages 2 0 R " + catalog + " >>");
    std::string kids;
    for (int i = 0; i < count; ++i)
        kids += std::to_string(4 + i) + " 0 R ";
    file.add("<< /Type /Pages /Kids [" + kids + "] /Count " + std::to_string(count) + " >>");
    const auto stream = file.addStream(content);
    for (int i = 0; i < count; ++i)
        file.add("<< /Type /Page /Parent 2 0 R /Contents " + std::to_string(stream) + " 0 R " + entries + " >>");
    return file.bytes();
}

} // namespace render
