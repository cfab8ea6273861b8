// SPDX-License-Identifier: MIT
// Programs that are killed at random moments: nothing that was saved is lost, and nothing is damaged.

#include "../render/Documents.h"
#include "../render/Render.h"
#include "Reliability.h"

#include <Foundation/NSString.h>
#include <store/Store.h>

#include <chrono>

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace render;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

/// Runs `work` in a process of its own, and kills that at a random moment within `span` from when `isReady` answers.
/// Answers whether it was still at work.
template <class Work, class IsReady>
bool killed(std::mt19937& random, Clock::duration span, const Work& work, const IsReady& isReady) {
    const auto child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    isReady();
    const auto end = Clock::now() + Clock::duration(std::uniform_int_distribution<Clock::rep>(0, span.count())(random));
    int status = 0;
    // The moment is what is tried; a process that has ended is not waited for.
    while (Clock::now() < end)
        if (::waitpid(child, &status, WNOHANG) == child)
            return false;
    ::kill(child, SIGKILL);
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status);
}

/// Removes what is hidden in `folder`, which only a killed program leaves; answers how many files it were.
int removeHidden(const Folder& folder) {
    int count = 0;
    for (const auto& name : folder.names())
        if (name.starts_with('.')) {
            fs::remove(folder / name);
            ++count;
        }
    return count;
}

} // namespace

TEST(Kills, DuringSavesLoseNothingThatWasSavedAndDamageNothing) {
    const int rounds = reliability::rounds(60);
    std::mt19937 random(reliability::seed());
    const Folder folder;
    const auto file = folder / "configurations.json";
    int saved = 0; // the last save that is known to be done
    int atWork = 0;
    int leftovers = 0;
    for (int round = 0; round < rounds; ++round) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const auto save = [&] {
            store::Store store(file);
            model::ImprinterModel model;
            model.setConfigurations(store.load().configurations);
            const auto first = model.configurations()->front();
            for (int number = saved + 1;; ++number) {
                // The file grows and shrinks by turns.
                first->setCustomOccurance(std::u16string(number % 2 ? 20'000 : 3, u'1'));
                first->setName(platform::fromUtf8(std::to_string(number)));
                if (store.save(model) || ::write(ends[1], &number, sizeof number) != sizeof number)
                    ::_exit(1);
            }
        };
        int number = 0;
        atWork += killed(random, std::chrono::milliseconds(20), save, [&] {
            ::close(ends[1]);
            (void)!::read(ends[0], &number, sizeof number);
        });
        int next = 0;
        while (::read(ends[0], &next, sizeof next) == sizeof next)
            number = next;
        ::close(ends[0]);
        ASSERT_GT(number, saved);
        saved = number;

        const auto result = store::Store(file).read();
        ASSERT_TRUE(result.messages.empty()) << platform::toUtf8(result.messages.front().sentence);
        const auto& first = result.configurations.at(0);
        const auto found = std::stoi(platform::toUtf8(first->name()));
        // The one after may have been done before anybody could be told.
        ASSERT_TRUE(found == saved || found == saved + 1) << found << " in place of " << saved;
        ASSERT_EQ(first->customOccurance()->size(), found % 2 ? 20'000U : 3U);
        saved = found;
        int newer = found; // each is older than the one before
        for (int version = 1; version <= 3; ++version) {
            const auto former = store::Store(file).previousVersion(version);
            if (!fs::exists(former))
                continue;
            const auto kept = store::Store(former).read();
            ASSERT_FALSE(kept.standIns) << former;
            const auto name = kept.configurations.at(0)->name();
            ASSERT_LT(std::stoi(platform::toUtf8(name)), newer) << former;
            newer = std::stoi(platform::toUtf8(name));
        }
        leftovers += removeHidden(folder);
    }
    EXPECT_EQ(atWork, rounds);
    std::cout << rounds << " kills, " << saved << " saves, " << leftovers << " temporary files left by them\n";
}

TEST(Kills, DuringStampingInPlaceLeaveTheOldDocumentOrTheNewOne) {
    const int rounds = reliability::rounds(60);
    std::mt19937 random(reliability::seed());
    const Folder folder;
    const auto file = folder / "letter.pdf";
    const auto old = document(200, "/MediaBox [0 0 300 200]", "0 0 9 9 re f");
    auto task = job(file, file, {configuration(u"Stamped")});
    task.inPlace = true;
    task.deterministic = true;
    int counts[2] = {0, 0};
    int atWork = 0;
    int leftovers = 0;
    for (const auto saving : {engine::Saving::update, engine::Saving::rewrite}) {
        task.saving = saving;
        writeFile(file, old);
        ASSERT_TRUE(engine::stampFile(task));
        const auto fresh = readFile(file);
        ASSERT_NE(fresh, old);
        const auto stamp = [&] { (void)engine::stampFile(task); };
        // As long as it takes a process that is left alone.
        const auto start = Clock::now();
        for (int i = 0; i < 5; ++i) {
            writeFile(file, old);
            killed(random, std::chrono::hours(1), stamp, [] {});
        }
        const auto span = (Clock::now() - start) / 5 * 5 / 4;
        // Those that were done before their moment came do not count.
        const auto wanted = atWork + rounds / 2;
        for (int round = 0; atWork < wanted && round < rounds * 20; ++round) {
            writeFile(file, old);
            atWork += killed(random, span, stamp, [] {});
            const auto now = readFile(file);
            ASSERT_TRUE(now == old || now == fresh) << now.size() << " bytes";
            ++counts[now == fresh];
            leftovers += removeHidden(folder);
            ASSERT_EQ(folder.names(), std::vector<std::string>{"letter.pdf"});
        }
    }
    EXPECT_EQ(atWork, rounds / 2 * 2);
    std::cout << atWork << " kills, " << counts[0] << " old and " << counts[1] << " new documents, " << leftovers
              << " temporary files left\n";
}
