// SPDX-License-Identifier: MIT
// Documents with real signatures, made by openssl and judged by pdfsig.

#include "Documents.h"
#include "Render.h"

#include <gtest/gtest.h>

using namespace render;
using engine::Code;

namespace {

/// A document of two pages, signed by a certificate of its own; `reference` goes into the signature, `catalog` into the
/// catalog.
std::string signedDocument(const Folder& folder, const std::string& reference = {}, const std::string& catalog = {}) {
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

} // namespace

TEST(SignedDocuments, AreStampedByAnUpdateThatLeavesTheSignatureValidOnceThatIsAllowed) {
    Folder folder;
    writeFile(folder / "in.pdf", signedDocument(folder));
    ASSERT_NE(run("pdfsig " + quoted(folder / "in.pdf")).output.find("Signature is Valid."), std::string::npos)
        << run("pdfsig " + quoted(folder / "in.pdf")).output;
    auto task = job(folder / "in.pdf", folder / "out.pdf", {configuration(u"Afterwards")});
    EXPECT_EQ(engine::stampFile(task).code, Code::isSigned);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.pdf"));
    task.allowSigned = true;
    for (const auto saving : {engine::Saving::automatic, engine::Saving::rewrite}) {
        task.saving = saving;
        const auto outcome = engine::stampFile(task);
        ASSERT_TRUE(outcome) << outcome.sentence;
        EXPECT_TRUE(readFile(folder / "out.pdf").starts_with(readFile(folder / "in.pdf")));
        EXPECT_NE(run("pdfsig " + quoted(folder / "out.pdf")).output.find("Signature is Valid."), std::string::npos);
        EXPECT_NE(run("pdftotext " + quoted(folder / "out.pdf") + " -").output.find("Afterwards"), std::string::npos);
    }
}

TEST(SignedDocuments, KeepTheirSignatureWhenStampsAreReplacedAndRemoved) {
    Folder folder;
    writeFile(folder / "in.pdf", signedDocument(folder));
    auto task = job(folder / "in.pdf", folder / "a.pdf", {configuration(u"Afterwards")});
    task.allowSigned = true;
    ASSERT_TRUE(engine::stampFile(task));
    task.input = folder / "a.pdf";
    task.output = folder / "b.pdf";
    task.replace = true;
    ASSERT_TRUE(engine::stampFile(task));
    task.input = folder / "b.pdf";
    task.output = folder / "c.pdf";
    const auto outcome = engine::unstampFile(task);
    ASSERT_TRUE(outcome) << outcome.sentence;
    for (const char* name : {"b.pdf", "c.pdf"})
        EXPECT_NE(run("pdfsig " + quoted(folder / name)).output.find("Signature is Valid."), std::string::npos) << name;
    EXPECT_EQ(run("pdftotext " + quoted(folder / "c.pdf") + " -").output, "\f\f");
}

TEST(SignedDocuments, ThatCanOnlyBeWrittenAnewAreRefusedEvenWhereStampingIsAllowed) {
    Folder folder;
    writeFile(folder / "in.pdf", "junk\n" + signedDocument(folder));
    auto task = job(folder / "in.pdf", folder / "out.pdf", {configuration(u"Afterwards")});
    task.allowSigned = true;
    EXPECT_EQ(engine::stampFile(task).code, Code::isSigned);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.pdf"));
}

TEST(SignedDocuments, ThatAreCertifiedAreRefusedWhateverTheirLevel) {
    for (const std::string level : {"1", "2", "3"}) {
        const auto reference = "/Reference [<< /Type /SigRef /TransformMethod /DocMDP /TransformParams << /P " + level +
                               " /V /1.2 /Type /TransformParams >> >>]";
        for (const std::string catalog : {"/Perms << /DocMDP 7 0 R >>", ""}) {
            Folder folder;
            writeFile(folder / "in.pdf", signedDocument(folder, reference, catalog));
            auto task = job(folder / "in.pdf", folder / "out.pdf", {configuration(u"Never")});
            task.allowSigned = true;
            EXPECT_EQ(engine::stampFile(task).code, Code::certified) << level << catalog;
            EXPECT_FALSE(std::filesystem::exists(folder / "out.pdf"));
        }
    }
}
