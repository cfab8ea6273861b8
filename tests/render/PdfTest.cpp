// SPDX-License-Identifier: MIT
#include "Documents.h"
#include "Render.h"

#include <gtest/gtest.h>

using namespace render;
using support::fontRun;

namespace {

const char kGreyCorner[] = "0.5 g 5 5 20 20 re f";
const char kPage[] = "/MediaBox [0 0 300 200]";

/// A document in a folder of its own, stamped into out.pdf beside it.
struct Stamped {
    Folder folder;
    engine::Outcome outcome;

    Stamped(const std::string& input, std::vector<std::shared_ptr<support::PlainConfiguration>> with) {
        writeFile(folder / "in.pdf", input);
        outcome = engine::stampFile(job(in(), out(), std::move(with)));
        EXPECT_TRUE(outcome) << outcome.sentence;
    }
    std::filesystem::path in() const { return folder / "in.pdf"; }
    std::filesystem::path out() const { return folder / "out.pdf"; }

    /// What pdftotext finds on a page, without the line ends at the end.
    std::string text(int page = 1) const {
        const auto number = std::to_string(page);
        auto found = run("pdftotext -q -enc UTF-8 -f " + number + " -l " + number + " " + quoted(out()) + " -").output;
        while (!found.empty() && (found.back() == '\n' || found.back() == '\f'))
            found.pop_back();
        return found;
    }
    /// What qpdf complains of.
    std::string complaints() const {
        const auto check = run("qpdf --check " + quoted(out()));
        return check.status == 0 ? "" : check.output;
    }
    QRect changed(const std::string& options = {}) const {
        return differingArea(shownPage(in(), 1, 72, options), shownPage(out(), 1, 72, options));
    }
};

} // namespace

TEST(PdfDocuments, StampedTextCanBeSearchedAndIsEmbeddedAsASubset) {
    const Stamped result(document(1, kPage, kGreyCorner), {configuration(u"Received 21 November")});
    EXPECT_EQ(result.text(), "Received 21 November");
    EXPECT_EQ(result.complaints(), "");
    const auto fonts = run("pdffonts " + quoted(result.out())).output;
    EXPECT_NE(fonts.find("+DejaVuSans"), std::string::npos) << fonts;
    EXPECT_NE(fonts.find("CID TrueType      Identity-H       yes yes yes"), std::string::npos) << fonts;
}

TEST(PdfDocuments, CompactFontsStayCompact) {
    const auto with = configuration(u"");
    with->setTitle({fontRun(u"NimbusSans-Regular", 14), std::u16string(u"Fluffy office AVATAR")});
    const Stamped result(document(1, kPage, kGreyCorner), {with});
    EXPECT_TRUE(result.outcome.warnings.empty()) << result.outcome.warnings.front();
    EXPECT_EQ(result.text(), "Fluffy office AVATAR");
    const auto fonts = run("pdffonts " + quoted(result.out())).output;
    EXPECT_NE(fonts.find("CID Type 0C       Identity-H       yes yes yes"), std::string::npos) << fonts;
    EXPECT_EQ(result.complaints(), "");
}
