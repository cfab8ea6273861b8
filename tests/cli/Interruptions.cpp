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
