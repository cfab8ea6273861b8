// SPDX-License-Identifier: MIT
// Each call of a run fails in turn, in each way: there is the old document or the new one, and the message says why.

#include "../support/FailingCalls.h"
#include "Documents.h"
#include "Render.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

using namespace render;
using testing_support::FailingCalls;
using testing_support::SmallSteps;

namespace {

struct Fate {
    int error;
    bool forGood;
};

class StampingFaults : public ::testing::Test {
protected:
    StampingFaults() {
        writeFile(folder / "updated.pdf", document(30, "/MediaBox [0 0 300 200]", "0 0 9 9 re f"));
        writeFile(folder / "rewritten.pdf", readFile(folder / "updated.pdf"));
        for (const char* name : {"a.png", "a.jpg"})
            white(64, 64).save((folder / name).c_str());
        names = folder.names();
    }
    engine::StampJob jobFor(const std::string& name, bool inPlace) {
        auto made = job(folder / name, inPlace ? folder / name : folder / "out", {stamp});
        made.inPlace = inPlace;
        made.deterministic = true;
        made.saving = name == "rewritten.pdf" ? engine::Saving::rewrite : engine::Saving::automatic;
        return made;
    }

    Folder folder;
    std::vector<std::string> names;
    std::shared_ptr<support::PlainConfiguration> stamp = configuration(u"Stamped");
};

} // namespace

TEST_F(StampingFaults, LeaveTheOldDocumentOrTheNewOneAndNothingElse) {
    for (const auto& name : names)
        for (const bool inPlace : {true, false}) {
            const auto old = readFile(folder / name);
            const auto task = jobFor(name, inPlace);
            ASSERT_TRUE(engine::stampFile(task)) << name;
            const auto fresh = readFile(task.output);
            ASSERT_NE(fresh, old);
            for (const auto& [error, forGood] :
                 std::vector<Fate>{{ENOSPC, false}, {ENOSPC, true}, {EIO, false}, {EACCES, false}})
                for (std::size_t number = 1;; ++number) {
                    writeFile(folder / name, old);
                    std::filesystem::remove(folder / "out");
                    engine::Outcome outcome;
                    std::string failed;
                    {
                        FailingCalls calls(number, error, forGood);
                        outcome = engine::stampFile(task);
                        failed = calls.failed();
                    }
                    SCOPED_TRACE(name + (inPlace ? " in place, " : ", ") + failed + " " + std::to_string(number) +
                                 ": " + std::strerror(error) + (forGood ? " for good" : ""));
                    auto expected = names;
                    if (!inPlace && outcome)
                        expected.insert(std::upper_bound(expected.begin(), expected.end(), "out"), "out");
                    EXPECT_EQ(folder.names(), expected);
                    EXPECT_EQ(readFile(folder / name), inPlace && outcome ? fresh : old);
                    if (outcome) {
                        EXPECT_EQ(readFile(task.output), fresh);
                    } else {
                        EXPECT_NE(outcome.sentence.find(std::strerror(error)), std::string::npos) << outcome.sentence;
                        EXPECT_TRUE(outcome.path == task.input || outcome.path == task.output) << outcome.path;
                    }
                    if (failed.empty()) {
                        EXPECT_TRUE(outcome);
                        EXPECT_GT(number, 8U);
                        break;
                    }
                }
            writeFile(folder / name, old);
            std::filesystem::remove(folder / "out");
        }
}

TEST_F(StampingFaults, DoNotIncludeACallThatDoesOnlyAPartOfWhatItIsAskedFor) {
    for (const auto& name : names) {
        SCOPED_TRACE(name);
        const auto task = jobFor(name, false);
        ASSERT_TRUE(engine::stampFile(task));
        const auto fresh = readFile(folder / "out");
        std::filesystem::remove(folder / "out");
        SmallSteps calls;
        const auto outcome = engine::stampFile(task);
        EXPECT_TRUE(outcome) << outcome.sentence;
        EXPECT_EQ(readFile(folder / "out"), fresh);
        EXPECT_GT(calls.steps, 10);
        std::filesystem::remove(folder / "out");
    }
}
