// SPDX-License-Identifier: MIT
#include "Documents.h"
#include "Render.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace render;
using engine::Code;
using engine::Saving;

namespace {

const char kPage[] = "/MediaBox [0 0 300 200]";
const char kContent[] = "q 0.5 g 5 5 200 100 re f";

std::shared_ptr<support::PlainConfiguration> titled(const std::u16string& title, const std::u16string& identifier,
                                                    int anchor) {
    auto with = configuration(title);
    with->identifier = identifier;
    with->anchor = anchor;
    return with;
}

std::string textOf(const std::filesystem::path& document) {
    return run("pdftotext -q " + quoted(document) + " -").output;
}

bool rendersAlike(const std::filesystem::path& one, const std::filesystem::path& other, int pages) {
    for (int page = 1; page <= pages; ++page)
        if (!differingArea(shownPage(one, page), shownPage(other, page)).isEmpty())
            return false;
    return true;
}

} // namespace

TEST(Removal, GivesBackPagesThatRenderAsBefore) {
    const std::string inputs[] = {document(2, kPage, kContent), document(2, kPage, ""),
                                  document(2, std::string(kPage) + " /Rotate 90", "")};
    for (const auto& input : inputs)
        for (const auto saving : {Saving::automatic, Saving::rewrite}) {
            SCOPED_TRACE(input);
            Folder folder;
            writeFile(folder / "in.pdf", input);
            auto task =
                job(folder / "in.pdf", folder / "stamped.pdf", {titled(u"One", u"1", 0), titled(u"Two", u"2", 8)});
            task.saving = saving;
            ASSERT_TRUE(engine::stampFile(task));
            ASSERT_NE(textOf(folder / "stamped.pdf").find("One"), std::string::npos);
            const auto outcome = engine::unstampFile(job(folder / "stamped.pdf", folder / "clean.pdf", {}));
            ASSERT_TRUE(outcome) << outcome.sentence;
            EXPECT_EQ(outcome.pagesStamped, 2U);
            EXPECT_EQ(textOf(folder / "clean.pdf"), "\f\f");
            EXPECT_TRUE(rendersAlike(folder / "in.pdf", folder / "clean.pdf", 2));
            const auto plain = run("qpdf --qdf --object-streams=disable " + quoted(folder / "clean.pdf") + " -").output;
            EXPECT_EQ(plain.find("ImprinterStamp"), std::string::npos);
            EXPECT_EQ(plain.find("DejaVu"), std::string::npos);
            EXPECT_EQ(run("qpdf --check " + quoted(folder / "clean.pdf")).status, 0);
        }
}

TEST(Removal, OfOneConfigurationLeavesTheOthers) {
    Folder folder;
    writeFile(folder / "in.pdf", document(2, kPage, kContent));
    const auto one = titled(u"One", u"1", 0);
    const auto two = titled(u"Two", u"2", 8);
    two->pages = 1;
    ASSERT_TRUE(engine::stampFile(job(folder / "in.pdf", folder / "both.pdf", {one, two})));
    const auto outcome = engine::unstampFile(job(folder / "both.pdf", folder / "out.pdf", {two}));
    ASSERT_TRUE(outcome) << outcome.sentence;
    EXPECT_EQ(outcome.pagesStamped, 1U);
    EXPECT_EQ(textOf(folder / "out.pdf"), "One\n\n\fOne\n\n\f");
    ASSERT_TRUE(engine::stampFile(job(folder / "in.pdf", folder / "alone.pdf", {one})));
    EXPECT_TRUE(rendersAlike(folder / "alone.pdf", folder / "out.pdf", 2));
}

TEST(Removal, WhereNoStampIsSaysSoAndWritesNothing) {
    Folder folder;
    writeFile(folder / "in.pdf", document(1, kPage, "/Artifact <</ImprinterStamp 5>> BDC 0 0 9 9 re f EMC"));
    EXPECT_EQ(engine::unstampFile(job(folder / "in.pdf", folder / "out.pdf", {})).code, Code::nothingToRemove);
    white(20, 20).save((folder / "a.png").c_str());
    EXPECT_EQ(engine::unstampFile(job(folder / "a.png", folder / "out.pdf", {})).code, Code::unsupported);
    EXPECT_FALSE(std::filesystem::exists(folder / "out.pdf"));
}

TEST(Removal, FindsStampsThatAnotherProgramWroteAnew) {
    for (const std::string how :
         {"qpdf --coalesce-contents --normalize-content=y", "qpdf --qdf --object-streams=generate"}) {
        SCOPED_TRACE(how);
        Folder folder;
        writeFile(folder / "in.pdf", document(1, kPage, kContent));
        ASSERT_TRUE(engine::stampFile(job(folder / "in.pdf", folder / "stamped.pdf", {titled(u"One", u"1", 0)})));
        ASSERT_EQ(run(how + " " + quoted(folder / "stamped.pdf") + " " + quoted(folder / "other.pdf")).status, 0);
        const auto outcome = engine::unstampFile(job(folder / "other.pdf", folder / "clean.pdf", {}));
        ASSERT_TRUE(outcome) << outcome.sentence;
        EXPECT_EQ(textOf(folder / "clean.pdf"), "\f");
        EXPECT_TRUE(rendersAlike(folder / "in.pdf", folder / "clean.pdf", 1));
    }
}

TEST(Replacing, TwiceGivesWhatOnceGives) {
    for (const auto saving : {Saving::automatic, Saving::rewrite}) {
        Folder folder;
        writeFile(folder / "in.pdf", document(3, kPage, kContent));
        auto task = job(folder / "in.pdf", folder / "once.pdf", {titled(u"One", u"1", 8), titled(u"Two", u"2", 0)});
        task.saving = saving;
        task.replace = true;
        task.deterministic = true;
        ASSERT_TRUE(engine::stampFile(task));
        task.input = folder / "once.pdf";
        task.output = folder / "twice.pdf";
        ASSERT_TRUE(engine::stampFile(task));
        task.input = folder / "twice.pdf";
        task.output = folder / "thrice.pdf";
        ASSERT_TRUE(engine::stampFile(task));
        for (const char* name : {"twice.pdf", "thrice.pdf"}) {
            EXPECT_EQ(textOf(folder / name), textOf(folder / "once.pdf"));
            EXPECT_TRUE(rendersAlike(folder / "once.pdf", folder / name, 3));
            EXPECT_EQ(run("qpdf --check " + quoted(folder / name)).status, 0);
        }
        if (saving == Saving::rewrite) {
            EXPECT_EQ(readFile(folder / "twice.pdf").size(), readFile(folder / "once.pdf").size());
        }
    }
}

TEST(Replacing, TakesThePlaceOfTheOldStampAndLeavesThoseOfOthers) {
    Folder folder;
    writeFile(folder / "in.pdf", document(2, kPage, kContent));
    const auto other = titled(u"Other", u"2", 0);
    ASSERT_TRUE(engine::stampFile(job(folder / "in.pdf", folder / "a.pdf", {titled(u"Draft", u"1", 8), other})));
    // The new one is for the first page only: the second loses the old one.
    const auto fresh = titled(u"Final", u"1", 2);
    fresh->pages = 1;
    auto task = job(folder / "a.pdf", folder / "b.pdf", {fresh});
    task.replace = true;
    ASSERT_TRUE(engine::stampFile(task));
    const auto text = textOf(folder / "b.pdf");
    EXPECT_EQ(text.find("Draft"), std::string::npos);
    EXPECT_EQ(text, "Other\n\nFinal\n\n\fOther\n\n\f");
    ASSERT_TRUE(engine::stampFile(job(folder / "in.pdf", folder / "c.pdf", {other, fresh})));
    EXPECT_TRUE(rendersAlike(folder / "c.pdf", folder / "b.pdf", 2));
}

namespace {

/// Three pages that share their resources: a long list of forms, as a dictionary of its own, or in the tree.
std::string sharingForms(bool ofItsOwn) {
    DocumentBytes file;
    file.add("<< /Type /Catalog /Pages 2 0 R >>");
    file.add("");
    std::string kids;
    for (int page = 0; page < 3; ++page)
        kids += std::to_string(file.add("<< /Type /Page /Parent 2 0 R /Contents 6 0 R >>")) + " 0 R ";
    file.addStream(kContent);
    const auto form = std::to_string(file.addStream("", "/Type /XObject /Subtype /Form /BBox [0 0 1 1]")) + " 0 R ";
    std::string forms = "<<";
    for (int i = 0; i < 40; ++i)
        forms += "/AnotherForm" + std::to_string(i) + ' ' + form;
    forms += ">>";
    if (ofItsOwn)
        forms = std::to_string(file.add(forms)) + " 0 R";
    file.replace(2, "<< /Type /Pages /Count 3 /Kids [" + kids + "] /MediaBox [0 0 300 200] /Resources << /XObject " +
                        forms + " >> >>");
    return file.bytes();
}

} // namespace

TEST(Replacing, OnSomePagesLeavesTheOthersTheirStamps) {
    const std::string inputs[] = {document(3, kPage, kContent), sharingForms(false), sharingForms(true)};
    for (const auto& input : inputs)
        for (const auto saving : {Saving::update, Saving::rewrite}) {
            SCOPED_TRACE(input);
            Folder folder;
            writeFile(folder / "in.pdf", input);
            auto task = job(folder / "in.pdf", folder / "in.pdf", {titled(u"Old", u"1", 8), titled(u"Other", u"2", 0)});
            task.inPlace = true;
            ASSERT_TRUE(engine::stampFile(task));
            task.configurations = {titled(u"New", u"1", 8)};
            task.replace = true;
            task.saving = saving;
            task.pages = {{2, 2}};
            const auto outcome = engine::stampFile(task);
            ASSERT_TRUE(outcome) << outcome.sentence;
            EXPECT_EQ(outcome.pagesStamped, 1U);
            EXPECT_EQ(textOf(folder / "in.pdf"), "Other\n\nOld\n\n\fOther\n\nNew\n\n\fOther\n\nOld\n\n\f");
            EXPECT_EQ(run("qpdf --check " + quoted(folder / "in.pdf")).status, 0);

            task.pages = {{3, 9}};
            ASSERT_TRUE(engine::unstampFile(task));
            EXPECT_EQ(textOf(folder / "in.pdf"), "Other\n\nOld\n\n\fOther\n\nNew\n\n\fOther\n\n\f");
            task.pages = {{4, 9}};
            EXPECT_EQ(engine::unstampFile(task).sentence, "The page list names no page of the file.");
        }
}

TEST(Replacing, AgainAndAgainDoesNotMakeTheFileGrow) {
    Folder folder;
    writeFile(folder / "in.pdf", document(20, kPage, kContent));
    auto task = job(folder / "in.pdf", folder / "in.pdf", {titled(u"One", u"1", 8)});
    task.inPlace = true;
    task.replace = true;
    std::uintmax_t second = 0;
    for (int i = 1; i <= 30; ++i) {
        const auto outcome = engine::stampFile(task);
        ASSERT_TRUE(outcome) << outcome.sentence;
        if (i == 2)
            second = std::filesystem::file_size(folder / "in.pdf");
    }
    EXPECT_LE(std::filesystem::file_size(folder / "in.pdf"), second + 64);
    EXPECT_EQ(textOf(folder / "in.pdf").substr(0, 12), "One\n\n\fOne\n\n\f");
}

TEST(Replacing, OnAPictureIsRefusedSinceTheOldStampWouldStay) {
    Folder folder;
    for (const char* name : {"a.png", "a.jpg", "a.tif"}) {
        SCOPED_TRACE(name);
        ASSERT_EQ(run("convert -size 200x100 xc:white " + quoted(folder / name)).status, 0);
        auto task = job(folder / name, folder / "out", {titled(u"One", u"1", 8)});
        task.replace = true;
        const auto outcome = engine::stampFile(task);
        EXPECT_EQ(outcome.code, Code::unsupported);
        EXPECT_EQ(outcome.sentence, "A stamp on a picture is part of the picture and cannot be replaced.");
        EXPECT_FALSE(std::filesystem::exists(folder / "out"));
    }
}

namespace {

/// A page whose second content stream cannot be decoded.
std::string partlyUnreadable(const std::string& filter) {
    DocumentBytes file;
    file.add("<< /Type /Catalog /Pages 2 0 R >>");
    file.add("<< /Type /Pages /Kids [3 0 R] /Count 1 /MediaBox [0 0 300 200] >>");
    file.add("<< /Type /Page /Parent 2 0 R /Contents [4 0 R 5 0 R] >>");
    file.addStream("0.5 g 5 5 20 20 re f");
    file.addStream("xx", "/Filter /" + filter);
    return file.bytes();
}

} // namespace

TEST(Replacing, WorksBehindContentThatCannotBeDecodedAndSaysSo) {
    for (const std::string filter : {"FlateDecode", "Unheard"}) {
        SCOPED_TRACE(filter);
        Folder folder;
        writeFile(folder / "in.pdf", partlyUnreadable(filter));
        auto task = job(folder / "in.pdf", folder / "in.pdf", {titled(u"One", u"1", 8)});
        task.inPlace = true;
        task.replace = true;
        for (int i = 0; i < 3; ++i) {
            const auto outcome = engine::stampFile(task);
            ASSERT_TRUE(outcome) << outcome.sentence;
            EXPECT_EQ(std::count(outcome.warnings.begin(), outcome.warnings.end(),
                                 engine::Warning{engine::Warning::Kind::contentUnread, {"1", "0"}}),
                      1);
            EXPECT_EQ(textOf(folder / "in.pdf"), "One\n\n\f");
        }
        task.configurations = {titled(u"Two", u"2", 0)};
        ASSERT_TRUE(engine::stampFile(task));
        task.configurations = {titled(u"One", u"1", 8)};
        ASSERT_TRUE(engine::unstampFile(task));
        EXPECT_EQ(textOf(folder / "in.pdf"), "Two\n\n\f");
        task.configurations = {};
        ASSERT_TRUE(engine::unstampFile(task));
        EXPECT_EQ(textOf(folder / "in.pdf"), "\f");
        EXPECT_EQ(engine::unstampFile(task).code, Code::nothingToRemove);
        const auto plain = run("qpdf --qdf --object-streams=disable " + quoted(folder / "in.pdf") + " -").output;
        EXPECT_EQ(plain.find("ImprinterStamp"), std::string::npos);
    }
}
