// SPDX-License-Identifier: MIT
#include "../support/FailingCalls.h"
#include "model_title.h"
#include "store_support.h"

#include <files/Calls.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <limits>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using model::Configuration;
using store::Code;

mode_t permissionsOf(const std::filesystem::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
}

class Saving : public StoreTest {
protected:
    /// A store that has loaded and saved one configuration, "before".
    Saving() {
        configuration->setName(u"before");
        store.load();
        EXPECT_EQ(sentenceOf(store.save(*model)), "");
        saved = content();
        configuration->setName(u"after");
    }

    void expectNothingLost() const {
        EXPECT_EQ(content(), saved);
        EXPECT_TRUE(othersInFolder().empty()) << "nothing temporary stays behind";
    }

    const std::shared_ptr<Configuration> configuration = Configuration::make(false);
    const std::shared_ptr<model::ImprinterModel> model = modelOf({configuration});
    store::Store store{file};
    std::string saved;
};

TEST_F(Saving, ReplacesTheFileAndLeavesNothingElseBehind) {
    EXPECT_FALSE(store.save(*model));
    EXPECT_EQ(namesOf(store::Store(file).load().configurations), std::vector<std::string>{"after"});
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(Saving, LeavesOpenReadersTheFileTheyOpened) {
    const auto link = folder / "link";
    std::filesystem::create_hard_link(file, link);
    EXPECT_FALSE(store.save(*model));
    EXPECT_EQ(readAll(link), saved) << "the old file is replaced, not written into";
}

TEST_F(Saving, MakesFileAndFoldersForTheUserAlone) {
    const auto old = ::umask(0);
    store::Store deep(folder / "data" / "imprinter" / "configurations.json");
    deep.load();
    EXPECT_EQ(sentenceOf(deep.save(*model)), "");
    ::umask(old);
    EXPECT_EQ(permissionsOf(deep.file()), 0600u);
    EXPECT_EQ(permissionsOf(folder / "data" / "imprinter"), 0700u);
    EXPECT_EQ(permissionsOf(folder / "data"), 0700u);
}

TEST_F(Saving, GoesThroughASymbolicLink) {
    const auto elsewhere = folder / "elsewhere.json";
    std::filesystem::rename(file, elsewhere);
    std::filesystem::create_symlink("elsewhere.json", file);
    EXPECT_EQ(sentenceOf(store.save(*model)), "");
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_NE(readAll(elsewhere).find("after"), std::string::npos);
}

TEST_F(Saving, RefusesByNameWhatHasNoFormInAFile) {
    const auto infinity = std::numeric_limits<double>::infinity();
    const auto nan = std::numeric_limits<double>::quiet_NaN();
    const std::u16string half(1, u'\xD83D');
    struct Case {
        std::function<void(host::ImprinterConfiguration&)> make;
        const char* told;
    };
    using C = host::ImprinterConfiguration;
    for (const auto& [make, told] : std::vector<Case>{
             {[&](C& c) { c.setRotation(nan); }, "The rotation of “x” is not a finite number"},
             {[&](C& c) {
                  c.setOffset({infinity, 0});
              },
              "The horizontal offset of “x” is not a finite number"},
             {[&](C& c) {
                  c.setOffset({0, -infinity});
              },
              "The vertical offset of “x” is not a finite number"},
             {[&](C& c) { c.setBorderThickness(nan); }, "The border thickness of “x” is not a finite number"},
             {[&](C& c) { c.setFillOpacity(infinity); }, "The fill opacity of “x” is not a finite number"},
             {[&](C& c) { c.setFillColour(host::NSColor::colorWithWhite(nan, 1)); },
              "The fill colour of “x” is not a finite number"},
             {[&](C& c) { c.setBorderColour(host::NSColor::colorWithSRGB(0, 0, infinity, 1)); },
              "The border colour of “x” is not a finite number"},
             {[&](C& c) { runAt(c, 0)->setFontSize(nan); }, "The size of font 1 of “x” is not a finite number"},
             {[&](C& c) { runAt(c, 0)->setStrokeWidth(nan); }, "The stroke width of font 1 of “x” is not a finite"},
             {[&](C& c) { runAt(c, 0)->setFullFontName(half); }, "The name of font 1 of “x” has half a surrogate pair"},
             {[&](C& c) { c.setCustomOccurance(half); }, "The page list of “x” has half a surrogate pair"},
             {[&](C& c) {
                  c.setTitleTokens(titleOf({u"good", half + u"bad"}));
              },
              "The title of “x” has half a surrogate pair"},
             {[&](C& c) {
                  c.setTitleTokens(titleOf({u"a", std::make_shared<platform::NSObject>()}));
              },
              "The title of “x” has a token that is neither text nor font"},
             {[&](C& c) { c.setTitleTokens(titleOf({std::shared_ptr<host::ImprinterFont>()})); },
              "The title of “x” has a token that is neither text nor font"},
             {[&](C& c) {
                  c.setTitleTokens(titleOf({std::shared_ptr<platform::NSObject>(), u"b"}));
              },
              "The title of “x” has a token that is neither text nor font"},
             {[&](C& c) { c.setName(u"x" + half); }, "The name of “x\uFFFD” has half a surrogate pair"},
             {[&](C& c) { c.setTitleTokens(titleOf(std::vector<host::TitleToken>(10001, u"t"))); },
              "The title of “x” has more than 10000 tokens"},
         }) {
        const auto bad = Configuration::make(false);
        bad->setName(u"x");
        make(*bad);
        const auto failure = store.save(*modelOf({configuration, bad}));
        ASSERT_TRUE(failure) << told;
        EXPECT_NE(sentenceOf(failure).find(told), std::string::npos) << sentenceOf(failure);
        EXPECT_EQ(failure->file, file);
        EXPECT_TRUE(failure->code == Code::unstorable || failure->code == Code::tooLarge);
        expectNothingLost();
    }
}

TEST_F(Saving, RefusesByNameAMemberThatIsNotInTheList) {
    const auto combined = Configuration::make(true);
    combined->setName(u"all");
    const auto stranger = Configuration::make(false);
    stranger->setName(u"stranger");
    combined->addConfiguration(configuration);
    combined->addConfiguration(stranger);
    const auto failure = store.save(*modelOf({configuration, combined}));
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::unstorable);
    EXPECT_EQ(sentenceOf(failure),
              "The member “stranger” of “all” is not in the list of configurations, and nothing was saved.");
    expectNothingLost();
}

TEST_F(Saving, DoesNotMindWhatACombinedConfigurationKeepsInMemoryOnly) {
    const auto combined = Configuration::make(true);
    combined->setRotation(std::numeric_limits<double>::infinity());
    EXPECT_FALSE(store.save(*modelOf({combined})));
}

TEST_F(Saving, RefusesIdentifiersThatCouldNotBeReadBack) {
    const auto one = Configuration::makeWithID(u"same", false);
    const auto other = Configuration::makeWithID(u"SAME", false);
    for (const auto& bad : {modelOf({one, other}), modelOf({Configuration::makeWithID(u"", false)})}) {
        const auto failure = store.save(*bad);
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->code, Code::unstorable);
        expectNothingLost();
    }
}

TEST_F(Saving, RefusesMoreThanAFileMayHold) {
    store::Store small(file, std::uintmax_t{1} << 20);
    small.load();
    // Each of them takes six bytes.
    configuration->setName(std::u16string(std::size_t{180'000}, u'\x01'));
    const auto failure = small.save(*model);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::tooLarge);
    EXPECT_EQ(sentenceOf(failure), "The file of configurations would be larger than 1 MiB, and nothing was saved.");
    expectNothingLost();
}

TEST_F(Saving, ThatFailsWhileWritingLosesNothingAndCanBeRepeated) {
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit tight{64, old.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    const auto failure = store.save(*model);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, handler);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::unwritable);
    EXPECT_EQ(failure->file, file);
    EXPECT_NE(sentenceOf(failure).find("could not be saved in “" + file.string() + "” (File too large)"),
              std::string::npos)
        << sentenceOf(failure);
    expectNothingLost();
    EXPECT_FALSE(store.save(*model));
}

TEST_F(Saving, ThatIsKilledAtAnyMomentLeavesAWholeFile) {
    for (int round = 0; round < 4; ++round) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const auto child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            // One byte for each save, without end; the file grows and shrinks by turns.
            for (bool large = true;; large = !large) {
                configuration->setName(std::u16string(large ? 20000 : 3, u'x'));
                if (store.save(*model) || ::write(ends[1], "", 1) != 1)
                    ::_exit(1);
            }
        }
        ::close(ends[1]);
        char byte = 0;
        for (int saves = 0; saves < 1 + round; ++saves)
            EXPECT_EQ(::read(ends[0], &byte, 1), 1);
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        ::close(ends[0]);
        const auto result = store.load();
        ASSERT_EQ(sentenceOf(result), "");
        const auto length = result.configurations.at(0)->name().size();
        ASSERT_TRUE(length == 3 || length == 20000) << length;
    }
}

class Leftovers : public Saving {
protected:
    /// Leaves a file in the folder as a killed save would, in the hour before this program started or just now.
    void leave(const std::string& name, bool longAgo = true) const {
        std::ofstream(folder / name) << "half a fi";
        if (longAgo)
            std::filesystem::last_write_time(folder / name,
                                             std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    }
};

TEST_F(Leftovers, OfAKilledSaveGoWithTheNextLoad) {
    leave(".configurations.json.saving-aB3xY9");
    leave(".configurations.json.saving-000000");
    store.load();
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(Leftovers, OfAKilledSaveGoWithTheNextSave) {
    leave(".configurations.json.saving-aB3xY9");
    EXPECT_FALSE(store.save(*model));
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(Leftovers, AreWhatAKilledSaveLeaves) {
    // A child that stops in the middle of a save, because the file may not become as large as it has to.
    const auto child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_CORE, &none);
        const rlimit tight{64, 64};
        ::setrlimit(RLIMIT_FSIZE, &tight);
        (void)store.save(*model);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the save was to be killed";
    ASSERT_EQ(othersInFolder().size(), 2u);
    EXPECT_EQ(othersInFolder()[0], ".configurations.json.lock");
    leave(othersInFolder()[1]);
    store.load();
    expectNothingLost();
}

TEST_F(Leftovers, AreNotTakenForOnesByReading) {
    leave(".configurations.json.saving-aB3xY9");
    store.read();
    EXPECT_EQ(othersInFolder().size(), 1u);
}

TEST_F(Leftovers, AreNotAnythingElse) {
    const std::vector<std::string> others{".configurations.json.backup",         ".configurations.json.saving-aB3xY",
                                          ".configurations.json.saving-aB3xY9Z", ".configurations.json.saving-aB3x.9",
                                          ".others.json.saving-aB3xY9",          "configurations.json.saving-aB3xY9"};
    for (const auto& name : others)
        leave(name);
    std::filesystem::create_directory(folder / ".configurations.json.saving-folder");
    std::filesystem::create_symlink("nowhere", folder / ".configurations.json.saving-linked");
    leave(".configurations.json.saving-justby", false);
    store.load();
    EXPECT_FALSE(store.save(*model));
    EXPECT_EQ(othersInFolder().size(), others.size() + 3);
}

TEST_F(Leftovers, AreLeftWhileAnotherProgramSaves) {
    leave(".configurations.json.saving-aB3xY9");
    const int lock = ::open((folder / ".configurations.json.lock").c_str(), O_RDWR | O_CREAT, 0600);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    store.load();
    EXPECT_EQ(othersInFolder().size(), 2u);
    ::close(lock);
    store.load();
    EXPECT_TRUE(othersInFolder().empty());
}

/// Where another program has its turn: what time would bring is done at each pause, so that nobody waits.
class Waiting : public Saving, public files::Calls {
protected:
    Waiting() { files::setCalls(this); }
    ~Waiting() override { files::setCalls(nullptr); }

    void begin() {
        m_lock = ::open((folder / ".configurations.json.lock").c_str(), O_RDWR | O_CREAT, 0600);
        ASSERT_EQ(::flock(m_lock, LOCK_EX), 0);
    }
    void end() { ::close(m_lock); }
    /// What the other does when it ends by itself.
    void endOrderly() {
        std::filesystem::remove(folder / ".configurations.json.lock");
        end();
    }
    void pause(std::chrono::milliseconds time) override {
        m_waited += time;
        if (onPause)
            onPause(m_waited);
    }

    std::function<void(std::chrono::milliseconds)> onPause;
    std::chrono::milliseconds m_waited{0};

private:
    int m_lock = -1;
};

TEST_F(Waiting, ForAnotherProgramIsSaidAfterAMoment) {
    begin();
    int told = 0;
    store.setOnWait([&] {
        ++told;
        EXPECT_EQ(m_waited, std::chrono::seconds(1));
    });
    onPause = [&](auto waited) {
        if (waited == std::chrono::seconds(3))
            endOrderly();
    };
    EXPECT_EQ(sentenceOf(store.save(*model)), "");
    EXPECT_EQ(told, 1);
    EXPECT_EQ(m_waited, std::chrono::seconds(3));
    EXPECT_NE(content(), saved);
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(Waiting, ShortlyIsNotWorthAWord) {
    begin();
    store.setOnWait([] { ADD_FAILURE(); });
    onPause = [&](auto waited) {
        if (waited == std::chrono::milliseconds(500))
            end(); // killed, so that its file stays
    };
    EXPECT_EQ(sentenceOf(store.save(*model)), "");
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(Waiting, EndsWithAFailureThatSaysWhoIsInTheWay) {
    begin();
    const auto failure = store.save(*model);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::busy);
    EXPECT_EQ(sentenceOf(failure), "Another program has been writing the configurations in “" + file.string() +
                                       "” for 20 seconds, and nothing was saved.");
    EXPECT_EQ(m_waited, std::chrono::seconds(20));
    EXPECT_EQ(content(), saved);
    endOrderly();
    EXPECT_EQ(sentenceOf(store.save(*model)), "");
}

class Locks : public Saving, public testing_support::NetworkLocks {};

TEST_F(Locks, OfANetworkFileSystemAreEnoughForSavesAndJournals) {
    EXPECT_EQ(sentenceOf(store.save(*model)), "");
    configuration->setName(u"unsaved");
    {
        store::Store other(file);
        const auto theirs = modelOf(other.load().configurations);
        theirs->configurations()->front()->setName(u"unsaved");
        EXPECT_EQ(sentenceOf(other.keepUnsaved(*theirs)), "");
        EXPECT_TRUE(store.findUnsaved().empty());
        EXPECT_FALSE(store.hasUnsaved());
    }
    EXPECT_TRUE(store.hasUnsaved());
    const auto found = store.findUnsaved();
    ASSERT_EQ(found.size(), 1u);
    EXPECT_TRUE(store::Store(file).hasUnsaved() == false);
    EXPECT_EQ(refused, 0);
}

TEST_F(Locks, ThatAreNotThereKeepNobodyFromSavingAndLeaveNothingBehind) {
    areThere = false;
    EXPECT_EQ(sentenceOf(store.save(*model)), "");
    EXPECT_NE(content(), saved);
    EXPECT_TRUE(othersInFolder().empty());
    configuration->setName(u"unsaved");
    EXPECT_NE(sentenceOf(store.keepUnsaved(*model)).find("No locks available"), std::string::npos);
    EXPECT_TRUE(othersInFolder().empty());
    EXPECT_GT(refused, 0);
}

TEST_F(Saving, IntoAFolderThatCannotBeMadeIsAFailure) {
    store::Store blocked(folder / "configurations.json" / "imprinter" / "configurations.json");
    const auto failure = blocked.save(*model);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::unwritable);
    expectNothingLost();
}

TEST_F(Saving, DoesNotWriteOverAFileThatWasNeverLoaded) {
    const auto failure = store::Store(file).save(*model);
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::changedElsewhere);
    expectNothingLost();
}

TEST_F(Saving, WritesTheFileAgainWhenItIsGone) {
    std::filesystem::remove(file);
    EXPECT_FALSE(store.save(*model));
    EXPECT_EQ(namesOf(store::Store(file).load().configurations), std::vector<std::string>{"after"});
}

TEST_F(Saving, IsWhatTheModelAsksItsSaverFor) {
    std::optional<store::Failure> failure;
    model->setSaver([&](model::ImprinterModel& asked) { failure = store.save(asked); });
    model->saveConfigurations();
    EXPECT_FALSE(failure);
    EXPECT_NE(content().find("after"), std::string::npos);
}

} // namespace
