// SPDX-License-Identifier: MIT
#include "Render.h"

#include <engine/PreviewStamper.h>

#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <fstream>

using namespace render;

namespace {

class Previews : public testing::Test {
protected:
    Previews() { white(600, 400, QImage::Format_RGB32, 150).save((m_folder / "sample.jpg").c_str(), "jpg", 95); }

    std::filesystem::path sample() const { return m_folder / "sample.jpg"; }

    Folder m_folder;
    Folder m_results;
    engine::PreviewStamper m_stamper{m_results.path()};
};

} // namespace

TEST_F(Previews, TheStampIsShownWhateverPagesItIsMeantFor) {
    for (const int occurrence : {0, 1, 2, 3, 4, 77}) {
        const auto with = configuration(u"Shown");
        with->pages = occurrence;
        const auto outcome = m_stamper.stamp(sample(), with);
        ASSERT_TRUE(outcome) << outcome.sentence;
        const QImage picture(outcome.path.c_str());
        EXPECT_EQ(picture.size(), QSize(600, 400));
        const QRect area = differingArea(picture, QImage(sample().c_str()));
        EXPECT_NEAR(area.left(), 18.0 * 150 / 72, 4) << occurrence;
    }
}

TEST_F(Previews, TwoNamesTakeTurnsBesideOneSpareFile) {
    const auto with = configuration(u"One");
    const auto first = m_stamper.stamp(sample(), with).path;
    const auto bytes = readFile(first);
    with->setTitle({std::u16string(u"Another")});
    const auto second = m_stamper.stamp(sample(), with).path;
    EXPECT_NE(first, second);
    EXPECT_EQ(readFile(first), bytes);
    EXPECT_EQ(m_stamper.stamp(sample(), with).path, first);
    EXPECT_EQ(readFile(first), readFile(second));
    EXPECT_EQ(m_results.names(), (std::vector<std::string>{".spare", second.filename(), first.filename()}));
}

TEST_F(Previews, AStampThatMovedLeavesNothingBehind) {
    const auto with = configuration(u"Moving");
    m_stamper.stamp(sample(), with);
    with->anchor = 8;
    const auto moved = m_stamper.stamp(sample(), with).path;
    const QRect area = differingArea(QImage(moved.c_str()), QImage(sample().c_str()));
    EXPECT_GT(area.left(), 400);
    EXPECT_GT(area.top(), 300);
}

TEST_F(Previews, EachOfManyStampsLeavesNothingOfTheOnesBefore) {
    const QImage plain(sample().c_str());
    const auto wandering = configuration(u"Wandering");
    const auto resting = configuration(u"Resting");
    resting->identifier = u"resting";
    const auto rest = readFile(m_stamper.stamp(sample(), resting).path);
    engine::PreviewStamper fresh(m_folder.path());
    for (int step = 0; step < 40; ++step) {
        wandering->anchor = (step * 5) % 9;
        wandering->setTitle({step % 7 == 3 ? std::u16string(u" ") : std::u16string(u"Step ") + char16_t(u'A' + step)});
        const auto path = m_stamper.stamp(sample(), wandering).path;
        ASSERT_EQ(readFile(path), readFile(fresh.stamp(sample(), wandering).path)) << step;
        if (step % 3 == 0) {
            ASSERT_EQ(readFile(m_stamper.stamp(sample(), resting).path), rest) << step;
        }
    }
}

TEST_F(Previews, WhoHasAnOldResultOpenReadsItToTheEnd) {
    const auto with = configuration(u"Kept");
    const auto first = m_stamper.stamp(sample(), with).path;
    const auto bytes = readFile(first);
    std::ifstream open(first, std::ios::binary);
    for (int step = 0; step < 6; ++step) {
        with->setTitle({std::u16string(1, char16_t(u'A' + step))});
        ASSERT_TRUE(m_stamper.stamp(sample(), with));
    }
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(open), {}), bytes);
}

TEST_F(Previews, OnlyTheLastThreeConfigurationsKeepTheirFiles) {
    for (int i = 0; i < 20; ++i) {
        const auto with = configuration(u"Many");
        with->identifier = u"many-" + platform::fromUtf8(std::to_string(i));
        m_stamper.stamp(sample(), with);
        ASSERT_TRUE(std::filesystem::exists(m_stamper.stamp(sample(), with).path));
    }
    EXPECT_EQ(m_results.names(),
              (std::vector<std::string>{"preview-many-17-0.bmp", "preview-many-17-1.bmp", "preview-many-18-0.bmp",
                                        "preview-many-18-1.bmp", "preview-many-19-0.bmp", "preview-many-19-1.bmp"}));
}

TEST_F(Previews, StampingAgainChangesTheFileThatWasGivenOutLast) {
    const auto with = configuration(u"Before");
    const auto path = m_stamper.stamp(sample(), with).path;
    const auto bytes = readFile(path);
    with->setTitle({std::u16string(u"Afterwards")});
    EXPECT_EQ(m_stamper.stampAgain(sample(), with).path, path);
    EXPECT_NE(readFile(path), bytes);
    EXPECT_NE(m_stamper.stamp(sample(), with).path, path);
}

TEST_F(Previews, TheSampleIsDecodedOnce) {
    const auto with = configuration(u"Once");
    ASSERT_TRUE(m_stamper.stamp(sample(), with));
    const auto time = std::filesystem::last_write_time(sample());
    const auto size = std::filesystem::file_size(sample());
    std::ofstream(sample(), std::ios::binary) << std::string(size, 'x');
    std::filesystem::last_write_time(sample(), time);
    EXPECT_TRUE(m_stamper.stamp(sample(), with)) << "nobody looked into it again";
    std::filesystem::last_write_time(sample(), time + std::chrono::seconds(2));
    EXPECT_FALSE(m_stamper.stamp(sample(), with));
}

TEST_F(Previews, AFailedResultLeavesTheFormerOneWhole) {
    const auto with = configuration(u"Full");
    const auto first = m_stamper.stamp(sample(), with).path;
    const auto bytes = readFile(first);
    // No file can be made in a folder that is not there, and none is left half written.
    const auto aside = m_folder / "aside";
    std::filesystem::rename(m_results.path(), aside);
    EXPECT_EQ(m_stamper.stamp(sample(), with).code, engine::Code::cannotWrite);
    std::filesystem::rename(aside, m_results.path());
    EXPECT_EQ(readFile(first), bytes);
    EXPECT_TRUE(m_stamper.stamp(sample(), with));
}

TEST_F(Previews, AResultThatSomebodyRemovedIsMadeAgain) {
    const auto with = configuration(u"Gone");
    for (int step = 0; step < 6; ++step) {
        const auto path = m_stamper.stamp(sample(), with).path;
        ASSERT_FALSE(QImage(path.c_str()).isNull()) << step;
        for (const auto& name : m_results.names())
            std::filesystem::remove(m_results / name);
    }
}

TEST_F(Previews, AChangedSampleIsReadAgain) {
    const auto with = configuration(u"Sample");
    m_stamper.stamp(sample(), with);
    white(300, 200).save(sample().c_str(), "png");
    EXPECT_EQ(QImage(m_stamper.stamp(sample(), with).path.c_str()).size(), QSize(300, 200));
}

TEST_F(Previews, ABlankTitleShowsTheSampleItself) {
    const auto outcome = m_stamper.stamp(sample(), configuration(u"  "));
    ASSERT_TRUE(outcome);
    EXPECT_TRUE(differingArea(QImage(outcome.path.c_str()), QImage(sample().c_str())).isEmpty());
}

TEST_F(Previews, AnIdentifierThatIsNoFileNameStaysInTheFolder) {
    const auto with = configuration(u"Odd");
    with->identifier = u"../../odd/\u00e9";
    const auto outcome = m_stamper.stamp(sample(), with);
    ASSERT_TRUE(outcome) << outcome.sentence;
    EXPECT_EQ(outcome.path.parent_path(), m_results.path());
}

TEST_F(Previews, AMissingSampleIsSaidToBeUnreadable) {
    EXPECT_EQ(m_stamper.stamp(m_folder / "none.jpg", configuration(u"No")).code, engine::Code::unreadable);
}
