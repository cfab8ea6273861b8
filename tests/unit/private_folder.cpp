// SPDX-License-Identifier: MIT
#include "../support/Environment.h"

#include <files/Calls.h>
#include <files/PrivateFolder.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;
using files::PrivateFolder;

namespace {

/// Gives the user a runtime folder of the test's own.
class PrivateFolders : public testing::Test {
protected:
    PrivateFolders() {
        const fs::path memory("/dev/shm"); // where it is there, so that nobody waits for a disk
        const bool hasMemory = access(memory.c_str(), W_OK | X_OK) == 0;
        std::string name = ((hasMemory ? memory : fs::temp_directory_path()) / "folders-XXXXXX").string();
        parent = mkdtemp(name.data());
        environment.set("XDG_RUNTIME_DIR", parent.string());
    }
    ~PrivateFolders() override { fs::remove_all(parent); }

    /// A program that has a folder with a file in it and waits to be killed. Answers the folder.
    fs::path startProgram(pid_t& child) {
        int ends[2];
        if (pipe(ends) != 0)
            throw std::runtime_error("no pipe");
        child = fork();
        if (child == 0) {
            const PrivateFolder folder;
            std::ofstream(folder.path() / "page.bmp") << "pixels";
            const auto path = folder.path().string() + "\n";
            if (write(ends[1], path.data(), path.size()) < 0)
                _exit(1);
            for (;;)
                pause();
        }
        close(ends[1]);
        std::string path;
        for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';)
            path += c;
        close(ends[0]);
        return path;
    }
    void kill(pid_t child) {
        ::kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }

    fs::path makeFolder(const std::string& name, mode_t mode = 0700) {
        auto path = parent / name;
        mkdir(path.c_str(), mode);
        chmod(path.c_str(), mode);
        std::ofstream(path / "kept") << "kept";
        return path;
    }
    /// One that a killed program left.
    fs::path makeLeftover(const std::string& name, const std::string& owner = {}) {
        auto path = makeFolder(name);
        std::ofstream(path / ".owner") << owner;
        return path;
    }
    static void makeOlder(const fs::path& path, std::chrono::hours hours) {
        fs::last_write_time(path, fs::file_time_type::clock::now() - hours);
    }

    support::Environment environment;
    fs::path parent;
};

/// On a file system that has no locks.
class PrivateFoldersWithoutLocks : public PrivateFolders, public files::Calls {
protected:
    PrivateFoldersWithoutLocks() { files::setCalls(this); }
    ~PrivateFoldersWithoutLocks() override { files::setCalls(nullptr); }
    int lock(int, int) override {
        errno = ENOLCK;
        return -1;
    }
};

} // namespace

TEST_F(PrivateFolders, BelongToTheUserAlone) {
    const PrivateFolder folder;
    struct stat about {};
    ASSERT_EQ(stat(folder.path().c_str(), &about), 0);
    EXPECT_EQ(about.st_mode & 07777, 0700U);
    EXPECT_EQ(about.st_uid, geteuid());
    EXPECT_EQ(folder.path().parent_path(), parent);
}

TEST_F(PrivateFolders, HaveNamesThatDiffer) {
    const PrivateFolder one;
    const PrivateFolder two;
    EXPECT_NE(one.path(), two.path());
}

TEST_F(PrivateFolders, GoWithTheirOwnerAndAllThatIsInThem) {
    fs::path path;
    {
        const PrivateFolder folder;
        path = folder.path();
        fs::create_directory(path / "inner");
        std::ofstream(path / "inner" / "page.bmp") << "pixels";
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(PrivateFolders, OfAKilledProgramAreRemovedAtTheNextStart) {
    pid_t child = 0;
    const auto left = startProgram(child);
    ASSERT_TRUE(fs::exists(left / "page.bmp"));
    kill(child);
    ASSERT_TRUE(fs::exists(left / "page.bmp"));
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 1);
    EXPECT_FALSE(fs::exists(left));
}

TEST_F(PrivateFolders, OfAProgramThatRunsAreLeftAlone) {
    pid_t child = 0;
    const auto used = startProgram(child);
    const PrivateFolder own;
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 0);
    EXPECT_TRUE(fs::exists(used / "page.bmp"));
    EXPECT_TRUE(fs::exists(own.path()));
    kill(child);
}

TEST_F(PrivateFolders, ALinkWithSuchANameIsNotFollowed) {
    const auto elsewhere = makeFolder("documents");
    fs::create_directory_symlink(elsewhere, parent / "imprinter-abcdef");
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 0);
    EXPECT_TRUE(fs::exists(elsewhere / "kept"));
    EXPECT_TRUE(fs::is_symlink(parent / "imprinter-abcdef"));
}

TEST_F(PrivateFolders, ALinkInsideALeftoverIsRemovedWithoutWhatItPointsAt) {
    const auto elsewhere = makeFolder("documents");
    const auto left = makeLeftover("imprinter-abcdef");
    fs::create_directory_symlink(elsewhere, left / "link");
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 1);
    EXPECT_FALSE(fs::exists(left));
    EXPECT_TRUE(fs::exists(elsewhere / "kept"));
}

TEST_F(PrivateFolders, WhatIsNotLikeOursIsLeftAlone) {
    const fs::path others[] = {makeFolder("imprinter-abc"), makeFolder("imprinter-abcdefg"),
                               makeFolder("imprinter-abc.ef"), makeFolder("printer-abcdef"),
                               makeFolder("imprinter-Shared", 0755)};
    std::ofstream(parent / "imprinter-ABCDEF") << "a file";
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 0);
    for (const auto& other : others)
        EXPECT_TRUE(fs::exists(other / "kept")) << other;
    EXPECT_TRUE(fs::exists(parent / "imprinter-ABCDEF"));
}

TEST_F(PrivateFolders, OfAProgramThatHasNotLockedItYetAreLeftAloneForAnHour) {
    const auto fresh = makeFolder("imprinter-abcdef");
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 0);
    makeOlder(fresh, std::chrono::hours(2));
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 1);
    EXPECT_FALSE(fs::exists(fresh));
}

TEST_F(PrivateFolders, AreRemovedAHundredAtATime) {
    for (int number = 0; number < 150; ++number)
        makeLeftover("imprinter-abc" + std::to_string(100 + number));
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 100);
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 50);
    EXPECT_TRUE(fs::is_empty(parent));
}

TEST_F(PrivateFolders, AnOwnerThatIsALinkIsNotFollowed) {
    const auto elsewhere = makeFolder("documents");
    const auto left = makeFolder("imprinter-abcdef");
    fs::create_symlink(elsewhere / "kept", left / ".owner");
    makeOlder(left, std::chrono::hours(48));
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 0);
    EXPECT_TRUE(fs::exists(elsewhere / "kept"));
}

TEST_F(PrivateFoldersWithoutLocks, AreMadeAndGoWithTheirOwner) {
    {
        const PrivateFolder folder;
        EXPECT_TRUE(fs::exists(folder.path()));
    }
    EXPECT_TRUE(fs::is_empty(parent));
}

TEST_F(PrivateFoldersWithoutLocks, OfAKilledProgramAreRemovedAndThoseOfOneThatRunsAreNot) {
    pid_t child = 0;
    const auto left = startProgram(child);
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 0);
    EXPECT_TRUE(fs::exists(left / "page.bmp"));
    kill(child);
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 1);
    EXPECT_FALSE(fs::exists(left));
}

TEST_F(PrivateFoldersWithoutLocks, OfAProcessWhoseNumberAnotherHasNowAreRemoved) {
    char host[256] = {};
    gethostname(host, sizeof host - 1);
    makeLeftover("imprinter-abcdef", std::string(host) + " " + std::to_string(getpid()) + " 1\n");
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 1);
}

TEST_F(PrivateFoldersWithoutLocks, OfAnotherMachineAreLeftAloneForAMonth) {
    const auto left = makeLeftover("imprinter-abcdef", "another-machine 1 1\n");
    const auto unknown = makeLeftover("imprinter-ghijkl", "");
    makeOlder(left / ".owner", std::chrono::hours(24 * 29));
    makeOlder(unknown / ".owner", std::chrono::hours(24 * 29));
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 0);
    makeOlder(left / ".owner", std::chrono::hours(24 * 31));
    makeOlder(unknown / ".owner", std::chrono::hours(24 * 31));
    EXPECT_EQ(PrivateFolder::removeLeftovers(), 2);
}

TEST_F(PrivateFolders, WithoutARuntimeFolderAreMadeAmongTheTemporaryFiles) {
    environment.set("XDG_RUNTIME_DIR", (parent / "missing").string());
    environment.set("TMPDIR", parent.string());
    {
        const PrivateFolder folder;
        EXPECT_EQ(folder.path().parent_path(), parent);
    }
}

TEST_F(PrivateFolders, WhereNoneCanBeMadeSaySo) {
    environment.set("XDG_RUNTIME_DIR", (parent / "missing").string());
    environment.set("TMPDIR", (parent / "missing").string());
    EXPECT_THROW(PrivateFolder(), std::system_error);
}
