// SPDX-License-Identifier: MIT
// Documents with real signatures, made by openssl and judged by pdfsig.

#include "Documents.h"
#include "Render.h"
#include "Signing.h"

#include <gtest/gtest.h>

using namespace render;
using engine::Code;

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

TEST(SignedDocuments, AreKnownByAFieldThatStandsOnAPageOnly) {
    const std::string forms[] = {"", "/AcroForm << /Fields [] /SigFlags 3 >>"};
    for (const auto& form : forms) {
        SCOPED_TRACE(form);
        Folder folder;
        DocumentBytes file;
        file.add("<< /Type /Catalog /Pages 2 0 R " + form + " >>");
        file.add("<< /Type /Pages /Kids [3 0 R] /Count 1 /MediaBox [0 0 300 200] >>");
        file.add("<< /Type /Page /Parent 2 0 R /Annots [4 0 R] >>");
        file.add("<< /Type /Annot /Subtype /Widget /Parent 5 0 R /Rect [0 0 0 0] /F 132 /P 3 0 R >>");
        file.add("<< /FT /Sig /T (Signature) /V 6 0 R /Kids [4 0 R] >>");
        file.add("<< /Type /Sig /Filter /Adobe.PPKLite /ByteRange [0 1 2 3] /Contents <00> >>");
        writeFile(folder / "in.pdf", file.bytes());
        auto task = job(folder / "in.pdf", folder / "out.pdf", {configuration(u"Afterwards")});
        EXPECT_EQ(engine::stampFile(task).code, Code::isSigned);
        task.allowSigned = true;
        task.saving = engine::Saving::rewrite;
        const auto outcome = engine::stampFile(task);
        ASSERT_TRUE(outcome) << outcome.sentence;
        EXPECT_TRUE(readFile(folder / "out.pdf").starts_with(file.bytes()));
    }
}
