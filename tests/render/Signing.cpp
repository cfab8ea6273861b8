// SPDX-License-Identifier: MIT
#include "Signing.h"

#include "Documents.h"

#include <gtest/gtest.h>

namespace render {

std::string signedDocument(const Folder& folder, const std::string& reference, const std::string& catalog) {
    const std::size_t room = 8192; // hexadecimal digits
    DocumentBytes file;
    file.add("<< /Type /Catalog /Pages 2 0 R /AcroForm << /Fields [6 0 R] /SigFlags 3 >> " + catalog + " >>");
    file.add("<< /Type /Pages /Kids [3 0 R 4 0 R] /Count 2 /MediaBox [0 0 300 200] >>");
    file.add("<< /Type /Page /Parent 2 0 R /Contents 5 0 R /Annots [6 0 R] >>");
    file.add("<< /Type /Page /Parent 2 0 R /Contents 5 0 R >>");
    file.addStream("0.5 g 5 5 20 20 re f");
    file.add("<< /Type /Annot /Subtype /Widget /FT /Sig /T (Signature) /V 7 0 R /Rect [0 0 0 0] /F 132 /P 3 0 R >>");
    file.add("<< /Type /Sig /Filter /Adobe.PPKLite /SubFilter /adbe.pkcs7.detached " + reference +
             " /ByteRange [0000000000 1111111111 2222222222 3333333333] /Contents <" + std::string(room, '0') + "> >>");
    auto bytes = file.bytes();
    const auto start = bytes.find("/Contents <0000") + 10;
    const auto end = start + room + 2;
    const auto number = [](std::size_t value) {
        auto text = std::to_string(value);
        return std::string(10 - text.size(), ' ') + text;
    };
    for (const auto& [placeholder, value] : {std::pair<std::string, std::size_t>{"0000000000 1111111111", 0},
                                             {"1111111111", start},
                                             {"2222222222", end},
                                             {"3333333333", bytes.size() - end}}) {
        const auto at = bytes.find("/ByteRange") + 12;
        bytes.replace(bytes.find(placeholder.substr(0, 10), at), 10, number(value));
    }
    writeFile(folder / "covered", bytes.substr(0, start) + bytes.substr(end));
    const auto made = run("cd " + quoted(folder.path()) +
                          " && openssl req -x509 -newkey rsa:2048 -nodes -keyout key.pem -out certificate.pem -days 2 "
                          "-subj /CN=Signer && openssl cms -sign -binary -noattr -in covered -signer certificate.pem "
                          "-inkey key.pem -outform DER -out signature");
    EXPECT_EQ(made.status, 0) << made.output;
    const auto signature = readFile(folder / "signature");
    std::string digits;
    for (const char c : signature)
        for (const int shift : {4, 0})
            digits += "0123456789ABCDEF"[static_cast<unsigned char>(c) >> shift & 0xF];
    EXPECT_LE(digits.size(), room);
    bytes.replace(start + 1, digits.size(), digits);
    return bytes;
}

} // namespace render
