// SPDX-License-Identifier: MIT
// What becomes of a file that is replaced by its stamped version, and of those beside it.

#include "../support/FailingCalls.h"
#include "Documents.h"
#include "Render.h"

#include <gtest/gtest.h>

#include <fstream>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace render;
using engine::Code;
namespace fs = std::filesystem;

namespace {

constexpr uid_t someUser = 54321;
constexpr gid_t someGroup = 43210;

class InPlace : public ::testing::Test {
protected:
    InPlace() {
        writeFile(folder / "letter.pdf", document(3, "/MediaBox [0 0 300 200]", "0 0 9 9 re f"));
        white(64, 64).save((folder / "page.png").c_str());
    }
    engine::Outcome stamp(const std::string& name, bool force = false) {
        auto task = job(folder / name, folder / name, {configuration(u"Stamped")});
        task.inPlace = true;
        task.force = force;
        return engine::stampFile(task);
    }
    struct stat statusOf(const std::string& name) {
        struct stat status {};
        EXPECT_EQ(::lstat((folder / name).c_str(), &status), 0);
        return status;
    }

    Folder folder;
};

/// An access list as the system keeps it: the owner may read and write, `user` and the group what is said, nobody else
/// anything.
std::string accessList(uid_t user = someUser, unsigned ofUser = 4, unsigned ofGroup = 0) {
    std::string list("\x02\0\0\0", 4);
    const auto entry = [&](unsigned tag, unsigned rights, unsigned id) {
        for (const auto& [value, bytes] : {std::pair(tag, 2), std::pair(rights, 2), std::pair(id, 4)})
            for (int byte = 0; byte < bytes; ++byte)
                list += static_cast<char>(value >> (8 * byte) & 0xFF);
    };
    entry(0x01, 6, 0xFFFFFFFF);
    entry(0x02, ofUser, user);
    entry(0x04, ofGroup, 0xFFFFFFFF);
    entry(0x10, ofUser | ofGroup, 0xFFFFFFFF);
    entry(0x20, 0, 0xFFFFFFFF);
    return list;
}

} // namespace

TEST_F(InPlace, AFileKeepsItsPermissions) {
    for (const std::string name : {"letter.pdf", "page.png"})
        for (const mode_t mode : {0600U, 0640U, 0444U, 0777U}) {
            ASSERT_EQ(::chmod((folder / name).c_str(), mode), 0);
            const auto before = statusOf(name);
            ASSERT_TRUE(stamp(name, true));
            const auto after = statusOf(name);
            EXPECT_NE(after.st_ino, before.st_ino) << "it was replaced";
            EXPECT_EQ(after.st_mode & 07777, mode);
        }
}

TEST_F(InPlace, AFileThatNobodyMayWriteIsLeftAsItIs) {
    for (const std::string name : {"letter.pdf", "page.png"}) {
        ASSERT_EQ(::chmod((folder / name).c_str(), 0444), 0);
        const auto old = readFile(folder / name);
        const auto names = folder.names();
        fs::create_symlink(name, folder / "link");
        for (const auto& called : {name, std::string("link")}) {
            const auto outcome = stamp(called);
            EXPECT_EQ(outcome.code, Code::writeProtected);
            EXPECT_EQ(outcome.sentence, "The file is write-protected.");
            EXPECT_EQ(outcome.path, folder / called);
        }
        fs::remove(folder / "link");
        EXPECT_EQ(readFile(folder / name), old);
        EXPECT_EQ(folder.names(), names);

        // As the input of another file it is as good as any; the output is protected for itself.
        auto task = job(folder / name, folder / "out", {configuration(u"Stamped")});
        ASSERT_TRUE(engine::stampFile(task));
        ASSERT_EQ(::chmod((folder / "out").c_str(), 0400), 0);
        EXPECT_EQ(engine::stampFile(task).code, Code::writeProtected);
        task.dryRun = true;
        EXPECT_EQ(engine::stampFile(task).code, Code::writeProtected);
        task.force = true;
        EXPECT_TRUE(engine::stampFile(task));
        fs::remove(folder / "out");
    }
}

TEST_F(InPlace, AFileKeepsItsOwnerAndGroup) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the administrator gives files away";
    ASSERT_EQ(::chown((folder / "letter.pdf").c_str(), someUser, someGroup), 0);
    ASSERT_EQ(::chmod((folder / "letter.pdf").c_str(), 0640), 0);
    ASSERT_TRUE(stamp("letter.pdf"));
    const auto after = statusOf("letter.pdf");
    EXPECT_EQ(after.st_uid, someUser);
    EXPECT_EQ(after.st_gid, someGroup);
    EXPECT_EQ(after.st_mode & 07777, 0640U);
}

TEST_F(InPlace, WhereTheOwnerCannotBeKeptNobodyElseMayDoMoreThanBefore) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the administrator gives files away";
    ASSERT_EQ(::chown((folder / "letter.pdf").c_str(), someUser, someGroup), 0);
    ASSERT_EQ(::chmod((folder / "letter.pdf").c_str(), 06674), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    const auto child = ::fork();
    if (child == 0) {
        constexpr uid_t nobody = 65534;
        const bool changed = ::setgid(nobody) == 0 && ::setuid(nobody) == 0;
        ::_exit(changed && !stamp("letter.pdf") && stamp("letter.pdf", true) ? 0 : 1);
    }
    int status = 1;
    ::waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);
    const auto after = statusOf("letter.pdf");
    EXPECT_NE(after.st_uid, someUser);
    EXPECT_EQ(after.st_mode & 07777, 0644U) << "another group may do what everybody may";
}

TEST_F(InPlace, AFileKeepsItsExtendedAttributes) {
    const auto path = folder / "letter.pdf";
    const std::string value("any bytes\0at all", 16);
    if (::setxattr(path.c_str(), "user.origin", value.data(), value.size(), 0) != 0)
        GTEST_SKIP() << "the file system has none";
    ASSERT_EQ(::setxattr(path.c_str(), "user.empty", "", 0, 0), 0);
    ASSERT_TRUE(stamp("letter.pdf"));
    char found[64];
    ASSERT_EQ(::getxattr(path.c_str(), "user.origin", found, sizeof found), 16);
    EXPECT_EQ(std::string(found, 16), value);
    EXPECT_EQ(::getxattr(path.c_str(), "user.empty", found, sizeof found), 0);
}

TEST_F(InPlace, AFileKeepsItsAccessList) {
    const auto path = folder / "letter.pdf";
    const auto list = accessList();
    if (::setxattr(path.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) != 0)
        GTEST_SKIP() << "the file system has none";
    const auto mode = statusOf("letter.pdf").st_mode;
    ASSERT_TRUE(stamp("letter.pdf"));
    char found[256];
    const auto size = ::getxattr(path.c_str(), "system.posix_acl_access", found, sizeof found);
    ASSERT_EQ(size, static_cast<ssize_t>(list.size()));
    EXPECT_EQ(std::string(found, list.size()), list);
    EXPECT_EQ(statusOf("letter.pdf").st_mode, mode);
}

TEST_F(InPlace, AnAccessListGivesAnotherGroupNoMoreThanEverybodyHas) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the administrator gives files away";
    const auto path = folder / "letter.pdf";
    constexpr uid_t nobody = 65534;
    const auto list = accessList(nobody, 6, 6);
    if (::setxattr(path.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) != 0)
        GTEST_SKIP() << "the file system has none";
    ASSERT_EQ(::chown(path.c_str(), someUser, someGroup), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    const auto child = ::fork();
    if (child == 0) {
        const bool changed = ::setgid(nobody) == 0 && ::setuid(nobody) == 0;
        ::_exit(changed && stamp("letter.pdf") ? 0 : 1);
    }
    int status = 1;
    ::waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);
    const auto after = statusOf("letter.pdf");
    ASSERT_NE(after.st_gid, someGroup);
    EXPECT_EQ(after.st_mode & 0077, 0U);
}

TEST_F(InPlace, ASymbolicLinkStaysAndItsFileIsReplaced) {
    fs::create_directory(folder / "elsewhere");
    fs::rename(folder / "letter.pdf", folder / "elsewhere" / "letter.pdf");
    fs::create_symlink("elsewhere/letter.pdf", folder / "letter.pdf");
    const auto old = readFile(folder / "letter.pdf");
    ASSERT_TRUE(stamp("letter.pdf"));
    EXPECT_EQ(fs::read_symlink(folder / "letter.pdf"), "elsewhere/letter.pdf");
    EXPECT_NE(readFile(folder / "elsewhere" / "letter.pdf"), old);
}

TEST_F(InPlace, AnotherHardLinkKeepsTheOldFileAndThatIsSaid) {
    const auto old = readFile(folder / "letter.pdf");
    fs::create_hard_link(folder / "letter.pdf", folder / "other.pdf");
    const auto outcome = stamp("letter.pdf");
    ASSERT_TRUE(outcome);
    ASSERT_EQ(outcome.warnings.size(), 1U);
    EXPECT_EQ(outcome.warnings[0].sentence(),
              "The file has other names too (hard links), under which it is as it was.");
    EXPECT_EQ(readFile(folder / "other.pdf"), old);
    EXPECT_NE(readFile(folder / "letter.pdf"), old);
    EXPECT_TRUE(stamp("letter.pdf").warnings.empty()) << "now it is a file of its own";
}

TEST_F(InPlace, AFileThatIsChangedMeanwhileIsLeftAsItIsThen) {
    const auto longer = [&](const fs::path& file) { std::ofstream(file, std::ios::app) << "more"; };
    const auto shorter = [&](const fs::path& file) { fs::resize_file(file, 100); };
    const auto other = [&](const fs::path& file) {
        writeFile(folder / "new", readFile(file));
        fs::rename(folder / "new", file);
    };
    for (const auto saving : {engine::Saving::update, engine::Saving::rewrite})
        for (const auto& change : std::vector<std::function<void(const fs::path&)>>{longer, shorter, other})
            for (const bool inPlace : {true, false}) {
                writeFile(folder / "big.pdf", document(3000, "/MediaBox [0 0 300 200]", "0 0 9 9 re f"));
                const auto names = folder.names();
                auto task =
                    job(folder / "big.pdf", inPlace ? folder / "big.pdf" : folder / "out", {configuration(u"Stamped")});
                task.inPlace = inPlace;
                task.saving = saving;
                std::string changed;
                task.progress = [&](std::size_t, std::size_t) {
                    if (changed.empty()) {
                        change(task.input);
                        changed = readFile(task.input);
                    }
                    return true;
                };
                const auto outcome = engine::stampFile(task);
                EXPECT_EQ(outcome.code, Code::changed) << outcome.sentence;
                EXPECT_EQ(outcome.path, task.input);
                EXPECT_EQ(outcome.sentence, "The file was changed while it was being worked on, and is left as it is.");
                EXPECT_EQ(readFile(task.input), changed);
                EXPECT_EQ(folder.names(), names);
            }
}

TEST_F(InPlace, APictureThatIsChangedMeanwhileIsLeftAsItIsThen) {
    auto task = job(folder / "page.png", folder / "page.png", {configuration(u"Stamped")});
    task.inPlace = true;
    task.progress = [&](std::size_t, std::size_t) {
        std::ofstream(task.input, std::ios::app) << "more";
        return true;
    };
    EXPECT_EQ(engine::stampFile(task).code, Code::changed);
    EXPECT_TRUE(readFile(task.input).ends_with("more"));
}

TEST_F(InPlace, ACopyOfAPrivateFileIsPrivate) {
    const auto old = ::umask(022);
    for (const auto& [mode, expected] : {std::pair(0600U, 0600U), std::pair(0644U, 0644U), std::pair(0400U, 0600U),
                                         std::pair(0640U, 0640U), std::pair(0777U, 0644U)}) {
        for (const std::string name : {"letter.pdf", "page.png"}) {
            ASSERT_EQ(::chmod((folder / name).c_str(), mode), 0);
            ASSERT_TRUE(engine::stampFile(job(folder / name, folder / "out", {configuration(u"Stamped")})));
            EXPECT_EQ(statusOf("out").st_mode & 07777, expected);
            fs::remove(folder / "out");
        }
    }
    ::umask(old);
}

TEST_F(InPlace, WhatAKilledProgramLeftGoesWithTheNextStamping) {
    const auto names = folder.names();
    writeFile(folder / ".letter.pdf.stamping", "half a letter");
    ASSERT_TRUE(stamp("letter.pdf"));
    EXPECT_EQ(folder.names(), names);
}

TEST_F(InPlace, WhatAKilledProgramLeftOnANetworkFileSystemGoesToo) {
    const auto names = folder.names();
    writeFile(folder / ".letter.pdf.stamping", "half a letter");
    const testing_support::NetworkLocks calls;
    ASSERT_TRUE(stamp("letter.pdf"));
    EXPECT_EQ(folder.names(), names);
    EXPECT_EQ(calls.refused, 0);
}

TEST_F(InPlace, WhatAnotherProgramIsAboutToPutInPlaceIsLeftToIt) {
    const auto name = folder / ".letter.pdf.stamping";
    writeFile(name, "of another program");
    const int owner = ::open(name.c_str(), O_RDONLY);
    ASSERT_EQ(::flock(owner, LOCK_EX), 0);
    ASSERT_TRUE(stamp("letter.pdf"));
    EXPECT_EQ(readFile(name), "of another program");
    ::close(owner);
}

/// A file system that knows no files without a name, as long as it lives.
class NamedFilesOnly final : public files::Calls {
public:
    NamedFilesOnly() { files::setCalls(this); }
    ~NamedFilesOnly() override { files::setCalls(nullptr); }
    NamedFilesOnly(const NamedFilesOnly&) = delete;
    NamedFilesOnly& operator=(const NamedFilesOnly&) = delete;

    int open(const char* path, int flags, mode_t mode) override {
        if ((flags & O_TMPFILE) != O_TMPFILE)
            return Calls::open(path, flags, mode);
        errno = EOPNOTSUPP;
        return -1;
    }
};

TEST_F(InPlace, ANameThatWasFreeAndIsTakenMeanwhileIsLeftToWhoeverTookIt) {
    const auto names = folder.names();
    const auto stampBeside = [&](const std::string& name) {
        auto task = job(folder / name, folder / ("new-" + name), {configuration(u"Stamped")});
        task.mayReplace = false;
        task.progress = [&](std::size_t, std::size_t) {
            writeFile(task.output, "of another program");
            return true;
        };
        const auto outcome = engine::stampFile(task);
        EXPECT_EQ(outcome.code, Code::cannotWrite) << outcome.sentence;
        EXPECT_NE(outcome.sentence.find("File exists"), std::string::npos) << outcome.sentence;
        EXPECT_EQ(outcome.path, task.output);
        EXPECT_EQ(readFile(task.output), "of another program");
        fs::remove(task.output);
        task.progress = {};
        EXPECT_TRUE(engine::stampFile(task));
        fs::remove(task.output);
        EXPECT_EQ(folder.names(), names) << "nothing is left behind";
    };
    stampBeside("letter.pdf");
    stampBeside("page.png");
    const NamedFilesOnly calls;
    stampBeside("letter.pdf");
}

TEST_F(InPlace, ALinkInItsWayIsNeitherFollowedNorRemoved) {
    writeFile(folder / "precious", "precious");
    fs::create_symlink("precious", folder / ".letter.pdf.stamping");
    ASSERT_TRUE(stamp("letter.pdf"));
    EXPECT_EQ(readFile(folder / "precious"), "precious");
    EXPECT_TRUE(fs::is_symlink(folder / ".letter.pdf.stamping"));
}

TEST_F(InPlace, ALinkToNowhereIsReplacedAndNotFollowed) {
    fs::create_symlink("nowhere", folder / "out");
    ASSERT_TRUE(engine::stampFile(job(folder / "letter.pdf", folder / "out", {configuration(u"Stamped")})));
    EXPECT_FALSE(fs::is_symlink(folder / "out"));
    EXPECT_FALSE(fs::exists(folder / "nowhere"));
    EXPECT_EQ(readFile(folder / "out").substr(0, 5), "%PDF-");
}
