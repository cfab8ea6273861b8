// SPDX-License-Identifier: MIT
#include <files/PrivateFolder.h>

#include <gtest/gtest.h>

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
        std::string name = (fs::temp_directory_path() / "folders-XXXXXX").string();
        parent = mkdtemp(name.data());
        if (const char* before = std::getenv("XDG_RUNTIME_DIR"))
            m_before = before;
        setenv("XDG_RUNTIME_DIR", parent.c_str(), 1);
    }
    ~PrivateFolders() override {
        if (m_before.empty())
            unsetenv("XDG_RUNTIME_DIR");
        else
            setenv("XDG_RUNTIME_DIR", m_before.c_str(), 1);
        fs::remove_all(parent);
    }

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
        const auto path = parent / name;
        mkdir(path.c_str(), mode);
        chmod(path.c_str(), mode);
        std::ofstream(path / "kept") << "kept";
        return path;
    }

    fs::path parent;

private:
    std::string m_before;
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
    const auto left = makeFolder("imprinter-abcdef");
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

TEST_F(PrivateFolders, WithoutARuntimeFolderAreMadeAmongTheTemporaryFiles) {
    setenv("XDG_RUNTIME_DIR", (parent / "missing").c_str(), 1);
    setenv("TMPDIR", parent.c_str(), 1);
    {
        const PrivateFolder folder;
        EXPECT_EQ(folder.path().parent_path(), parent);
    }
    unsetenv("TMPDIR");
}

TEST_F(PrivateFolders, WhereNoneCanBeMadeSaySo) {
    setenv("XDG_RUNTIME_DIR", (parent / "missing").c_str(), 1);
    setenv("TMPDIR", (parent / "missing").c_str(), 1);
    EXPECT_THROW(PrivateFolder(), std::system_error);
    unsetenv("TMPDIR");
}
