// SPDX-License-Identifier: MIT
// A folder of files spread over two workers that are reached by ssh, as docs/many-files.md shows it.

#include "ProgramTest.h"

#include <fstream>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace cli_test;

namespace {

/// A port of this machine that nobody uses.
int freePort() {
    const int descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    const bool bound = ::bind(descriptor, reinterpret_cast<sockaddr*>(&address), size) == 0 &&
                       ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0;
    ::close(descriptor);
    return bound ? ntohs(address.sin_port) : 0;
}

/// A server for ssh on the loopback interface, with keys of its own, gone with the test.
class Hosts : public ProgramTest {
protected:
    void SetUp() override {
        m_port = freePort();
        fs::create_directories(folder / "ssh");
        fs::permissions(folder / "ssh", fs::perms(0700));
        const auto key = [&](const char* name) {
            EXPECT_EQ(shell("ssh-keygen -q -t ed25519 -N '' -f ssh/" + std::string(name)).status, 0);
        };
        key("host");
        key("user");
        fs::copy_file(folder / "ssh" / "user.pub", folder / "ssh" / "authorized");
        writeFile(folder / "ssh" / "server", "Port " + std::to_string(m_port) + "\nListenAddress 127.0.0.1\nHostKey " +
                                                 (folder / "ssh" / "host").string() + "\nAuthorizedKeysFile " +
                                                 (folder / "ssh" / "authorized").string() + "\nPidFile " +
                                                 (folder / "ssh" / "pid").string() +
                                                 "\nStrictModes no\nPermitRootLogin yes\nUsePAM no\nMaxStartups 20\n");
        writeFile(folder / "ssh" / "client",
                  "#!/bin/sh\nexec ssh -p " + std::to_string(m_port) + " -i '" + (folder / "ssh" / "user").string() +
                      "' -o StrictHostKeyChecking=no -o UserKnownHostsFile=/dev/null -o LogLevel=ERROR \"$@\"\n");
        fs::permissions(folder / "ssh" / "client", fs::perms(0700));
        // Started by root it wants this folder.
        fs::create_directories("/run/sshd", m_none);
        const auto started = shell("\"$(command -v sshd || echo /usr/sbin/sshd)\" -f " +
                                   quoted(folder / "ssh" / "server") + " -E " + quoted(folder / "ssh" / "log"));
        ASSERT_EQ(started.status, 0) << started.output << readFile(folder / "ssh" / "log");
    }
    void TearDown() override {
        if (HasFailure())
            std::cerr << readFile(folder / "ssh" / "log");
        shell("kill $(cat ssh/pid)");
    }

    int m_port = 0;
    std::error_code m_none;
};

} // namespace

TEST_F(Hosts, TwoWorkersShareAFolderAndGoOnAfterAFailure) {
    fs::create_directories(folder / "inbox");
    fs::create_directories(folder / "remote"); // where the workers' home would be
    for (int i = 0; i < 4; ++i)
        letter("inbox/l" + std::to_string(i) + ".pdf", 2);
    writeFile(folder / "inbox" / "bad.pdf", "no document yet");
    ASSERT_EQ(imprinter("export --output configurations.json").status, 0);
    writeFile(folder / "hosts", "1/127.0.0.1\n1/localhost\n");
    writeFile(folder / "stamp.sh",
              "find inbox -name 'l?.pdf' -o -name bad.pdf | sort | PARALLEL_HOME=" + quoted(folder / "parallel") +
                  " parallel --will-cite --ssh " + quoted(folder / "ssh" / "client") +
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
    EXPECT_NE(log.find("127.0.0.1"), std::string::npos) << log;
    EXPECT_NE(log.find("localhost"), std::string::npos) << log;

    // Mended, only the one that failed is done.
    letter("inbox/bad.pdf", 1);
    fs::remove(folder / "inbox" / "l3-stamped.pdf");
    run = shell(environment() + "sh stamp.sh");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(bears("inbox/bad-stamped.pdf", "RECEIVED"));
    EXPECT_FALSE(fs::exists(folder / "inbox" / "l3-stamped.pdf"));
}
