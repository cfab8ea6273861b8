// SPDX-License-Identifier: MIT
// A title set in a face this machine lacks.
#include "MadeFonts.h"

#include <engine/FaceLibrary.h>
#include <model/Configuration.h>
#include <model/FontRun.h>

#include <Foundation/NSString.h>

#include <gtest/gtest.h>

namespace {

TEST(MissingFace, IsAnsweredAsTheFaceThatIsDrawn) {
    model::FontRun run({}, 0);
    run.setFullFontName(u"FromAnotherMachine-Bold");
    run.setFontSize(20);
    engine::FaceLibrary faces;
    EXPECT_EQ(faces.faceNamed("FromAnotherMachine-Bold"), nullptr);
    ASSERT_TRUE(run.font() && faces.defaultFace());
    EXPECT_EQ(platform::toUtf8(run.font()->fontName()), faces.defaultFace()->postScriptName());
    EXPECT_EQ(run.font()->pointSize(), 20);
    EXPECT_EQ(run.fullFontName(), u"FromAnotherMachine-Bold");
    EXPECT_EQ(run.name(), u"Font 1 (missing)");
}

TEST(MissingFace, IsNoneOnceTheFaceIsThere) {
    model::FontRun run({}, 0);
    run.setFullFontName(u"MakerSans-Bold");
    EXPECT_EQ(run.font()->fontName(), u"MakerSans-Bold");
    EXPECT_EQ(run.name(), u"Font 1");
}

} // namespace
