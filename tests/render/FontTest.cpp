// SPDX-License-Identifier: MIT
#include "Documents.h"
#include "Render.h"

#include <AppKit/FontSource.h>

#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>

#include <set>

using namespace render;

namespace {

/// A document stamped with "aaa" in 40 points of a face of this folder's data.
struct Stamped {
    Folder folder;
    engine::Outcome outcome;
    QRect ink;

    Stamped(const std::u16string& face, const std::string& file) {
        const std::string path = std::string(RENDER_TEST_DATA) + "/" + file;
        static std::set<std::string> added;
        if (added.insert(path).second) {
            FcConfigAppFontAddFile(FcConfigGetCurrent(), reinterpret_cast<const FcChar8*>(path.c_str()));
            platform::FontSource::setCurrent(nullptr); // which lists the fonts anew
        }
        const auto with = configuration(u"");
        with->setTitle({support::fontRun(face, 40), std::u16string(u"aaa")});
        writeFile(in(), document(1, "/MediaBox [0 0 300 200]", ""));
        outcome = engine::stampFile(job(in(), out(), {with}));
        EXPECT_TRUE(outcome) << outcome.sentence;
        ink = differingArea(shownPage(in()), shownPage(out()));
    }
    std::filesystem::path in() const { return folder / "in.pdf"; }
    std::filesystem::path out() const { return folder / "out.pdf"; }
};

} // namespace

TEST(Fonts, AnInstanceOfAVariableFileIsEmbeddedWithItsOwnShapes) {
    const Stamped regular(u"TestAxis-Regular", "axis.ttf");
    const Stamped black(u"Test-Axis", "axis.ttf");
    EXPECT_TRUE(regular.outcome.warnings.empty()) << regular.outcome.warnings.front().sentence();
    EXPECT_TRUE(black.outcome.warnings.empty()) << black.outcome.warnings.front().sentence();
    EXPECT_EQ(run("pdftotext " + quoted(black.out()) + " -").output, "aaa\n\n\f");
    EXPECT_NE(run("pdffonts " + quoted(black.out())).output.find("yes yes yes"), std::string::npos);
    // Boxes begin at 50 and end at 250 or 550 of 1000 units, 600 apart.
    EXPECT_NEAR(regular.ink.width(), (2 * 600 + 200) * 0.04, 1.5);
    EXPECT_NEAR(black.ink.width(), (2 * 600 + 500) * 0.04, 1.5);
}

TEST(Fonts, AFaceThatMayNotBeEmbeddedIsDrawnAsOutlinesAndReported) {
    const Stamped result(u"TestRestricted-Regular", "restricted.ttf");
    ASSERT_EQ(result.outcome.warnings.size(), 1U);
    EXPECT_NE(result.outcome.warnings.front().sentence().find("TestRestricted-Regular"), std::string::npos);
    EXPECT_EQ(run("pdffonts " + quoted(result.out())).output.find("TestRestricted"), std::string::npos);
    EXPECT_NEAR(result.ink.width(), (2 * 600 + 200) * 0.04, 1.5);
    EXPECT_NEAR(result.ink.height(), 700 * 0.04, 1.5);
}
