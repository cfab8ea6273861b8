// SPDX-License-Identifier: MIT
#include "Documents.h"
#include "Render.h"

#include <gtest/gtest.h>

#include <csignal>
#include <locale>

#include <sys/resource.h>
#include <sys/stat.h>

using namespace render;
using engine::Code;

namespace {

const char kPage[] = "/MediaBox [0 0 300 200]";

/// The outcome of stamping these bytes, after which nothing but the input may be left.
engine::Outcome refused(const std::string& bytes, const std::function<void(engine::StampJob&)>& change = {}) {
    Folder folder;
    writeFile(folder / "in", bytes);
    auto task = job(folder / "in", folder / "out", {configuration(u"No")});
    if (change)
        change(task);
    auto outcome = engine::stampFile(task);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"in"});
    EXPECT_FALSE(outcome.sentence.empty());
    EXPECT_TRUE(outcome.sentence.ends_with('.')) << outcome.sentence;
    return outcome;
}

std::string pngHeader(std::uint32_t width, std::uint32_t height) {
    std::string bytes("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
    for (const auto number : {width, height})
        for (const int shift : {24, 16, 8, 0})
            bytes += static_cast<char>(number >> shift & 0xFF);
    return bytes + std::string("\x08\x02\0\0\0\0\0\0\0", 9);
}

} // namespace

TEST(Outcomes, EachFailureHasItsCodeAndLeavesNoOutput) {
    EXPECT_EQ(refused("some text").code, Code::otherKind);
    EXPECT_EQ(refused("").code, Code::otherKind);
    EXPECT_EQ(refused("%PDF-1.4\nnothing else").code, Code::damaged);
    EXPECT_EQ(refused("\xff\xd8\xff\xe0 not a picture").code, Code::damaged);
    EXPECT_EQ(refused("\x89PNG\r\n\x1a\n").code, Code::damaged);
    EXPECT_EQ(refused(pngHeader(20000, 20000)).code, Code::tooLarge);
    EXPECT_EQ(refused(pngHeader(0, 10)).code, Code::damaged);
    EXPECT_EQ(refused("x", [](auto& task) { task.input += "-missing"; }).code, Code::unreadable);
    EXPECT_EQ(refused("x", [](auto& task) { task.input = task.input.parent_path(); }).code, Code::unreadable);
    EXPECT_EQ(refused(document(1, kPage, ""), [](auto& task) { task.output = task.output / "no" / "folder"; }).code,
              Code::cannotWrite);
}

TEST(Outcomes, AFileCutOffAnywhereNeverLeavesHalfAnOutput) {
    Folder folder;
    white(64, 64).save((folder / "a.png").c_str());
    white(64, 64).save((folder / "a.jpg").c_str());
    for (const auto& whole :
         {readFile(folder / "a.png"), readFile(folder / "a.jpg"), document(2, kPage, "0 0 9 9 re f")})
        for (std::size_t length = 0; length < whole.size(); length += 1 + whole.size() / 40) {
            writeFile(folder / "cut", whole.substr(0, length));
            std::filesystem::remove(folder / "out");
            const auto outcome = engine::stampFile(job(folder / "cut", folder / "out", {configuration(u"Cut")}));
            EXPECT_EQ(std::filesystem::exists(folder / "out"), bool(outcome)) << length;
        }
}

TEST(Outcomes, NothingToStampIsSaidAndWritesNothing) {
    const auto choose = [](int occurrence, const char16_t* pages, const char16_t* text) {
        return [=](engine::StampJob& task) {
            const auto with = configuration(text);
            with->pages = occurrence;
            if (pages)
                with->customPages = pages;
            task.configurations = {with};
        };
    };
    for (const auto& bytes : {document(1, kPage, ""), readFile([] {
                                  static const Folder folder;
                                  white(20, 20).save((folder / "a.png").c_str());
                                  return folder / "a.png";
                              }())}) {
        EXPECT_EQ(refused(bytes, choose(2, nullptr, u"even pages of one")).code, Code::nothingToStamp);
        EXPECT_EQ(refused(bytes, choose(4, nullptr, u"no list")).code, Code::nothingToStamp);
        EXPECT_EQ(refused(bytes, choose(4, u" ", u"blank list")).code, Code::nothingToStamp);
        EXPECT_EQ(refused(bytes, choose(0, nullptr, u" \n")).code, Code::nothingToStamp);
        EXPECT_EQ(refused(bytes, [](auto& task) { task.configurations.clear(); }).code, Code::nothingToStamp);
    }
}

TEST(Outcomes, OutputAndInputAreOneFileOnlyWhereTheJobSaysSo) {
    Folder folder;
    writeFile(folder / "a.pdf", document(1, kPage, ""));
    std::filesystem::create_symlink("a.pdf", folder / "link.pdf");
    ::chmod((folder / "a.pdf").c_str(), 0640);
    auto task = job(folder / "a.pdf", folder / "link.pdf", {configuration(u"In place")});
    const auto before = readFile(folder / "a.pdf");
    EXPECT_EQ(engine::stampFile(task).code, Code::sameFile);
    EXPECT_EQ(readFile(folder / "a.pdf"), before);
    task.inPlace = true;
    ASSERT_TRUE(engine::stampFile(task));
    EXPECT_NE(readFile(folder / "a.pdf"), before);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.pdf"));
    EXPECT_EQ(std::filesystem::status(folder / "a.pdf").permissions(), std::filesystem::perms(0640));
}

TEST(Outcomes, AnOldOutputSurvivesAFailure) {
    Folder folder;
    writeFile(folder / "in", "%PDF-1.4\nbroken");
    writeFile(folder / "out", "old");
    EXPECT_FALSE(engine::stampFile(job(folder / "in", folder / "out", {configuration(u"x")})));
    EXPECT_EQ(readFile(folder / "out"), "old");
}

TEST(Outcomes, ProgressIsToldAndCanEndTheRun) {
    Folder folder;
    writeFile(folder / "in", document(40, kPage, ""));
    auto task = job(folder / "in", folder / "out", {configuration(u"x")});
    std::size_t calls = 0;
    task.progress = [&](std::size_t, std::size_t) { return ++calls < 2; };
    EXPECT_EQ(engine::stampFile(task).code, Code::cancelled);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"in"});
    task.progress = [&](std::size_t, std::size_t) { return true; };
    EXPECT_TRUE(engine::stampFile(task));
}

TEST(Outcomes, NumbersInDocumentsDoNotFollowTheLocale) {
    // A global locale whose decimal sign is a comma, on any machine.
    struct Comma final : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };
    const auto old = std::locale::global(std::locale(std::locale::classic(), new Comma));
    Folder folder;
    writeFile(folder / "in", document(1, kPage, ""));
    const auto with = configuration(u"Comma");
    with->degrees = 33.3;
    with->shift = {0.5, 0.25};
    const auto outcome = engine::stampFile(job(folder / "in", folder / "out", {with}));
    std::locale::global(old);
    ASSERT_TRUE(outcome);
    EXPECT_EQ(run("qpdf --check " + quoted(folder / "out")).status, 0);
    const auto plain = run("qpdf --qdf " + quoted(folder / "out") + " -").output;
    EXPECT_NE(plain.find("0.83581 0.54902 -0.54902 0.83581"), std::string::npos);
}

TEST(Outcomes, ADiskThatFillsUpLeavesNothingBehind) {
    Folder folder;
    writeFile(folder / "a.pdf", document(400, kPage, "0 0 9 9 re f"));
    QImage noise = white(200, 200);
    for (int i = 0; i < 40000; ++i)
        noise.setPixel(i % 200, i / 200, static_cast<unsigned>(i) * 2654435761U | 0xFF000000U);
    noise.save((folder / "a.png").c_str());
    for (const char* name : {"a.pdf", "a.png"}) {
        SCOPED_TRACE(name);
        ASSERT_GT(std::filesystem::file_size(folder / name), 8192U);
        const auto task = job(folder / name, folder / "out", {configuration(u"Full")});
        // No file may grow beyond this, as if the disk were full.
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit old{};
        ::getrlimit(RLIMIT_FSIZE, &old);
        const rlimit small{8192, old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
        const auto outcome = engine::stampFile(task);
        ::setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, oldHandler);
        EXPECT_EQ(outcome.code, Code::cannotWrite) << outcome.sentence;
        EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.pdf", "a.png"}));
    }
}

TEST(Outcomes, APictureThatBreaksOffIsReported) {
    Folder folder;
    white(400, 400).save((folder / "a.jpg").c_str());
    const auto whole = readFile(folder / "a.jpg");
    writeFile(folder / "in", whole.substr(0, whole.size() - 40));
    const auto outcome = engine::stampFile(job(folder / "in", folder / "out", {configuration(u"Cut")}));
    ASSERT_TRUE(outcome) << outcome.sentence;
    EXPECT_EQ(outcome.warnings.size(), 1U);
    writeFile(folder / "in", whole);
    EXPECT_TRUE(engine::stampFile(job(folder / "in", folder / "out", {configuration(u"Whole")})).warnings.empty());
}

TEST(Outcomes, ADeviceOrAPipeIsNeverReplacedByAFile) {
    Folder folder;
    writeFile(folder / "in.pdf", document(1, kPage, ""));
    white(200, 100).save((folder / "in.png").c_str());
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink(folder / "pipe", folder / "link");
    for (const char* input : {"in.pdf", "in.png"})
        for (const char* output : {"pipe", "link"})
            for (const auto saving : {engine::Saving::update, engine::Saving::rewrite}) {
                auto task = job(folder / input, folder / output, {configuration(u"No")});
                task.saving = saving;
                const auto outcome = engine::stampFile(task);
                EXPECT_EQ(outcome.code, Code::cannotWrite);
                EXPECT_EQ(outcome.path, folder / output);
                EXPECT_EQ(outcome.sentence, "The output is a pipe or a device, not a file.");
                EXPECT_TRUE(std::filesystem::is_fifo(folder / "pipe"));
                EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
            }
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"in.pdf", "in.png", "link", "pipe"}));
    // Nor is one read, which might wait for ever.
    const auto outcome = engine::stampFile(job(folder / "pipe", folder / "out", {configuration(u"No")}));
    EXPECT_EQ(outcome.code, Code::unreadable);
    EXPECT_EQ(engine::countPages(job(folder / "pipe", folder / "out", {})), 0U);
}
