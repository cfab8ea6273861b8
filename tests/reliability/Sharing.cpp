// SPDX-License-Identifier: MIT
// Two windows and a command line that change one store at once: no change is lost.

#include "../render/Render.h"
#include "../support/MemoryDefaults.h"
#include "Reliability.h"

#include "Session.h"

#include <Foundation/NSString.h>

#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using platform::fromUtf8;
using platform::toUtf8;

namespace reliability {

int runWindow(const std::string& name, const std::string& store, unsigned seed) {
    platform::NSUserDefaults::setStandardUserDefaults(std::make_shared<testing_support::MemoryDefaults>());
    std::mt19937 random(seed);
    const auto chance = [&](unsigned oneIn) { return random() % oneIn == 0; };
    std::map<std::u16string, double> mine; // the rotation of each configuration that only this window changes
    std::set<std::u16string> gone;
    std::set<std::string> kept; // what the other window made of the ones that both change, when asked
    // What the last of the questions of a save about each was about: the other window may go on meanwhile.
    std::map<std::string, std::string> asked;
    const std::u16string combined = fromUtf8("all of " + name); // whose members only this window changes
    std::vector<std::u16string> members;
    // Of those that the command line adds the first window deletes some, which the second may be changing or putting
    // into its own just then.
    const bool deletes = name == "one";
    std::map<std::u16string, std::string> renamed;
    std::set<std::u16string> used;
    const auto ofTheCommandLine = [&](const model::ImprinterModel& model) {
        std::vector<std::shared_ptr<host::ImprinterConfiguration>> found;
        for (const auto& configuration : *model.configurations())
            if (configuration->uniqueID().starts_with(u"cli "))
                found.push_back(configuration);
        return found;
    };
    std::map<std::string, int> notices;
    int failures = 0;
    std::unique_ptr<app::Session> session;
    const auto open = [&] {
        session.reset();
        session = std::make_unique<app::Session>(store);
        session->keepJournal();
        session->setOnConflict([&](const store::Conflict& conflict) {
            asked[toUtf8(conflict.mine)] = toUtf8(conflict.theirs);
            return store::Choice::both;
        });
        session->setOnNotices([&](const std::vector<store::Notice>& told) {
            for (const auto& notice : told)
                ++notices[notice.kind == store::Notice::Kind::outlivedDeletionByUse ? "used" : "edited"];
        });
        session->setOnSaveFailure([&](const store::Failure& failure) {
            std::cerr << name << ": " << toUtf8(failure.sentence) << std::endl;
            ++failures;
        });
    };
    open();
    char go = 0;
    for (int round = 1; ::read(STDIN_FILENO, &go, 1) == 1; ++round) {
        auto& model = session->model();
        if (mine.empty() || chance(3)) {
            const auto made = model.createConfiguration(false);
            made->setName(fromUtf8(name + " " + std::to_string(round)));
            mine[made->uniqueID()] = 0;
        }
        auto chosen = std::next(mine.begin(), static_cast<std::ptrdiff_t>(random() % mine.size()));
        model.configurationForID(chosen->first)->setRotation(chosen->second = round % 360);
        if (mine.size() > 1 && chance(4)) {
            chosen = std::next(mine.begin(), static_cast<std::ptrdiff_t>(random() % mine.size()));
            model.deleteConfigurationAtIndex(model.indexOfConfiguration(model.configurationForID(chosen->first)));
            gone.insert(chosen->first);
            std::erase(members, chosen->first);
            mine.erase(chosen);
        }
        const auto own = model.configurationForID(combined);
        if (chance(2)) {
            chosen = std::next(mine.begin(), static_cast<std::ptrdiff_t>(random() % mine.size()));
            own->addConfiguration(model.configurationForID(chosen->first));
            members.push_back(chosen->first);
        }
        if (!members.empty() && chance(4)) {
            const auto member = members[random() % members.size()];
            if (const auto found = model.configurationForID(member))
                own->deleteConfiguration(found);
            std::erase(members, member);
        }
        if (const auto pool = ofTheCommandLine(model); !pool.empty() && chance(2)) {
            const auto picked = pool[pool.size() - 1 - random() % std::min<std::size_t>(pool.size(), 3)];
            const auto identifier = picked->uniqueID();
            if (deletes) {
                // With what was known of it then.
                const auto theirs = model.configurationForID(u"all of two")->configurations();
                const bool isMember = std::find(theirs->begin(), theirs->end(), picked) != theirs->end();
                std::cout << "deleted " << toUtf8(identifier) << (isMember ? " member " : " free ")
                          << toUtf8(picked->name()) << std::endl;
                model.deleteConfigurationAtIndex(model.indexOfConfiguration(picked));
            } else if (chance(2)) {
                renamed[identifier] = "renamed " + std::to_string(round);
                picked->setName(fromUtf8(renamed[identifier]));
            } else if (std::find(members.begin(), members.end(), identifier) == members.end()) {
                own->addConfiguration(picked);
                members.push_back(identifier);
                used.insert(identifier);
            }
        }
        if (chance(15)) {
            chosen = std::next(mine.begin(), static_cast<std::ptrdiff_t>(random() % mine.size()));
            model.configurationForID(u"shared all")->addConfiguration(model.configurationForID(chosen->first));
        }
        if (chance(5))
            model.moveConfigurationAtIndexTo(random() % model.configurations()->size(),
                                             random() % (model.configurations()->size() + 1));
        if (chance(5))
            model.configurationForID(u"shared")->setName(fromUtf8(name + " shares " + std::to_string(round)));
        model.saveConfigurations();
        for (const auto& [own_, theirs] : std::exchange(asked, {}))
            kept.insert(theirs);
        if (chance(30))
            open();
        if (::write(STDOUT_FILENO, "done\n", 5) != 5)
            return 1;
    }
    for (const auto& [identifier, rotation] : mine)
        std::cout << "has " << toUtf8(identifier) << ' ' << rotation << '\n';
    for (const auto& identifier : gone)
        std::cout << "gone " << toUtf8(identifier) << '\n';
    for (const auto& copied : kept)
        std::cout << "kept " << copied << '\n';
    for (const auto& [identifier, last] : renamed)
        std::cout << "renamed " << toUtf8(identifier) << '=' << last << '\n';
    for (const auto& identifier : used)
        std::cout << "used " << toUtf8(identifier) << '\n';
    for (const auto& member : members)
        std::cout << "member " << toUtf8(member) << '\n';
    for (const auto& [kind, count] : notices)
        std::cout << "told " << kind << '=' << count << '\n';
    std::cout << std::flush;
    return failures == 0 ? 0 : 2;
}

} // namespace reliability

namespace {

/// A window in a process of its own.
class Window {
public:
    Window(const std::string& name, const fs::path& store, unsigned seed) {
        int in[2];
        int out[2];
        EXPECT_EQ(::pipe2(in, O_CLOEXEC), 0);
        EXPECT_EQ(::pipe2(out, O_CLOEXEC), 0);
        m_process = ::fork();
        if (m_process == 0) {
            ::dup2(in[0], STDIN_FILENO);
            ::dup2(out[1], STDOUT_FILENO);
            ::execl("/proc/self/exe", "window", "--window", name.c_str(), store.c_str(), std::to_string(seed).c_str(),
                    nullptr);
            ::_exit(127);
        }
        ::close(in[0]);
        ::close(out[1]);
        m_in = in[1];
        m_out = ::fdopen(out[0], "r");
    }
    ~Window() { std::fclose(m_out); }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    void go() { EXPECT_EQ(::write(m_in, "", 1), 1); }
    std::string line() {
        char text[1024];
        return std::fgets(text, sizeof text, m_out) ? std::string(text, std::strcspn(text, "\n")) : std::string();
    }
    /// The exit status; what it printed last can still be read.
    void finish() { ::close(m_in); }
    int status() {
        int status = 0;
        ::waitpid(m_process, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t m_process;
    int m_in;
    std::FILE* m_out;
};

std::string documentOf(const std::string& configurations) {
    return R"({"format": "imprinter-configurations", "version": 1, "configurations": [)" + configurations + "]}";
}

} // namespace

TEST(SharedStore, NoChangeOfTwoWindowsAndACommandLineIsLost) {
    const int rounds = reliability::rounds(25);
    const auto seed = reliability::seed();
    const render::Folder folder;
    const auto file = folder / "configurations.json";
    render::writeFile(file, documentOf(R"({"uniqueID": "shared", "name": "shared"},
        {"uniqueID": "shared all", "name": "shared all", "combinedConfiguration": true, "members": []},
        {"uniqueID": "all of one", "name": "all of one", "combinedConfiguration": true, "members": []},
        {"uniqueID": "all of two", "name": "all of two", "combinedConfiguration": true, "members": []})"));
    const std::string import = "cd " + render::quoted(folder.path()) +
                               " && env -u DISPLAY LC_ALL=C.UTF-8 " IMPRINTER " --store configurations.json import ";
    std::vector<std::string> deletions;
    Window one("one", file, seed);
    Window two("two", file, seed + 1);
    for (int round = 1; round <= rounds; ++round) {
        const auto number = std::to_string(round);
        one.go();
        two.go();
        render::writeFile(folder / "new.json",
                          documentOf(R"({"uniqueID": "cli )" + number + R"(", "name": "cli )" + number + R"("})"));
        render::writeFile(folder / "again.json",
                          documentOf(R"({"uniqueID": "cli", "name": "cli", "rotation": )" + number + "}"));
        auto run = render::run(import + "new.json");
        ASSERT_EQ(run.status, 0) << run.output;
        run = render::run(import + "--replace again.json");
        ASSERT_EQ(run.status, 0) << run.output;
        auto line = one.line();
        for (; line.starts_with("deleted "); line = one.line())
            deletions.push_back(line);
        ASSERT_EQ(line, "done");
        ASSERT_EQ(two.line(), "done");
    }
    const auto result = store::Store(file).read();
    ASSERT_TRUE(result.messages.empty()) << toUtf8(result.messages.front().sentence);
    std::map<std::string, std::shared_ptr<model::Configuration>> byIdentifier;
    std::multiset<std::string> names;
    for (const auto& configuration : result.configurations) {
        byIdentifier[toUtf8(configuration->uniqueID())] = configuration;
        names.insert(toUtf8(configuration->name()));
    }
    EXPECT_EQ(byIdentifier.at("cli")->rotation(), rounds);
    EXPECT_TRUE(byIdentifier.contains("shared"));
    const auto isUsedByCopies = [&](const std::string& identifier) {
        return std::any_of(byIdentifier.begin(), byIdentifier.end(), [&](const auto& entry) {
            if (!toUtf8(entry.second->name()).starts_with("shared all"))
                return false;
            const auto& members = *entry.second->configurations();
            return std::any_of(members.begin(), members.end(),
                               [&](const auto& member) { return toUtf8(member->uniqueID()) == identifier; });
        });
    };
    int changes = 0;
    int copies = 0;
    std::map<std::string, std::string> renamed;
    std::set<std::string> used;
    std::map<std::string, std::multiset<std::string>> members;
    std::map<std::string, int> told;
    for (auto* window : {&one, &two}) {
        window->finish();
        for (auto line = window->line(); !line.empty(); line = window->line()) {
            const auto what = line.substr(0, line.find(' '));
            const auto rest = line.substr(line.find(' ') + 1);
            const auto value = rest.substr(rest.find('=') + 1);
            ++changes;
            if (what == "kept") {
                EXPECT_TRUE(names.contains(rest + " copy")) << rest;
                ++copies;
            } else if (what == "renamed") {
                renamed[rest.substr(0, rest.find('='))] = value;
            } else if (what == "member") {
                members[window == &one ? "all of one" : "all of two"].insert(rest);
            } else if (what == "used") {
                used.insert(rest);
            } else if (what == "told") {
                told[rest.substr(0, rest.find('='))] += std::stoi(value);
            } else {
                std::istringstream words(rest);
                std::string identifier;
                words >> identifier;
                // Of a deleted one the other window may just have put a copy of what both share into the store.
                if (what == "has" || !isUsedByCopies(identifier)) {
                    EXPECT_EQ(byIdentifier.contains(identifier), what == "has") << line;
                }
                double rotation = 0;
                if (what == "has" && words >> rotation && byIdentifier.contains(identifier)) {
                    EXPECT_EQ(byIdentifier[identifier]->rotation(), rotation) << line;
                }
            }
        }
        EXPECT_EQ(window->status(), 0);
    }
    // What was deleted is gone, but for what the other did to it without its being known.
    std::set<std::string> deleted;
    std::set<std::string> deletedAsMember;
    std::set<std::pair<std::string, std::string>> deletedByName;
    for (const auto& line : deletions) {
        std::istringstream words(line);
        std::string word;
        std::string number;
        std::string use;
        std::string name;
        words >> word >> word >> number >> use;
        std::getline(words >> std::ws, name);
        const auto identifier = word + " " + number;
        deleted.insert(identifier);
        deletedByName.emplace(identifier, name);
        if (use == "member")
            deletedAsMember.insert(identifier);
    }
    for (const auto& [identifier, name] : renamed) {
        if (byIdentifier.contains(identifier)) {
            EXPECT_EQ(toUtf8(byIdentifier[identifier]->name()), name) << identifier;
        } else {
            EXPECT_TRUE(deletedByName.contains({identifier, name})) << identifier << " " << name;
        }
    }
    for (const auto& [combined, wanted] : members) {
        std::multiset<std::string> found;
        for (const auto& member : *byIdentifier.at(combined)->configurations())
            found.insert(toUtf8(member->uniqueID()));
        for (const auto& member : wanted)
            EXPECT_TRUE(found.contains(member) || deletedAsMember.contains(member)) << combined << ": " << member;
        for (const auto& member : found)
            EXPECT_TRUE(wanted.contains(member)) << combined << ": " << member;
    }
    for (int round = 1; round <= rounds; ++round) {
        const auto identifier = "cli " + std::to_string(round);
        EXPECT_TRUE(byIdentifier.contains(identifier) || deleted.contains(identifier)) << identifier;
    }
    int stillThere = 0;
    for (const auto& identifier : deleted)
        if (byIdentifier.contains(identifier)) {
            ++stillThere;
            EXPECT_TRUE(renamed.contains(identifier) || used.contains(identifier)) << identifier;
        }
    EXPECT_GT(changes, rounds / 2);
    std::set<std::string> allowed{"again.json", "configurations.json", "new.json"};
    for (const auto& name : folder.names())
        EXPECT_TRUE(allowed.contains(name) || name.starts_with("configurations.previous-")) << name;
    std::cout << rounds << " rounds, " << result.configurations.size() << " configurations, " << copies
              << " contested and kept twice, " << deleted.size() << " of the command line's deleted, " << stillThere
              << " of them there all the same (" << told["edited"] << " times edited, " << told["used"]
              << " times used)\n";
}
