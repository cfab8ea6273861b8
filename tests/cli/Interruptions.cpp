// SPDX-License-Identifier: MIT
// What is left when something goes wrong in the middle: system calls are made to fail, or to end the program, one by
// one.

#include "ProgramTest.h"

using namespace cli_test;

namespace {

class Interruptions : public ProgramTest {
protected:
    /// Runs the program so that the call with this number, of those named, meets `fate` ("signal=KILL",
    /// "error=ENOSPC").
    render::Run fated(const std::string& call, int number, const std::string& fate, const std::string& arguments) {
        return shell("strace -f -o /dev/null -e trace=" + call + " -e inject=" + call + ":" + fate +
                     ":when=" + std::to_string(number) + " " + environment() + "ASAN_OPTIONS=detect_leaks=0 " +
                     quoted(IMPRINTER) + " " + arguments);
    }
};

} // namespace

TEST_F(Interruptions, KilledAtAnyMomentADocumentIsTheOldOneOrTheNewOne) {
    const auto old = readFile(letter("letter.pdf", 300));
    const std::string stamp = "stamp --configuration Received --in-place letter.pdf";
    ASSERT_EQ(imprinter(stamp).status, 0);
    const auto fresh = readFile(folder / "letter.pdf");
    ASSERT_NE(fresh, old);
    int killed = 0;
    for (const std::string call : {"copy_file_range", "write", "fsync", "linkat", "rename"})
        for (int number = 1; number <= 3; ++number) {
            SCOPED_TRACE(call + " " + std::to_string(number));
            writeFile(folder / "letter.pdf", old);
            const auto run = fated(call, number, "signal=KILL", stamp);
            const auto now = readFile(folder / "letter.pdf");
            EXPECT_TRUE(now == old || now == fresh);
            killed += run.status == 0 ? 0 : 1;
            // Only between naming the new file and putting it in place is there another name for a moment.
            if (call != "linkat" && call != "rename") {
                EXPECT_EQ(files(), std::vector<std::string>{"letter.pdf"});
            }
            for (const auto& entry : fs::directory_iterator(folder.path()))
                if (entry.path().filename().string().starts_with(".letter"))
                    fs::remove(entry.path());
        }
    EXPECT_GE(killed, 5);
}

TEST_F(Interruptions, ADiskThatIsFullLeavesTheOldDocumentAndNothingElse) {
    const auto old = readFile(letter("letter.pdf", 300));
    for (const std::string mode : {"--incremental", "--rewrite"})
        for (const std::string call : {"copy_file_range", "write", "fsync", "linkat", "rename"}) {
            SCOPED_TRACE(call + " " + mode);
            const auto run =
                fated(call, 1, "error=ENOSPC", "stamp --configuration Received --in-place " + mode + " letter.pdf");
            if (call == "copy_file_range" && mode == "--rewrite") {
                EXPECT_EQ(run.status, 0); // it copies nothing
                writeFile(folder / "letter.pdf", old);
                continue;
            }
            EXPECT_EQ(run.status, 3) << run.output;
            EXPECT_EQ(lines(run.output), 1) << run.output;
            EXPECT_NE(run.output.find("letter.pdf"), std::string::npos) << run.output;
            EXPECT_EQ(readFile(folder / "letter.pdf"), old);
            EXPECT_EQ(files(), std::vector<std::string>{"letter.pdf"});
        }
}

TEST_F(Interruptions, AFolderThatMustNotBeWrittenIsNamedAndLeftAsItIs) {
    fs::create_directories(folder / "closed");
    letter("closed/letter.pdf");
    fs::permissions(folder / "closed", fs::perms(0555));
    fs::permissions(folder.path(), fs::perms(0755));
    // Rights that nobody could take away are given up first.
    const std::string without = ::geteuid() == 0 ? "setpriv --reuid 65534 --regid 65534 --clear-groups " : "";
    for (const std::string where : {"--in-place ", "--output closed/new.pdf "}) {
        const auto run = imprinter("stamp --configuration Received " + where + "closed/letter.pdf", without);
        EXPECT_EQ(run.status, 3) << run.output;
        EXPECT_EQ(lines(run.output), 1) << run.output;
        EXPECT_NE(run.output.find("closed/"), std::string::npos) << run.output;
    }
    fs::permissions(folder / "closed", fs::perms(0755));
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder / "closed"))
        names.push_back(entry.path().filename().string());
    EXPECT_EQ(names, std::vector<std::string>{"letter.pdf"});
}

TEST_F(Interruptions, AMissingInputAmongAHundredIsNamedAndTheOthersAreDone) {
    std::string names;
    for (int i = 0; i < 100; ++i) {
        const auto name = "l" + std::to_string(i) + ".pdf";
        if (i != 37)
            letter(name, 1);
        names += " " + name;
    }
    for (const std::string jobs : {"1", "4"}) {
        const auto run = imprinter("stamp --configuration Received --jobs " + jobs + " --output out" + jobs + names);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.output, "imprinter: l37.pdf: The file cannot be read.\n");
        const auto count = std::distance(fs::directory_iterator(folder / ("out" + jobs)), fs::directory_iterator());
        EXPECT_EQ(count, 99);
    }
}

TEST_F(Interruptions, AnInterruptEndsTheRunWithoutAnythingHalfDone) {
    letter("letter.pdf", 200);
    const auto old = readFile(folder / "letter.pdf");
    const auto run = fated("copy_file_range", 1, "signal=INT", "stamp --configuration Received --in-place letter.pdf");
    EXPECT_EQ(run.status, 130) << run.output;
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(readFile(folder / "letter.pdf"), old);
    EXPECT_EQ(files(), std::vector<std::string>{"letter.pdf"});
}

TEST_F(Interruptions, WhatEndsTheProgramWhileItReadsAPipeLeavesNoTemporaryFile) {
    fs::create_directories(folder / "tmp");
    for (const std::string signal : {"INT", "TERM", "HUP"}) {
        SCOPED_TRACE(signal);
        // The program waits for more than it gets; it is told to end once its folder is there. A shell would have it
        // ignore interrupts in the background.
        const auto run = shell(
            "mkfifo pipe && exec 3<>pipe && echo beginning >&3 && { XDG_RUNTIME_DIR= TMPDIR=tmp " + environment() +
            "python3 -c \"import os, signal; signal.signal(signal.SIGINT, signal.SIG_DFL); os.execv('" + IMPRINTER +
            "', ['imprinter', 'stamp', '--configuration', 'Received', '-'])\" <pipe & } && "
            "until [ -s tmp/*/input ]; do :; done 2>/dev/null; kill -" +
            signal + " $!; wait $!; echo status $?; rm pipe");
        EXPECT_NE(run.output.find("status 130"), std::string::npos) << run.output;
        EXPECT_TRUE(fs::is_empty(folder / "tmp"));
    }
}

TEST_F(Interruptions, AReaderThatGoesAwayIsNamedAndLeavesNoTemporaryFile) {
    fs::create_directories(folder / "tmp");
    letter("letter.pdf", 3000); // more than a pipe holds
    const auto run = shell("{ XDG_RUNTIME_DIR= TMPDIR=tmp " + environment() + quoted(IMPRINTER) +
                           " stamp --configuration Received - <letter.pdf; echo status $? >&2; } | head -c 1 | wc -c");
    EXPECT_NE(run.output.find("standard output: The output cannot be written."), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("status 3"), std::string::npos) << run.output;
    EXPECT_TRUE(fs::is_empty(folder / "tmp"));
}

TEST_F(Interruptions, WhatAKilledProgramLeftIsRemovedByTheNextAndNothingElse) {
    fs::create_directories(folder / "tmp" / "imprinter-render");
    fs::create_directories(folder / "tmp" / "imprinter-public");
    letter();
    const std::string stamp = "stamp --configuration Received - <letter.pdf >out.pdf";
    shell("XDG_RUNTIME_DIR= TMPDIR=tmp strace -f -o /dev/null -e trace=copy_file_range -e "
          "inject=copy_file_range:signal=KILL " +
          environment() + "ASAN_OPTIONS=detect_leaks=0 " + quoted(IMPRINTER) + " " + stamp);
    const auto entries = [this] { return std::distance(fs::directory_iterator(folder / "tmp"), {}); };
    EXPECT_EQ(entries(), 3);
    EXPECT_EQ(imprinter(stamp, "XDG_RUNTIME_DIR= TMPDIR=tmp ").status, 0);
    EXPECT_EQ(entries(), 2);
}

TEST_F(Interruptions, AFileThatMayNotBecomeSoLargeIsNamedAndTheOthersAreDone) {
    letter("large.pdf", 3000);
    letter("small.pdf", 1);
    const auto run = shell("ulimit -f 400; " + environment() + quoted(IMPRINTER) +
                           " stamp --configuration Received --output out large.pdf small.pdf");
    EXPECT_EQ(run.status, 3) << run.output;
    EXPECT_EQ(run.output, "imprinter: out/large.pdf: The output cannot be written: File too large.\n");
    EXPECT_TRUE(bears("out/small.pdf", "RECEIVED"));
    EXPECT_FALSE(fs::exists(folder / "out" / "large.pdf"));
}
