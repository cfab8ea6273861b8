// SPDX-License-Identifier: MIT
// A store that others change at the same time.

#include "ProgramTest.h"

#include <chrono>
#include <functional>
#include <thread>

#include <signal.h>

using namespace cli_test;

namespace {

class Sharing : public ProgramTest {
protected:
    static std::string document(const std::string& configurations) {
        return R"({"format": "imprinter-configurations", "version": 1, "configurations": [)" + configurations + "]}";
    }
    /// Imports, and does `meanwhile` at the moment at which the program has read its own file and opens the other.
    render::Run importing(const std::string& arguments, const std::function<void()>& meanwhile) {
        // The program stops itself there.
        std::thread other([&] {
            const auto stopped = [&] {
                const auto log = readFile(folder / "calls");
                return log.find("stopped by SIGSTOP") == std::string::npos ? 0 : std::stoi(log);
            };
            const auto start = std::chrono::steady_clock::now();
            int process = 0;
            while ((process = stopped()) == 0 && std::chrono::steady_clock::now() - start < std::chrono::seconds(60))
                std::this_thread::yield();
            if (process == 0)
                return;
            meanwhile();
            ::kill(process, SIGCONT);
        });
        auto run = shell("strace -f -o calls -P " + quoted(folder / "theirs.json") +
                         " -e trace=openat -e inject=openat:signal=STOP:when=1 " + environment() +
                         "ASAN_OPTIONS=detect_leaks=0 " + quoted(IMPRINTER) + " --store mine.json import " + arguments);
        other.join();
        return run;
    }
};

} // namespace

TEST_F(Sharing, WhatAWindowSavesDuringAnImportIsJoinedWithIt) {
    writeFile(folder / "mine.json", document(R"({"uniqueID": "1", "name": "One"}, {"uniqueID": "2", "name": "Two"})"));
    writeFile(folder / "theirs.json", document(R"({"uniqueID": "3", "name": "Three"})"));
    bool done = false;
    const auto run = importing(quoted(folder / "theirs.json"), [&] {
        writeFile(folder / "mine.json",
                  document(R"({"uniqueID": "1", "name": "Uno"}, {"uniqueID": "2", "name": "Two"})"));
        done = true;
    });
    ASSERT_TRUE(done);
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(imprinter("--store mine.json list").output, "Uno\nTwo\nThree\n");
}

TEST_F(Sharing, WhereBothChangedTheSameOneNothingIsImportedAndTheStatusSaysSo) {
    writeFile(folder / "mine.json", document(R"({"uniqueID": "1", "name": "One"})"));
    writeFile(folder / "theirs.json", document(R"({"uniqueID": "1", "name": "Eins"})"));
    const auto run = importing("--replace " + quoted(folder / "theirs.json"), [&] {
        writeFile(folder / "mine.json", document(R"({"uniqueID": "1", "name": "Uno"})"));
    });
    EXPECT_EQ(run.status, 6) << run.output;
    EXPECT_EQ(lines(run.output), 1) << run.output;
    EXPECT_NE(run.output.find("mine.json"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("“Eins”"), std::string::npos) << run.output;
    EXPECT_EQ(imprinter("--store mine.json list").output, "Uno\n");
}

TEST_F(Sharing, WhatWasDeletedDuringAnImportThatReplacesItStaysAndIsNamed) {
    writeFile(folder / "mine.json", document(R"({"uniqueID": "1", "name": "One"}, {"uniqueID": "2", "name": "Two"})"));
    writeFile(folder / "theirs.json", document(R"({"uniqueID": "1", "name": "Eins"})"));
    const auto run = importing("--replace " + quoted(folder / "theirs.json"), [&] {
        writeFile(folder / "mine.json", document(R"({"uniqueID": "2", "name": "Two"})"));
    });
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(run.output, "imprinter: mine.json: “Eins” was deleted by another program and changed here; it was kept.\n"
                          "1 configuration was imported\n");
    EXPECT_EQ(imprinter("--store mine.json list").output, "Eins\nTwo\n");
}

TEST_F(Sharing, AnImportThatHasToWaitForAnotherProgramSaysSo) {
    writeFile(folder / "mine.json", document(R"({"uniqueID": "1", "name": "One"})"));
    writeFile(folder / "theirs.json", document(R"({"uniqueID": "2", "name": "Two"})"));
    // The lock is given free as soon as the program has said that it waits.
    const auto run =
        shell("mkfifo said && { flock 9; " + environment() + quoted(IMPRINTER) +
              " --store mine.json import theirs.json 9>&- 2>said & read line <said; echo \"$line\"; exec 9>&-; wait; }"
              " 9>.mine.json.lock");
    EXPECT_EQ(run.output, "imprinter: mine.json: waiting for another program that is writing it\n"
                          "1 configuration was imported\n");
    EXPECT_EQ(imprinter("--store mine.json list").output, "One\nTwo\n");
}

TEST_F(Sharing, FormerVersionsCanBeListedAndTakenBack) {
    writeFile(folder / "mine.json", document(R"({"uniqueID": "1", "name": "One"})"));
    writeFile(folder / "theirs.json", document(R"({"uniqueID": "1", "name": "Eins"})"));
    ASSERT_EQ(imprinter("--store mine.json import --replace theirs.json").status, 0);
    EXPECT_EQ(imprinter("--store mine.json list").output, "Eins\n");
    EXPECT_EQ(imprinter("--store mine.previous-1.json list").output, "One\n");
    ASSERT_EQ(imprinter("--store mine.json import --replace mine.previous-1.json").status, 0);
    EXPECT_EQ(imprinter("--store mine.json list").output, "One\n");
    EXPECT_EQ(imprinter("--store mine.previous-1.json list").output, "Eins\n");
    ASSERT_EQ(imprinter("--store mine.json export --output given.json").status, 0);
    ASSERT_EQ(imprinter("--store mine.json export --output given.json One").status, 0);
    EXPECT_FALSE(fs::exists(folder / "given.previous-1.json"));
}

TEST_F(Sharing, ChangesThatAWindowDidNotSaveAreMentionedAndNotTaken) {
    writeFile(folder / "mine.json", document(R"({"uniqueID": "1", "name": "One"})"));
    writeFile(folder / ".mine.json.unsaved-aB3xY9", R"({"format": "imprinter-unsaved-changes", "version": 1,
        "before": {"order": ["1"], "configurations": [{"uniqueID": "1", "name": "One"}]},
        "after": {"order": ["1"], "configurations": [{"uniqueID": "1", "name": "Unsaved"}]}})");
    const auto run = imprinter("--store mine.json list");
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.output.find("One\n"), std::string::npos);
    EXPECT_NE(run.output.find("imprinter: mine.json: a window ended before changes were saved"), std::string::npos)
        << run.output;
    EXPECT_TRUE(fs::exists(folder / ".mine.json.unsaved-aB3xY9"));
}

TEST_F(Sharing, TemporaryFoldersOfKilledCommandsGoAtTheNextStartAndNoLinkIsFollowed) {
    fs::create_directory(folder / "run");
    fs::permissions(folder / "run", fs::perms(0700));
    fs::create_directory(folder / "precious");
    writeFile(folder / "precious" / "file", "precious");
    fs::create_directory_symlink(folder / "precious", folder / "run" / "imprinter-aB3xY9");
    const std::string with = "XDG_RUNTIME_DIR=" + quoted(folder / "run") + " ";
    letter();
    // Killed when it writes what came through the pipe.
    shell("strace -f -o /dev/null -e trace=write -e inject=write:signal=KILL:when=1 " + environment() + with +
          "ASAN_OPTIONS=detect_leaks=0 " + quoted(IMPRINTER) +
          " stamp --configuration Received - <letter.pdf >out.pdf");
    const auto left = [&] { return std::distance(fs::directory_iterator(folder / "run"), fs::directory_iterator()); };
    ASSERT_EQ(left(), 2) << "one folder is left, and the link";
    EXPECT_EQ(shell(environment() + with + quoted(IMPRINTER) + " show Received").status, 0);
    EXPECT_EQ(left(), 1);
    EXPECT_EQ(readFile(folder / "precious" / "file"), "precious");
}
