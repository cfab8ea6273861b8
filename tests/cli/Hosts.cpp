// SPDX-License-Identifier: MIT
// A folder of files spread over two workers, as docs/many-files.md shows it.

#include "ProgramTest.h"

using namespace cli_test;

namespace {

class Hosts : public ProgramTest {
protected:
    /// Stands in for ssh: whatever the host is called, the command runs here, in a shell, as ssh would have it.
    std::string transport() {
        writeFile(folder / "data" / "transport",
                  "#!/bin/sh\nwhile :; do case $1 in -l | -o | -p) shift 2 ;; -*) shift ;; *) break ;; esac; done\n"
                  "shift\n[ \"$1\" != -- ] || shift\nexec sh -c \"$*\"\n");
        fs::permissions(folder / "data" / "transport", fs::perms(0700));
        return quoted(folder / "data" / "transport");
    }
    void SetUp() override { fs::create_directories(folder / "data"); }
};

} // namespace

TEST_F(Hosts, TwoWorkersShareAFolderAndGoOnAfterAFailure) {
    fs::create_directories(folder / "inbox");
    fs::create_directories(folder / "remote"); // where the workers' home would be
    for (int i = 0; i < 4; ++i)
        letter("inbox/l" + std::to_string(i) + ".pdf", 2);
    writeFile(folder / "inbox" / "bad.pdf", "no document yet");
    ASSERT_EQ(imprinter("export --output configurations.json").status, 0);
    writeFile(folder / "hosts", "1/one\n1/other\n");
    writeFile(folder / "stamp.sh",
              "find inbox -name 'l?.pdf' -o -name bad.pdf | sort | PARALLEL_HOME=" + quoted(folder / "parallel") +
                  " SHELL=/bin/sh parallel --will-cite --ssh " + transport() +
                  " --sshloginfile hosts --joblog stamped.log --resume-failed "
                  "--basefile configurations.json --transferfile {} --return {.}-stamped.pdf --cleanup "
                  "--workdir " +
                  quoted(folder / "remote") + " " + std::string(IMPRINTER) +
                  " --store configurations.json stamp --configuration Received --output {.}-stamped.pdf {}\n");
    auto run = shell(environment() + "sh stamp.sh");
    EXPECT_EQ(run.status, 1) << run.output; // one failed
    EXPECT_NE(run.output.find("bad.pdf: Files of this kind cannot be stamped."), std::string::npos) << run.output;
    for (int i = 0; i < 4; ++i)
        EXPECT_TRUE(bears("inbox/l" + std::to_string(i) + "-stamped.pdf", "RECEIVED")) << i << run.output;
    const auto log = readFile(folder / "stamped.log");
    EXPECT_EQ(lines(log), 6) << log; // with its heading
    EXPECT_NE(log.find("one"), std::string::npos) << log;
    EXPECT_NE(log.find("other"), std::string::npos) << log;

    // Mended, only the one that failed is done.
    letter("inbox/bad.pdf", 1);
    fs::remove(folder / "inbox" / "l3-stamped.pdf");
    run = shell(environment() + "sh stamp.sh");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(bears("inbox/bad-stamped.pdf", "RECEIVED"));
    EXPECT_FALSE(fs::exists(folder / "inbox" / "l3-stamped.pdf"));
}
