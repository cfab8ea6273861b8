// SPDX-License-Identifier: MIT
// Each call of a save fails in turn, in each way: there is the old file or the new one, and the message says why.

#include "../support/FailingCalls.h"
#include "store_support.h"

#include <files/Calls.h>

#include <cstring>
#include <fstream>
#include <set>

namespace {

using testing_support::FailingCalls;
using testing_support::SmallSteps;

struct Fate {
    int error;
    bool forGood;
};
const std::vector<Fate> fates{{ENOSPC, false}, {ENOSPC, true}, {EIO, false},  {EIO, true},
                              {EACCES, false}, {EACCES, true}, {EPERM, false}};

class Faults : public StoreTest {
protected:
    /// Saves what `prepare` makes, with each call failing in turn, until none is left to fail; `meanwhile` is done
    /// between loading and saving, and `look` after it.
    void eachCallFails(const std::function<void()>& prepare, const std::function<void()>& meanwhile = {},
                       const std::function<void()>& look = {}) {
        for (const auto& [error, forGood] : fates)
            for (std::size_t number = 1;; ++number) {
                isForGood = forGood;
                std::filesystem::remove_all(folder);
                std::filesystem::create_directories(folder);
                prepare();
                std::optional<store::Failure> failure;
                std::string failed;
                store::Store store(file);
                const auto model = modelOf(store.load().configurations);
                if (meanwhile)
                    meanwhile();
                const bool wasThere = std::filesystem::exists(file);
                const auto old = content();
                model->configurations()->front()->setName(u"after");
                {
                    FailingCalls calls(number, error, forGood);
                    failure = store.save(*model);
                    failed = calls.failed();
                }
                if (look)
                    look();
                if (failed.empty()) {
                    EXPECT_FALSE(failure);
                    EXPECT_GT(number, 8u) << "that many calls a save makes at least";
                    break;
                }
                SCOPED_TRACE(failed + " " + std::to_string(number) + ": " + std::strerror(error) +
                             (forGood ? " for good" : ""));
                std::filesystem::create_directories(folder);
                EXPECT_TRUE(othersInFolder().empty()) << othersInFolder().front();
                const bool isOld = content() == old && std::filesystem::exists(file) == wasThere;
                const bool isNew = namesOf(store::Store(file).read().configurations).front() == "after";
                EXPECT_TRUE(isOld || isNew);
                if (failure) {
                    EXPECT_EQ(failure->file, file);
                    EXPECT_NE(sentenceOf(failure).find(file.string()), std::string::npos) << sentenceOf(failure);
                    EXPECT_NE(sentenceOf(failure).find(std::strerror(error)), std::string::npos) << sentenceOf(failure);
                } else {
                    EXPECT_TRUE(isNew) << "nobody is told that all is well when it is not";
                }
                // When the bad day is over, the same is saved.
                EXPECT_EQ(sentenceOf(store.save(*model)), "");
                if (look)
                    look();
                EXPECT_EQ(namesOf(store::Store(file).read().configurations).front(), "after");
            }
    }

    bool isForGood = false; ///< Whether the failing that is being tried goes on.
};

TEST_F(Faults, OfAFirstSaveLeaveNoFileOrAWholeOne) {
    eachCallFails([] {});
}

TEST_F(Faults, OfAFirstSaveIntoAFolderThatIsNotThereLeaveNoFileOrAWholeOne) {
    eachCallFails([&] { std::filesystem::remove_all(folder); });
}

TEST_F(Faults, OfASaveLeaveTheOldFileOrTheNewOne) {
    eachCallFails([&] { put(documentOf(R"({"uniqueID": "a", "name": "before"})")); });
}

class FaultsOfVersions : public Faults {
protected:
    void prepare() const {
        for (const std::string name : {"3", "2", "1"})
            std::ofstream(folder / ("configurations.previous-" + name + ".json"))
                << documentOf(R"({"uniqueID": "a", "name": ")" + name + R"("})");
        put(documentOf(R"({"uniqueID": "a", "name": "before"})"));
    }
    std::string nameIn(const std::filesystem::path& path) const {
        return std::filesystem::exists(path) ? namesOf(store::Store(path).read().configurations).front() : "none";
    }
    /// The names in the file and its former versions, the last one first.
    std::string all() const {
        auto names = nameIn(file);
        for (int number = 1; number <= 3; ++number)
            names += " " + nameIn(store::Store(file).previousVersion(number));
        return names;
    }
};

TEST_F(FaultsOfVersions, OfASaveLeaveThemAsTheyWereOrMoveThemOnWithTheFile) {
    std::set<std::string> seen;
    bool isFirstLook = true;
    const auto prepared = [&] {
        prepare();
        isFirstLook = true;
    };
    eachCallFails(prepared, {}, [&] {
        const auto found = all();
        seen.insert(found);
        // Where the disk stays full in the midst of moving them on, only the oldest may go.
        const bool asTheyWere = found == "before 1 2 3";
        const bool replaced = found == "after before 1 2" || found == "after 1 2 3";
        const bool interrupted = isForGood && found.starts_with("after ") && found.find('1') != std::string::npos &&
                                 found.find('2') != std::string::npos;
        EXPECT_TRUE(replaced || interrupted || (isFirstLook && asTheyWere)) << found;
        isFirstLook = false;
    });
    EXPECT_TRUE(seen.contains("before 1 2 3"));
    EXPECT_TRUE(seen.contains("after 1 2 3"));
    EXPECT_TRUE(seen.contains("after before 1 2"));
}

TEST_F(FaultsOfVersions, SavingAgainAfterAFailureKeepsNothingTwice) {
    for (std::size_t number = 1;; ++number) {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        prepare();
        store::Store store(file);
        const auto model = modelOf(store.load().configurations);
        model->configurations()->front()->setName(u"after");
        std::optional<store::Failure> failure;
        std::string failed;
        {
            FailingCalls calls(number, EIO);
            failure = store.save(*model);
            failed = calls.failed();
        }
        if (failed.empty())
            break;
        for (int again = 0; again < 3; ++again) {
            FailingCalls calls(1, EIO);
            (void)store.save(*model);
        }
        EXPECT_EQ(sentenceOf(store.save(*model)), "");
        const auto found = all();
        EXPECT_TRUE(found == "after before 1 2" || (!failure && found == "after 1 2 3")) << failed << number << found;
    }
}

TEST_F(FaultsOfVersions, WhatAKilledProgramDidNotComeToKeepTheNextSaveKeeps) {
    const auto save = [&](const std::u16string& name) {
        store::Store store(file);
        const auto model = modelOf(store.load().configurations);
        model->configurations()->front()->setName(name);
        EXPECT_EQ(sentenceOf(store.save(*model)), "");
        EXPECT_TRUE(othersInFolder().empty());
    };
    const auto leave = [&](const std::string& name) {
        std::ofstream(folder / ".configurations.json.former-aB3xY9")
            << documentOf(R"({"uniqueID": "a", "name": ")" + name + R"("})");
    };
    prepare();
    leave("killed"); // after the file had come into its place
    save(u"next");
    EXPECT_EQ(all(), "next before killed 1");
    leave("killed again");
    std::filesystem::remove(store::Store(file).previousVersion(2)); // after the last but one had moved on
    save(u"last");
    EXPECT_EQ(all(), "last next killed again before");
    std::filesystem::create_hard_link(file, folder / ".configurations.json.former-aB3xY9");
    save(u"very last"); // before the file came into its place
    EXPECT_EQ(all(), "very last last next killed again");
    leave("killed once more");
    std::filesystem::remove(file); // or was kept aside since
    save(u"begun");
    EXPECT_EQ(all(), "begun killed once more last next");
}

TEST_F(FaultsOfVersions, AFileThatHasAnotherNameTooKeepsItsPermissions) {
    prepare();
    std::filesystem::create_hard_link(file, data / "backup.json");
    std::filesystem::permissions(file, std::filesystem::perms(0644));
    store::Store store(file);
    const auto model = modelOf(store.load().configurations);
    model->configurations()->front()->setName(u"after");
    ASSERT_EQ(sentenceOf(store.save(*model)), "");
    EXPECT_EQ(std::filesystem::status(data / "backup.json").permissions(), std::filesystem::perms(0644));
    model->configurations()->front()->setName(u"later");
    ASSERT_EQ(sentenceOf(store.save(*model)), "");
    EXPECT_EQ(std::filesystem::status(store.previousVersion(1)).permissions(), std::filesystem::perms(0600));
}

TEST_F(FaultsOfVersions, WithoutHardLinksTheyAreCopied) {
    struct NoLinks : files::Calls {
        NoLinks() { files::setCalls(this); }
        ~NoLinks() override { files::setCalls(nullptr); }
        int link(const char*, const char*) override {
            errno = EPERM;
            return -1;
        }
    };
    prepare();
    store::Store store(file);
    const auto model = modelOf(store.load().configurations);
    model->configurations()->front()->setName(u"after");
    {
        const NoLinks calls;
        EXPECT_EQ(sentenceOf(store.save(*model)), "");
    }
    EXPECT_EQ(all(), "after before 1 2");
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(Faults, OfASaveThatJoinsLeaveTheirsOrBoth) {
    eachCallFails(
        [&] { put(documentOf(R"({"uniqueID": "a", "name": "before"}, {"uniqueID": "b", "name": "b"})")); },
        [&] { put(documentOf(R"({"uniqueID": "a", "name": "before"}, {"uniqueID": "b", "name": "theirs"})")); },
        [&] { EXPECT_NE(content().find("theirs"), std::string::npos); });
}

TEST_F(Faults, OfAJournalLeaveTheOldJournalOrTheNewOne) {
    for (const auto& [error, forGood] : fates)
        for (std::size_t number = 1;; ++number) {
            SCOPED_TRACE(std::to_string(number) + ": " + std::strerror(error));
            std::filesystem::remove_all(folder);
            std::filesystem::create_directory(folder);
            put(documentOf(R"({"uniqueID": "a", "name": "before"})"));
            std::optional<store::Failure> failure;
            bool reached = false;
            {
                store::Store store(file);
                const auto model = modelOf(store.load().configurations);
                model->configurations()->front()->setName(u"first");
                ASSERT_FALSE(store.keepUnsaved(*model));
                model->configurations()->front()->setName(u"second");
                FailingCalls calls(number, error, forGood);
                failure = store.keepUnsaved(*model);
                reached = calls.wasReached();
            }
            EXPECT_EQ(othersInFolder().size(), 1u);
            store::Store next(file);
            EXPECT_TRUE(next.hasUnsaved());
            const auto model = modelOf(next.load().configurations);
            const auto found = next.findUnsaved();
            ASSERT_EQ(found.size(), 1u);
            ASSERT_FALSE(next.takeOver(found[0], *model));
            const auto name = model->configurations()->front()->name();
            EXPECT_TRUE(name == u"second" || (failure && name == u"first"));
            if (!reached) {
                EXPECT_GT(number, 3u);
                break;
            }
        }
}

TEST_F(Faults, OfAReadLoseNothingOfTheFile) {
    for (const int error : {EIO, EACCES})
        for (std::size_t number = 1;; ++number) {
            put(documentOf(R"({"uniqueID": "a", "name": "before"})"));
            const auto old = content();
            store::Store store(file);
            store::LoadResult result;
            bool reached = false;
            {
                FailingCalls calls(number, error);
                result = store.load();
                reached = calls.wasReached();
            }
            const auto others = othersInFolder();
            if (others.empty()) {
                EXPECT_EQ(content(), old);
                EXPECT_TRUE(!result.standIns || result.readOnly);
            } else {
                EXPECT_EQ(error, EACCES) << "any other error may be gone the next time";
                ASSERT_EQ(others.size(), 1U);
                std::ifstream aside(folder / others.front());
                EXPECT_EQ(std::string(std::istreambuf_iterator<char>(aside), {}), old) << "it is kept aside as a whole";
                EXPECT_NE(sentenceOf(result).find(others.front()), std::string::npos) << sentenceOf(result);
                std::filesystem::remove(folder / others.front());
            }
            if (!reached)
                break;
            if (result.standIns) {
                EXPECT_NE(sentenceOf(result).find(std::strerror(error)), std::string::npos) << sentenceOf(result);
            }
        }
}

TEST_F(Faults, DoNotIncludeACallThatDoesOnlyAPartOfWhatItIsAskedFor) {
    put(documentOf(R"({"uniqueID": "a", "name": "before"})"));
    store::Store store(file);
    SmallSteps calls;
    const auto model = modelOf(store.load().configurations);
    EXPECT_EQ(model->configurations()->front()->name(), u"before");
    model->configurations()->front()->setName(u"after");
    EXPECT_EQ(sentenceOf(store.save(*model)), "");
    EXPECT_EQ(namesOf(store::Store(file).read().configurations), std::vector<std::string>{"after"});
    EXPECT_GT(calls.steps, 100);
}

} // namespace
