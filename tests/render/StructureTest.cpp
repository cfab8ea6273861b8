// SPDX-License-Identifier: MIT
#include "Documents.h"
#include "Render.h"

#include <gtest/gtest.h>

using namespace render;
using engine::Code;

namespace {

const char kPage[] = "/MediaBox [0 0 300 200]";

/// A document file of one's own making, stamped beside it.
struct Work {
    Folder folder;
    engine::StampJob task;

    explicit Work(const std::string& input, const std::u16string& text = u"Stamp") {
        writeFile(folder / "in.pdf", input);
        task = job(folder / "in.pdf", folder / "out.pdf", {configuration(text)});
        task.deterministic = true;
    }
    /// Lets qpdf make the input over with these options.
    void makeOver(const std::string& options) {
        const auto made = run("qpdf " + options + " --replace-input " + quoted(task.input));
        EXPECT_EQ(made.status, 0) << made.output;
    }
    engine::Outcome stamp() { return engine::stampFile(task); }
    std::string plain(const std::string& name = "out.pdf") const {
        return run("qpdf --qdf --object-streams=disable --no-original-object-ids " + quoted(folder / name) + " -")
            .output;
    }
    std::string text(int page = 1, const std::string& password = {}) const {
        const auto n = std::to_string(page);
        return run("pdftotext -q " + (password.empty() ? "" : "-upw " + password + " ") + "-f " + n + " -l " + n + " " +
                   quoted(task.output) + " -")
            .output;
    }
    std::string check(const std::string& options = {}) const {
        return run("qpdf --check " + options + " " + quoted(task.output)).output;
    }
};

} // namespace

TEST(PdfStructure, PagesKeepBoxesRotationAndAnnotations) {
    Work work(document(1,
                       "/MediaBox [0 0 300 200] /CropBox [5 5 250 190] /TrimBox [6 6 240 180] /Rotate 90 /Annots [<< "
                       "/Type /Annot /Subtype /Text /Rect [1 2 3 4] /Contents (a note) >>] /StructParents 3",
                       "0 0 9 9 re f"));
    ASSERT_TRUE(work.stamp());
    const auto plain = work.plain();
    for (const char* part :
         {"/CropBox [\n    5\n    5\n    250\n    190\n  ]", "/Rotate 90", "(a note)", "/StructParents 3", "/TrimBox"})
        EXPECT_NE(plain.find(part), std::string::npos) << part;
}

TEST(PdfStructure, SharedAndInheritedResourcesAreCopiedNotChanged) {
    DocumentBytes file;
    file.add("<< /Type /Catalog /Pages 2 0 R >>");
    file.add("<< /Type /Pages /Kids [3 0 R 4 0 R 5 0 R 10 0 R] /Count 4 /MediaBox [0 0 300 200] /Resources 7 0 R >>");
    file.add("<< /Type /Page /Parent 2 0 R /Contents 6 0 R >>");
    file.add("<< /Type /Page /Parent 2 0 R /Contents [6 0 R] /Resources 7 0 R >>");
    file.add("<< /Type /Page /Parent 2 0 R >>");
    file.addStream("q /ImprinterStamp0 Do Q");
    file.add("<< /XObject 8 0 R /ProcSet [/PDF] >>");
    file.add("<< /ImprinterStamp0 9 0 R >>");
    file.addStream("1 0 0 rg 0 0 50 50 re f", "/Type /XObject /Subtype /Form /BBox [0 0 50 50]");
    file.add("<< /Type /Page /Parent 2 0 R /Contents 6 0 R >>");
    Work work(file.bytes());
    work.task.configurations[0]->setOccurance(4);
    work.task.configurations[0]->setCustomOccurance(u"1,3");
    ASSERT_TRUE(work.stamp());
    EXPECT_EQ(work.text(1), "Stamp\n\n\f");
    EXPECT_EQ(work.text(2), "\f");
    EXPECT_EQ(work.text(3), "Stamp\n\n\f");
    // The page's own form of the name one would like is still drawn, on the stamped page and on the others.
    for (const int page : {1, 2, 4})
        EXPECT_EQ(shownPage(work.task.output, page).pixel(5, 195), qRgb(255, 0, 0)) << page;
    EXPECT_EQ(work.check().find("WARNING"), std::string::npos);
}

TEST(PdfStructure, EqualStampsAreOneObject) {
    Work work(document(50, kPage, "0 0 9 9 re f"));
    ASSERT_TRUE(work.stamp());
    const auto plain = work.plain();
    std::size_t forms = 0;
    for (auto at = plain.find("/Subtype /Form"); at != std::string::npos; at = plain.find("/Subtype /Form", at + 1))
        ++forms;
    EXPECT_EQ(forms, 1U);
    EXPECT_LT(std::filesystem::file_size(work.task.output),
              std::filesystem::file_size(work.task.input) + 50 * 120 + 8000);
}

TEST(PdfStructure, StampsAreMarkedAsArtifactsWithTheirConfiguration) {
    Work work(document(1, kPage, "0 0 9 9 re f"));
    ASSERT_TRUE(work.stamp());
    EXPECT_NE(work.plain().find("/Artifact <</Type /Pagination /Subtype /Watermark /ImprinterStamp "
                                "(A5C0FFEE-0000-4000-8000-000000000001)>> BDC"),
              std::string::npos);
}

TEST(PdfStructure, OldVersionsAreRaisedForTransparency) {
    Work work(document(1, kPage, ""));
    ASSERT_TRUE(work.stamp());
    EXPECT_NE(run("pdfinfo " + quoted(work.task.output)).output.find("PDF version:     1.4"), std::string::npos);
    EXPECT_EQ(work.check().find("WARNING"), std::string::npos);
    work.task.saving = engine::Saving::rewrite;
    ASSERT_TRUE(work.stamp());
    EXPECT_EQ(readFile(work.task.output).substr(0, 8), "%PDF-1.4");
}

TEST(PdfStructure, ObjectStreamsAndLinearizationAreKept) {
    Work work(document(30, kPage, "0 0 9 9 re f"));
    work.makeOver("--object-streams=generate");
    ASSERT_TRUE(work.stamp());
    EXPECT_NE(readFile(work.task.output).find("/ObjStm"), std::string::npos);
    EXPECT_EQ(work.check().find("linearized: no"), std::string::npos);

    Work web(document(30, kPage, "0 0 9 9 re f"));
    web.makeOver("--linearize");
    ASSERT_TRUE(web.stamp());
    EXPECT_NE(web.check().find("File is linearized"), std::string::npos) << web.check();
    EXPECT_EQ(web.check().find("WARNING"), std::string::npos) << web.check();
}

TEST(PdfStructure, EncryptionIsKeptAndAsksForItsPassword) {
    for (const char* cipher : {"256", "128 --use-aes=y", "128 --use-aes=n", "40"}) {
        SCOPED_TRACE(cipher);
        Work work(document(1, kPage, "0 0 9 9 re f"));
        const auto kind = std::string(cipher);
        work.makeOver("--allow-weak-crypto --encrypt user owner " + kind + " --");
        EXPECT_EQ(work.stamp().code, Code::encrypted);
        work.task.password = "wrong";
        EXPECT_EQ(work.stamp().code, Code::encrypted);
        EXPECT_EQ(work.folder.names(), std::vector<std::string>{"in.pdf"});
        work.task.password = "user";
        const auto outcome = work.stamp();
        ASSERT_TRUE(outcome) << outcome.sentence;
        EXPECT_EQ(work.text(1, "user"), "Stamp\n\n\f");
        EXPECT_NE(run("pdftotext " + quoted(work.task.output) + " -").status, 0);
        EXPECT_EQ(run("qpdf --check --password=owner " + quoted(work.task.output)).status, 0);
    }
}

TEST(PdfStructure, APasswordIsKnownHoweverTheDocumentSpellsIt) {
    for (const char* cipher : {"256", "128 --use-aes=y", "128 --use-aes=n", "40"}) {
        SCOPED_TRACE(cipher);
        const bool isUnicode = std::string(cipher) == "256";
        Work work(document(1, kPage, "0 0 9 9 re f"));
        work.makeOver("--allow-weak-crypto --password-mode=bytes --encrypt " +
                      std::string(isUnicode ? "gr\xc3\xbcn" : "gr\xfcn") + " owner " + cipher + " --");
        work.task.password = "gr\xc3\xbcn";
        EXPECT_EQ(engine::countPages(work.task), 1U);
        const auto outcome = work.stamp();
        EXPECT_TRUE(outcome) << outcome.sentence;
        work.task.password = "gr\xc3\xb6n";
        EXPECT_EQ(work.stamp().sentence, "The password is wrong.");
    }
}

TEST(PdfStructure, ADocumentThatForbidsChangesNeedsItsOwnersPassword) {
    Work work(document(1, kPage, "0 0 9 9 re f"));
    work.makeOver("--encrypt '' owner 256 --modify=none --");
    EXPECT_EQ(work.stamp().code, Code::notPermitted);
    work.task.password = "owner";
    EXPECT_TRUE(work.stamp());
    EXPECT_NE(run("qpdf --show-encryption " + quoted(work.task.output)).output.find("modify anything: not allowed"),
              std::string::npos);
}

TEST(PdfStructure, SignedDocumentsAreLeftAloneUnlessTheJobSaysOtherwise) {
    Work work(
        document(1, kPage, "", "/AcroForm << /Fields [<< /FT /Sig /T (a) /V << /Type /Sig >> >>] /SigFlags 3 >>"));
    EXPECT_EQ(work.stamp().code, Code::isSigned);
    work.task.allowSigned = true;
    EXPECT_TRUE(work.stamp());
}

TEST(PdfStructure, ASignatureCountsWithoutTheFormsFlagAnEmptyFieldDoesNot) {
    const auto form = [](const std::string& value) {
        return "/AcroForm << /Fields [<< /T (a) /Kids [<< /FT /Sig /T (b) " + value + " >>] >>] >>";
    };
    EXPECT_EQ(Work(document(1, kPage, "", form("/V << /Type /Sig >>"))).stamp().code, Code::isSigned);
    EXPECT_EQ(Work(document(1, kPage, "", form(""))).stamp().code, Code::ok);
    // The flag says that there are such fields, be they signed or not.
    EXPECT_EQ(Work(document(1, kPage, "", "/AcroForm << /Fields [] /SigFlags 3 >>")).stamp().code, Code::ok);
    // A field's kind holds for those below it.
    EXPECT_EQ(Work(document(1, kPage, "",
                            "/AcroForm << /Fields [<< /FT /Sig /T (a) /Kids [<< /T (b) /V << /Type /Sig >> >>] >>] >>"))
                  .stamp()
                  .code,
              Code::isSigned);
}

TEST(PdfStructure, CertifiedDocumentsAreRefusedWhateverTheJobSays) {
    Work work(document(1, kPage, "", "/AcroForm << /Fields [] /SigFlags 3 >> /Perms << /DocMDP << /Type /Sig >> >>"));
    work.task.allowSigned = true;
    EXPECT_EQ(work.stamp().code, Code::certified);
}

TEST(PdfStructure, APageThatStandsTwiceInTheTreeGetsTheStampOfEachPlace) {
    DocumentBytes file;
    file.add("<< /Type /Catalog /Pages 2 0 R >>");
    file.add("<< /Type /Pages /Kids [3 0 R 3 0 R] /Count 2 /MediaBox [0 0 300 200] >>");
    file.add("<< /Type /Page /Parent 2 0 R >>");
    Work work(file.bytes());
    work.task.configurations[0]->setTitleTokens(std::make_shared<const std::vector<host::TitleToken>>(
        std::vector<host::TitleToken>{std::u16string(u"%pageNumber%")}));
    const auto outcome = work.stamp();
    ASSERT_TRUE(outcome) << outcome.sentence;
    EXPECT_TRUE(outcome.warnings.empty()) << outcome.warnings.front().sentence();
    EXPECT_EQ(work.text(1), "1\n\n\f");
    EXPECT_EQ(work.text(2), "2\n\n\f");
}

TEST(PdfStructure, WhatIsNoPageIsPassedOverInTheTree) {
    const struct {
        const char* what;
        const char* kids;
        const char* node; ///< Object 5.
        int stated;
        int pages;
    } trees[] = {
        {"null", "[3 0 R null 4 0 R]", "null", 2, 2},
        {"a null that was counted", "[3 0 R null 4 0 R]", "null", 3, 2},
        {"a reference to nothing", "[3 0 R 99 0 R 4 0 R]", "null", 2, 2},
        {"a reference to null", "[5 0 R 3 0 R 4 0 R]", "null", 2, 2},
        {"a number", "[3 0 R 4 0 R 5 0 R]", "17", 3, 2},
        {"null in a node below", "[3 0 R 5 0 R]", "<< /Type /Pages /Parent 2 0 R /Kids [null 4 0 R] /Count 2 >>", 3, 2},
        {"null beside a page that stands twice", "[3 0 R null 4 0 R 3 0 R]", "null", 4, 3},
    };
    for (const auto& tree : trees)
        for (const auto saving : {engine::Saving::automatic, engine::Saving::rewrite}) {
            SCOPED_TRACE(tree.what);
            Folder folder;
            DocumentBytes file;
            file.add("<< /Type /Catalog /Pages 2 0 R >>");
            file.add("<< /Type /Pages /MediaBox [0 0 300 200] /Kids " + std::string(tree.kids) + " /Count " +
                     std::to_string(tree.stated) + " >>");
            file.add("<< /Type /Page /Parent 2 0 R >>");
            file.add("<< /Type /Page /Parent 2 0 R >>");
            file.add(tree.node);
            writeFile(folder / "in.pdf", file.bytes());
            const auto with = configuration(u"");
            with->setTitle(
                {std::u16string(u"%pageNumber%"), std::u16string(u" of "), std::u16string(u"%recordPageCount%")});
            auto task = job(folder / "in.pdf", folder / "out.pdf", {with});
            task.saving = saving;
            const auto outcome = engine::stampFile(task);
            ASSERT_TRUE(outcome) << outcome.sentence;
            EXPECT_EQ(outcome.pagesStamped, static_cast<std::size_t>(tree.pages));
            ASSERT_EQ(outcome.warnings.size(), 1U);
            EXPECT_EQ(outcome.warnings.front().kind, engine::Warning::Kind::repaired);
            EXPECT_EQ(engine::countPages(task), static_cast<std::size_t>(tree.pages));
            const auto count = std::to_string(tree.pages);
            std::string text;
            for (int page = 1; page <= tree.pages; ++page)
                text += std::to_string(page) + " of " + count + "\n\n\f";
            EXPECT_EQ(run("pdftotext " + quoted(folder / "out.pdf") + " -").output, text);
            EXPECT_EQ(run("qpdf --show-npages " + quoted(folder / "out.pdf")).output, count + "\n");
            EXPECT_NE(run("pdfinfo " + quoted(folder / "out.pdf")).output.find("Pages:           " + count + "\n"),
                      std::string::npos);
            EXPECT_EQ(run("qpdf --check " + quoted(folder / "out.pdf")).status, 0);
        }
}

TEST(PdfStructure, ATreeOfNothingButNullHasNoPages) {
    Folder folder;
    DocumentBytes file;
    file.add("<< /Type /Catalog /Pages 2 0 R >>");
    file.add("<< /Type /Pages /Kids [null 7 0 R] /Count 2 >>");
    writeFile(folder / "in.pdf", file.bytes());
    const auto outcome = engine::stampFile(job(folder / "in.pdf", folder / "out.pdf", {configuration(u"x")}));
    EXPECT_EQ(outcome.sentence, "The document has no pages.");
}

TEST(PdfStructure, RepairedDocumentsAreReported) {
    auto bytes = document(1, kPage, "0 0 9 9 re f");
    bytes.replace(bytes.find("startxref"), 9, "startnoth");
    Work work("junk before the header\n" + bytes);
    const auto outcome = work.stamp();
    ASSERT_TRUE(outcome) << outcome.sentence;
    EXPECT_EQ(outcome.warnings.size(), 1U);
    EXPECT_EQ(work.text(), "Stamp\n\n\f");
}

TEST(PdfStructure, TheSameJobGivesTheSameBytes) {
    Work work(document(3, kPage, "0 0 9 9 re f"), u"Same every time");
    ASSERT_TRUE(work.stamp());
    const auto first = readFile(work.task.output);
    ASSERT_TRUE(work.stamp());
    EXPECT_EQ(readFile(work.task.output), first);
}

TEST(PdfStructure, StampingTwiceAddsASecondStamp) {
    Work work(document(1, kPage, "0 0 9 9 re f"));
    ASSERT_TRUE(work.stamp());
    auto again = work.task;
    again.input = work.task.output;
    again.output = work.folder / "again.pdf";
    again.configurations[0]->setPosition(8);
    ASSERT_TRUE(engine::stampFile(again));
    const auto text = run("pdftotext -q " + quoted(again.output) + " -").output;
    EXPECT_EQ(text, "Stamp\n\nStamp\n\n\f");
}

TEST(PdfStructure, OddPageAttributesCountAsTheirDefaults) {
    for (const char* entries : {"", "/MediaBox [0 0 0 0]", "/MediaBox (none)", "/MediaBox [0 0 300 200] /Rotate 45",
                                "/MediaBox [0 0 300 200] /Rotate /None", "/MediaBox [0 0 300 200] /UserUnit -1",
                                "/MediaBox [300 200 0 0] /CropBox [900 900 999 999]",
                                "/MediaBox [0 0 300 200] /Contents null", "/MediaBox [0 0 300 200] /Resources 12"}) {
        SCOPED_TRACE(entries);
        Work work(document(1, entries, "0 0 9 9 re f"));
        const auto outcome = work.stamp();
        ASSERT_TRUE(outcome) << outcome.sentence;
        EXPECT_EQ(work.text(), "Stamp\n\n\f");
    }
}

TEST(PdfStructure, ADocumentWhoseTrailerLacksItsSizeComesOutWhole) {
    auto bytes = document(1, kPage, "0 0 9 9 re f");
    bytes.replace(bytes.rfind("/Size"), 7, "       ");
    Work work(bytes);
    ASSERT_TRUE(work.stamp());
    EXPECT_EQ(work.check().find("WARNING"), std::string::npos) << work.check();
}

TEST(PdfStructure, PagesThatShareManyPicturesShareThemStampedToo) {
    constexpr int count = 400;
    // In resources of all pages, in a list of pictures of all pages, and inherited.
    for (const std::string kind : {"resources", "pictures", "inherited"}) {
        SCOPED_TRACE(kind);
        DocumentBytes file;
        file.add("<< /Type /Catalog /Pages 2 0 R >>");
        file.add("");
        file.add("");
        std::string pictures = "<<";
        std::string kids;
        for (int i = 0; i < count; ++i) {
            const int picture = file.addStream(
                "\x80",
                "/Type /XObject /Subtype /Image /Width 1 /Height 1 /BitsPerComponent 8 /ColorSpace /DeviceGray");
            const auto name = " /Im" + std::to_string(i);
            const int content = file.addStream("q 30 0 0 20 40 40 cm" + name + " Do Q");
            pictures += name + " " + std::to_string(picture) + " 0 R";
            kids += std::to_string(file.add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 300 200] /Contents " +
                                            std::to_string(content) + " 0 R" +
                                            (kind == "resources"  ? " /Resources 3 0 R"
                                             : kind == "pictures" ? " /Resources << /XObject 3 0 R >>"
                                                                  : "") +
                                            " >>")) +
                    " 0 R ";
        }
        pictures += " >>";
        const auto resources = "<< /XObject " + pictures + " >>";
        file.replace(2, "<< /Type /Pages /Count " + std::to_string(count) + " /Kids [" + kids + "]" +
                            (kind == "inherited" ? " /Resources " + resources : "") + " >>");
        file.replace(3, kind == "pictures" ? pictures : resources);
        Work work(file.bytes());
        // A different stamp on each page, and one on every second page that stays.
        const auto number = configuration(u"");
        number->identifier = u"number";
        number->setTitle({std::u16string(u"No. "), std::u16string(u"%pageNumber%")});
        const auto other = configuration(u"Stays");
        other->identifier = u"other";
        other->pages = 2;
        other->anchor = 8;
        for (const auto saving : {engine::Saving::automatic, engine::Saving::rewrite}) {
            work.task.saving = saving;
            work.task.configurations = {number, other};
            const auto outcome = work.stamp();
            ASSERT_TRUE(outcome) << outcome.sentence;
            const auto before = std::filesystem::file_size(work.task.input);
            EXPECT_LT(std::filesystem::file_size(work.task.output), before + 30'000 + count * 1'000);
            EXPECT_EQ(work.check().find("WARNING"), std::string::npos) << work.check();
            EXPECT_EQ(work.text(399), "No. 399\n\n\f");
            EXPECT_EQ(work.text(400), "No. 400\n\nStays\n\n\f");

            // The one is removed, the other stays; then it goes too.
            auto back = work.task;
            back.saving = engine::Saving::automatic;
            back.input = work.task.output;
            back.output = work.folder / "back.pdf";
            back.configurations = {number};
            auto removed = engine::unstampFile(back);
            ASSERT_TRUE(removed) << removed.sentence;
            const auto text = run("pdftotext -q -f 399 -l 400 " + quoted(back.output) + " -").output;
            EXPECT_EQ(text, "\fStays\n\n\f");
            back.input = back.output;
            back.output = work.folder / "bare.pdf";
            back.configurations.clear();
            removed = engine::unstampFile(back);
            ASSERT_TRUE(removed) << removed.sentence;
            EXPECT_LT(std::filesystem::file_size(back.output), before + 10'000 + count * 100);
            EXPECT_EQ(work.plain("bare.pdf").find("ImprinterStamp"), std::string::npos);
            for (const int page : {1, 400})
                EXPECT_TRUE(differingArea(shownPage(work.task.input, page), shownPage(back.output, page)).isEmpty());
        }
    }
}
