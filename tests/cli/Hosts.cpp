// SPDX-License-Identifier: MIT
// A folder of files spread over two workers, as docs/many-files.md shows it.

#include "ProgramTest.h"

#include <sstream>

using namespace cli_test;

namespace {

class Hosts : public ProgramTest {
protected:
    /// The commands of the page, block by block.
    static std::vector<std::string> commands() {
        std::istringstream page(readFile(fs::path(SOURCES) / "docs" / "many-files.md"));
        std::vector<std::string> blocks;
        bool inBlock = false;
        for (std::string line; std::getline(page, line);) {
            const bool isFence = line.starts_with("```");
            if (isFence && !inBlock)
                blocks.emplace_back();
            else if (inBlock && !isFence)
                blocks.back() += line + '\n';
            inBlock = isFence ? !inBlock : inBlock;
        }
        return blocks;
    }
    /// A program that the page's commands find first.
    void program(const std::string& name, const std::string& script) {
        writeFile(folder / "bin" / name, "#!/bin/sh\n" + script + "\n");
        fs::permissions(folder / "bin" / name, fs::perms(0700));
    }
    render::Run runOnTheMachine(const std::string& block) {
        writeFile(folder / "bin" / "block", block);
        return shell(environment() + "PATH=" + quoted(folder / "bin") + ":\"$PATH\" sh bin/block");
    }
    void SetUp() override {
        fs::create_directories(folder / "bin");
        fs::create_directories(folder / "remote"); // where the workers' home would be
        program("imprinter", "exec " + quoted(IMPRINTER) + " \"$@\"");
        // Stands in for ssh: whatever the host is called, the command runs here, in a shell, as ssh would have it.
        program("transport", "while :; do case $1 in -l | -o | -p) shift 2 ;; -*) shift ;; *) break ;; esac; done\n"
                             "shift\n[ \"$1\" != -- ] || shift\nexec sh -c \"$*\"");
        program("parallel", "PARALLEL_HOME=" + quoted(folder / "bin" / "home") +
                                " SHELL=/bin/sh exec /usr/bin/parallel --will-cite --ssh " +
                                quoted(folder / "bin" / "transport") + " --workdir " + quoted(folder / "remote") +
                                " \"$@\"");
    }
};

} // namespace

TEST_F(Hosts, TwoWorkersShareAFolderAndGoOnAfterAFailureAsThePageSays) {
    const auto blocks = commands();
    ASSERT_EQ(blocks.size(), 3U) << "what one machine does, the list, and what several do";
    ASSERT_NE(blocks[2].find("parallel --null"), std::string::npos) << blocks[2];
    fs::create_directories(folder / "inbox" / "more of them");
    for (const std::string name : {"l0", "l1", "l 2", "more of them/l3"})
        letter("inbox/" + name + ".pdf", 2);
    writeFile(folder / "inbox" / "bad.pdf", "no document yet");
    writeFile(folder / "hosts", "1/one\n1/other\n");
    ASSERT_EQ(runOnTheMachine(blocks[1]).status, 0);
    auto run = runOnTheMachine(blocks[2]);
    EXPECT_EQ(run.status, 1) << run.output; // one failed
    EXPECT_NE(run.output.find("bad.pdf: This is no PDF, PNG, JPEG or TIFF file."), std::string::npos) << run.output;
    for (const std::string name : {"l0", "l1", "l 2", "more of them/l3"})
        EXPECT_EQ(shell("pdftotext 'inbox/" + name + "-stamped.pdf' - | grep -c RECEIVED").output, "1\n")
            << name << run.output;
    const auto log = readFile(folder / "batch.log");
    EXPECT_EQ(lines(log), 6) << log; // with its heading
    EXPECT_NE(log.find("one"), std::string::npos) << log;
    EXPECT_NE(log.find("other"), std::string::npos) << log;

    // Once more with what failed mended: that alone is done, although there are new files and results now.
    letter("inbox/bad.pdf", 1);
    letter("inbox/a0.pdf", 1);
    fs::remove(folder / "inbox" / "l1-stamped.pdf");
    run = runOnTheMachine(blocks[2]);
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(bears("inbox/bad-stamped.pdf", "RECEIVED"));
    EXPECT_FALSE(fs::exists(folder / "inbox" / "l1-stamped.pdf"));

    // Another batch with a log of its own takes no result for a document.
    fs::remove(folder / "batch.log");
    ASSERT_EQ(runOnTheMachine(blocks[1]).status, 0);
    EXPECT_EQ(runOnTheMachine(blocks[2]).status, 0);
    EXPECT_TRUE(bears("inbox/a0-stamped.pdf", "RECEIVED"));
    EXPECT_EQ(shell("find inbox -name '*stamped-stamped*'").output, "");
}

TEST_F(Hosts, OneMachineDoesAFolderAsThePageSays) {
    fs::create_directories(folder / "inbox");
    letter("inbox/a.pdf");
    writeFile(folder / "inbox" / "bad.pdf", "no document yet");
    const auto block = commands().front();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(runOnTheMachine(block).status, 2);
        EXPECT_EQ(lines(readFile(folder / "stamped.jsonl")), 2);
        EXPECT_EQ(shell("pdftotext -l 1 stamped/a.pdf - | grep -c RECEIVED").output, "1\n");
    }
}
