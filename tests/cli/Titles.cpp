// SPDX-License-Identifier: MIT
// Titles that are told on the command line instead of by a configuration.

#include "ProgramTest.h"

using namespace cli_test;

namespace {

class Titles : public ProgramTest {
protected:
    /// What the stamp changes on the first page of the letter, in points, and how that page then looks.
    QRect area(const std::string& options) {
        const auto run = imprinter("stamp " + options + " --output out.pdf letter.pdf");
        EXPECT_EQ(run.status, 0) << run.output;
        m_page = render::shownPage(folder / "out.pdf");
        return render::differingArea(render::shownPage(folder / "letter.pdf"), m_page);
    }
    /// How many of the page's pixels have about this colour.
    long count(const QColor& colour) const {
        long found = 0;
        for (int y = 0; y < m_page.height(); ++y)
            for (int x = 0; x < m_page.width(); ++x) {
                const QColor pixel = m_page.pixelColor(x, y);
                found += std::abs(pixel.red() - colour.red()) < 16 && std::abs(pixel.green() - colour.green()) < 16 &&
                         std::abs(pixel.blue() - colour.blue()) < 16;
            }
        return found;
    }
    void SetUp() override { letter(); }
    QImage m_page;
};

constexpr int pageWidth = 595;
constexpr int pageHeight = 842;

} // namespace

TEST_F(Titles, OneCommandPutsARedBorderedTitleWithItsNumbersOnEveryPage) {
    const auto run = imprinter(
        "stamp --title 'RECEIVED page %pageNumber% of %recordPageCount%' --color red --border rectangle letter.pdf");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "letter-stamped.pdf\n");
    for (int page = 1; page <= 3; ++page) {
        EXPECT_TRUE(bears("letter-stamped.pdf", "RECEIVED page " + std::to_string(page) + " of 3")) << page;
        const auto shown = render::shownPage(folder / "letter-stamped.pdf", page, 144);
        const auto box = render::differingArea(render::white(shown.width(), shown.height()), shown);
        // The border's four sides run through, in red.
        const QColor middle = shown.pixelColor(box.center().x(), box.top() + 1);
        EXPECT_EQ(middle, QColor(255, 0, 0)) << page;
        EXPECT_EQ(shown.pixelColor(box.left() + 1, box.center().y()), QColor(255, 0, 0)) << page;
        EXPECT_EQ(shown.pixelColor(box.right() - 1, box.center().y()), QColor(255, 0, 0)) << page;
        EXPECT_EQ(shown.pixelColor(box.center().x(), box.bottom() - 1), QColor(255, 0, 0)) << page;
    }
}

TEST_F(Titles, EachPlaceIsWhereItSays) {
    const auto third = [](int at, int size) { return std::min(2, 3 * at / size); };
    const char* places[] = {"top-left", "top",         "top-right", "left",        "center",
                            "right",    "bottom-left", "bottom",    "bottom-right"};
    for (int i = 0; i < 9; ++i) {
        const auto box = area("--title x --position " + std::string(places[i]));
        EXPECT_EQ(third(box.center().x(), pageWidth), i % 3) << places[i];
        EXPECT_EQ(third(box.center().y(), pageHeight), i / 3) << places[i];
    }
}

TEST_F(Titles, OffsetRunsRightAndUpAndARotationTurns) {
    const auto plain = area("--title 'a long title' --position center");
    const auto moved = area("--title 'a long title' --position center --offset 30,-50.5");
    EXPECT_NEAR(moved.left() - plain.left(), 30, 1);
    EXPECT_NEAR(moved.top() - plain.top(), 50, 1);
    const auto turned = area("--title 'a long title' --position center --rotate 90");
    EXPECT_NEAR(turned.height(), plain.width(), 2);
    EXPECT_NEAR(turned.width(), plain.height(), 2);
}

TEST_F(Titles, ColoursAreNamesOrHexadecimalNumbersWithAnOpacity) {
    area(
        "--title I --size 200 --color '#00f' --border rectangle --border-color lime --thickness 10 --fill '#ffff0080'");
    EXPECT_GT(count({0, 0, 255}), 1000);
    EXPECT_GT(count({0, 255, 0}), 1000);
    EXPECT_GT(count({255, 255, 127}), 1000); // half of yellow over white
    // A fill needs no border.
    area("--title I --fill '#00ff00'");
    EXPECT_GT(count({0, 255, 0}), 100);
}

TEST_F(Titles, TheSizeAndTheFontAreThoseAskedFor) {
    const auto small = area("--title HHHH --size 10");
    const auto large = area("--title HHHH --size 40");
    EXPECT_NEAR(large.height(), 4 * small.height(), 4);
    EXPECT_EQ(imprinter("stamp --title x --font DejaVuSans --output out.pdf letter.pdf").output, "");
    EXPECT_NE(shell("pdffonts out.pdf").output.find("+DejaVuSans "), std::string::npos);
    const auto run = imprinter("stamp --title x --font NoSuchFace --output out.pdf letter.pdf");
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.output.find("NoSuchFace"), std::string::npos) << run.output;
}

TEST_F(Titles, PercentSignsThatEncloseNoNameAreText) {
    ASSERT_EQ(imprinter("stamp --title '100% of 50%, %%, page %pageNumber%' --output out.pdf letter.pdf").status, 0);
    EXPECT_TRUE(bears("out.pdf", "100% of 50%, %%, page 2"));
}

TEST_F(Titles, AConfigurationsStampComesFirstAndPagesAreThoseAskedFor) {
    const auto run =
        imprinter("stamp --configuration 'Page of Pages' --title 'and more' --pages 2 --output out.pdf letter.pdf");
    EXPECT_EQ(run.status, 0) << run.output;
    const auto second = shell("pdftotext -f 2 -l 2 out.pdf -").output;
    EXPECT_NE(second.find("Page 2 of 3"), std::string::npos) << second;
    EXPECT_NE(second.find("and more"), std::string::npos) << second;
    const auto others = shell("pdftotext -f 1 -l 1 out.pdf -; pdftotext -f 3 -l 3 out.pdf -").output;
    EXPECT_EQ(others.find("more"), std::string::npos) << others;
}

TEST_F(Titles, ALaterTitleReplacesTheEarlierOneWhenToldSo) {
    ASSERT_EQ(imprinter("stamp --title first --in-place letter.pdf").status, 0);
    ASSERT_EQ(imprinter("stamp --title second --replace --in-place letter.pdf").status, 0);
    EXPECT_FALSE(bears("letter.pdf", "first"));
    EXPECT_TRUE(bears("letter.pdf", "second"));
    ASSERT_EQ(imprinter("unstamp --in-place letter.pdf").status, 0);
    EXPECT_FALSE(bears("letter.pdf", "second"));
}

TEST_F(Titles, WhatCannotBeReadIsRefusedBeforeAnythingIsStamped) {
    const auto before = files();
    for (const std::string wrong :
         {"--border blob", "--color blob", "--color '#12345'", "--fill '#123456789'", "--border-color ''", "--size 0",
          "--size -1", "--size x", "--size nan", "--thickness -1", "--position middle", "--offset 3", "--offset 1,x",
          "--offset 1e3,0", "--rotate much", "--rotate 1e9"}) {
        const auto run = imprinter("stamp --title x " + wrong + " letter.pdf");
        EXPECT_EQ(run.status, 64) << wrong;
        EXPECT_EQ(run.output.find("imprinter: " + wrong.substr(0, wrong.find(' ')) + " takes "), 0U) << run.output;
        EXPECT_EQ(lines(run.output), 1) << run.output;
    }
    auto run = imprinter("stamp --configuration Received --color red letter.pdf");
    EXPECT_EQ(run.status, 64);
    EXPECT_EQ(run.output, "imprinter: --color says how a --title looks, and there is none\n");
    run = imprinter("stamp --title '' letter.pdf");
    EXPECT_EQ(run.status, 2) << run.output;
    EXPECT_EQ(files(), before);
}

TEST_F(Titles, APictureIsStampedToo) {
    ASSERT_TRUE(render::white(400, 300).save((folder / "scan.png").c_str()));
    ASSERT_EQ(imprinter("stamp --title x --fill blue --output out.png scan.png").status, 0);
    const QImage after((folder / "out.png").c_str());
    const auto box = render::differingArea(render::white(400, 300), after);
    ASSERT_FALSE(box.isEmpty());
    EXPECT_EQ(after.pixelColor(box.left() + 1, box.top() + 1), QColor(0, 0, 255));
}

TEST_F(Titles, ReplacingGivesWayAtTheSamePlaceOnly) {
    letter();
    ASSERT_EQ(imprinter("stamp --title Upper --position top-left --in-place letter.pdf").status, 0);
    ASSERT_EQ(imprinter("stamp --title Lower --position bottom-left --in-place --replace letter.pdf").status, 0);
    EXPECT_TRUE(bears("letter.pdf", "Upper"));
    EXPECT_TRUE(bears("letter.pdf", "Lower"));
    ASSERT_EQ(imprinter("stamp --title Other --position top-left --in-place --replace letter.pdf").status, 0);
    EXPECT_FALSE(bears("letter.pdf", "Upper"));
    EXPECT_TRUE(bears("letter.pdf", "Other"));
    EXPECT_TRUE(bears("letter.pdf", "Lower"));
}

TEST_F(Titles, AnOptionWithOneValueIsRefusedWhereItIsGivenTwice) {
    letter();
    for (const std::string option : {"--title", "--output", "--size"}) {
        const auto run = imprinter("stamp --title a --output out.pdf --size 9 " + option + "=8 letter.pdf");
        EXPECT_EQ(run.status, 64);
        EXPECT_EQ(run.output, "imprinter: " + option + " is given twice\n");
    }
    EXPECT_FALSE(fs::exists(folder / "out.pdf"));
}
