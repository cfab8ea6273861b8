// SPDX-License-Identifier: MIT
// `stamp` and `unstamp` with all their options.

#include "../render/Signing.h"
#include "ProgramTest.h"

#include <Foundation/NSString.h>

#include <set>

using namespace cli_test;

namespace {

class Stamping : public ProgramTest {
protected:
    /// A file of configurations: "Number" counts on, "Copied" and "Placed" say what becomes of the item.
    std::string store() {
        writeFile(folder / "data" / "mine.json", R"({"format": "imprinter-configurations", "version": 1,
            "configurations": [
            {"uniqueID": "n", "name": "Number", "titleTokens": ["No. ", "%runningNumber%", "."]},
            {"uniqueID": "c", "name": "Copied", "duplicateRecord": 1, "titleTokens": ["copied"]},
            {"uniqueID": "p", "name": "Placed", "duplicateRecord": 2, "titleTokens": ["placed"]},
            {"uniqueID": "f", "name": "Follows", "titleTokens": ["follows"]},
            {"uniqueID": "x", "name": "None", "occurance": 4, "customOccurance": "77", "titleTokens": ["never"]}]})");
        return "--store data/mine.json ";
    }
    void SetUp() override { fs::create_directories(folder / "data"); }
};

} // namespace

TEST_F(Stamping, TwoFilesIntoAFileAreRefusedAndNoFolderOfThatNameIsMade) {
    letter("a.pdf");
    letter("b.pdf");
    for (const std::string name : {"one.pdf", "one.PNG", "a.pdf"}) {
        const auto before = files();
        const auto run = imprinter("stamp --configuration Received --output " + name + " a.pdf b.pdf");
        EXPECT_EQ(run.status, 64);
        EXPECT_EQ(run.output, "imprinter: \"" + name + "\" is no folder; several files need one\n");
        EXPECT_EQ(files(), before);
    }
    EXPECT_EQ(imprinter("stamp --configuration Received --output one.pdf/ a.pdf b.pdf").status, 0);
    EXPECT_TRUE(fs::is_directory(folder / "one.pdf"));
}

TEST_F(Stamping, InPlaceReplacesTheFiles) {
    letter("a.pdf");
    letter("b.pdf");
    const auto run = imprinter("stamp --configuration Received --in-place a.pdf b.pdf");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(files(), (std::vector<std::string>{"a.pdf", "b.pdf"}));
    EXPECT_TRUE(bears("a.pdf", "RECEIVED"));
    EXPECT_TRUE(bears("b.pdf", "RECEIVED"));
}

TEST_F(Stamping, WhereNeitherIsAskedForTheConfigurationDecidesBetweenACopyAndInPlace) {
    const auto options = store();
    letter();
    auto run = imprinter(options + "stamp --configuration Copied letter.pdf");
    EXPECT_EQ(run.output, "letter-stamped.pdf\n");
    EXPECT_FALSE(bears("letter.pdf", "copied"));
    EXPECT_TRUE(bears("letter-stamped.pdf", "copied"));
    run = imprinter(options + "stamp --configuration Copied letter.pdf");
    EXPECT_EQ(run.output, "letter-stamped-2.pdf\n");
    run = imprinter(options + "stamp --configuration Placed letter.pdf");
    EXPECT_EQ(run.output, "");
    EXPECT_TRUE(bears("letter.pdf", "placed"));
    // An original is only replaced where its owner said so.
    run = imprinter(options + "stamp --configuration Follows letter.pdf");
    EXPECT_EQ(run.output, "letter-stamped-3.pdf\n");
    fs::create_directories(folder / "config" / "imprinter");
    writeFile(folder / "config" / "imprinter" / "imprinter.ini", "[General]\nImprinterDuplicateRecord=NO\n");
    run = imprinter(options + "stamp --configuration Follows letter.pdf");
    EXPECT_EQ(run.output, "");
    EXPECT_TRUE(bears("letter.pdf", "follows"));
    // One that wants a copy is enough.
    run = imprinter(options + "stamp --configuration Placed --configuration Copied letter.pdf");
    EXPECT_EQ(run.output, "letter-stamped-4.pdf\n");
}

TEST_F(Stamping, PageRangesTakeThePlaceOfTheConfigurationsPages) {
    letter("letter.pdf", 12);
    const auto run = imprinter("stamp --configuration 'Page of Pages' --pages 2-3,7,11- --output out.pdf letter.pdf");
    EXPECT_EQ(run.status, 0) << run.output;
    for (int page = 1; page <= 12; ++page)
        EXPECT_EQ(bears("out.pdf", "Page " + std::to_string(page) + " of 12"),
                  std::set<int>({2, 3, 7, 11, 12}).count(page) == 1)
            << page;
    const auto before = files();
    for (const std::string list : {"20-", "99"}) {
        const auto none = imprinter("stamp --configuration Received --pages " + list + " --output x.pdf letter.pdf");
        EXPECT_EQ(none.status, 2);
        EXPECT_EQ(none.output, "imprinter: letter.pdf: The page list names no page of the file.\n");
    }
    for (const std::string list : {"a", "3-2", "0", "1,,2", "''"})
        EXPECT_EQ(imprinter("stamp --configuration Received --pages " + list + " --output x.pdf letter.pdf").status, 64)
            << list;
    EXPECT_EQ(files(), before);
}

TEST_F(Stamping, AConfigurationWhosePagesAreNoneSaysSo) {
    const auto options = store();
    letter();
    const auto run = imprinter(options + "stamp --configuration None --output out.pdf letter.pdf");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "imprinter: letter.pdf: There is nothing to stamp on any page of the document.\n");
    EXPECT_EQ(files(), std::vector<std::string>{"letter.pdf"});
}

TEST_F(Stamping, RunningNumbersCountOnThroughAllFilesOfOneJobWhateverTheNumberOfWorkers) {
    const auto options = store();
    letter("a.pdf", 3);
    letter("b.pdf", 1);
    letter("c.pdf", 2);
    ASSERT_TRUE(render::white(200, 100).save((folder / "d.png").c_str()));
    writeFile(folder / "broken.pdf", "%PDF-1.4 broken");
    for (const std::string jobs : {"1", "3"}) {
        const auto run = imprinter(options + "stamp --configuration Number --first-number 100 --jobs " + jobs +
                                   " --output out" + jobs + " a.pdf broken.pdf b.pdf d.png c.pdf");
        EXPECT_EQ(run.status, 2);
        const auto text =
            textOf("out" + jobs + "/a.pdf") + textOf("out" + jobs + "/b.pdf") + textOf("out" + jobs + "/c.pdf");
        for (const int number : {100, 101, 102, 103, 105, 106})
            EXPECT_NE(text.find("No. " + std::to_string(number) + "."), std::string::npos) << number << text;
        EXPECT_EQ(text.find("No. 104."), std::string::npos); // the picture's
    }
    for (const std::string number : {"0", "-1", "x", "1.5"})
        EXPECT_EQ(imprinter(options + "stamp --configuration Number --output o.pdf --first-number " + number + " a.pdf")
                      .status,
                  64);
}

TEST_F(Stamping, StandardInputAndOutputAreFilesCalledMinus) {
    letter();
    auto run = imprinter("stamp --configuration Received - > out.pdf", "cat letter.pdf | ");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(bears("out.pdf", "RECEIVED"));
    run = imprinter("stamp --configuration Received --output - letter.pdf > second.pdf");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(bears("second.pdf", "RECEIVED"));
    run = imprinter("stamp --configuration Received --output third.pdf -", "cat letter.pdf | ");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(bears("third.pdf", "RECEIVED"));
    run = imprinter("unstamp - > fourth.pdf", "cat third.pdf | ");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_FALSE(bears("fourth.pdf", "RECEIVED"));
    run = imprinter("stamp --configuration Received - > bad.pdf", "echo nothing | ");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "imprinter: standard input: This is no PDF, PNG, JPEG or TIFF file.\n");
    run = imprinter("stamp --configuration Received --output - letter.pdf > /dev/full");
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.output, "imprinter: standard output: The output cannot be written.\n");
    EXPECT_EQ(imprinter("stamp --configuration Received --output - letter.pdf -").status, 64);
    EXPECT_EQ(imprinter("stamp --configuration Received --in-place -").status, 64);
}

TEST_F(Stamping, JsonGivesALineForEachFile) {
    letter("a.pdf");
    writeFile(folder / "b \"quoted\".pdf", "no document");
    const auto run =
        imprinter("stamp --configuration Received --json --output out a.pdf 'b \"quoted\".pdf' missing.pdf");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(lines(run.output), 3) << run.output;
    writeFile(folder / "data" / "lines", run.output);
    const auto read =
        shell("python3 -c 'import json\nfor line in open(\"data/lines\"):\n    line = json.loads(line)\n    "
              "print(line[\"file\"], line[\"status\"], line.get(\"output\"), line.get(\"pages\"))'");
    EXPECT_EQ(read.output,
              "a.pdf ok out/a.pdf 1\nb \"quoted\".pdf unsupported None None\nmissing.pdf unreadable None None\n");
}

TEST_F(Stamping, SeveralJobsGiveWhatOneGives) {
    std::string names;
    for (int i = 0; i < 20; ++i) {
        letter("l" + std::to_string(i) + ".pdf", i + 1);
        names += " l" + std::to_string(i) + ".pdf";
    }
    EXPECT_EQ(imprinter("stamp --configuration 'Page of Pages' --output one" + names).status, 0);
    EXPECT_EQ(imprinter("stamp --configuration 'Page of Pages' --jobs 4 --output four" + names).status, 0);
    for (int i = 0; i < 20; ++i) {
        const auto name = "l" + std::to_string(i) + ".pdf";
        EXPECT_EQ(readFile(folder / "one" / name), readFile(folder / "four" / name)) << name;
    }
}

TEST_F(Stamping, AProgressBarIsShownOnATerminalOnly) {
    letter("letter.pdf", 2000);
    const auto command =
        environment() + quoted(IMPRINTER) + " stamp --configuration Received --output out.pdf letter.pdf";
    writeFile(folder / "data" / "command", command);
    const auto run = shell("script -qec 'sh data/command' /dev/null < /dev/null");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("\r["), std::string::npos) << run.output;
    EXPECT_TRUE(run.output.ends_with("\r\x1b[K")) << run.output;
    EXPECT_EQ(shell(command).output, "");
}

TEST_F(Stamping, APasswordFileOpensAnEncryptedDocument) {
    letter();
    ASSERT_EQ(shell("qpdf --encrypt secret owner 256 -- letter.pdf locked.pdf").status, 0);
    writeFile(folder / "data" / "password", "secret\n");
    writeFile(folder / "data" / "wrong", "guess\n");
    const auto stamp = "stamp --configuration Received --output out.pdf --password-file data/";
    EXPECT_EQ(imprinter(std::string(stamp) + "wrong locked.pdf").status, 2);
    EXPECT_EQ(imprinter(std::string(stamp) + "missing locked.pdf").status, 2);
    EXPECT_FALSE(fs::exists(folder / "out.pdf"));
    const auto run = imprinter(std::string(stamp) + "password locked.pdf");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(shell("pdftotext -upw secret out.pdf -").output.find("RECEIVED"), std::string::npos);
    EXPECT_NE(shell("qpdf --requires-password out.pdf; echo $?").output.find('0'), std::string::npos);
}

TEST_F(Stamping, APasswordIsKnownHoweverItIsWritten) {
    letter();
    // As a document of old has it, and as an editor that begins files with a mark.
    ASSERT_EQ(shell("qpdf --allow-weak-crypto --password-mode=bytes --encrypt gr\xfcn owner 128 --use-aes=y -- "
                    "letter.pdf locked.pdf")
                  .status,
              0);
    writeFile(folder / "data" / "password", "\xef\xbb\xbfgr\xc3\xbcn\r\n");
    const auto run =
        imprinter("stamp --configuration Received --output out.pdf --password-file data/password locked.pdf");
    EXPECT_EQ(run.status, 0) << run.output;
}

TEST_F(Stamping, ADocumentThatForbidsChangesNeedsItsOwnersPassword) {
    letter();
    ASSERT_EQ(shell("qpdf --encrypt '' owner 256 --modify=none -- letter.pdf locked.pdf").status, 0);
    const std::string stamp = "stamp --configuration Received --output out.pdf locked.pdf";
    const auto refused = imprinter(stamp);
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.output,
              "imprinter: locked.pdf: The document forbids changes; its owner's password lifts that.\n");
    EXPECT_FALSE(fs::exists(folder / "out.pdf"));
    writeFile(folder / "data" / "password", "owner\n");
    EXPECT_EQ(imprinter(stamp + " --password-file data/password").status, 0);
    EXPECT_TRUE(bears("out.pdf", "RECEIVED"));
}

TEST_F(Stamping, SignedDocumentsNeedToBeAllowedAndStayValid) {
    const render::Folder keys;
    writeFile(folder / "signed.pdf", render::signedDocument(keys));
    const auto run = imprinter("stamp --configuration Received --output out.pdf signed.pdf");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "imprinter: signed.pdf: The document is signed, and it was not allowed to change it.\n");
    EXPECT_FALSE(fs::exists(folder / "out.pdf"));
    EXPECT_EQ(imprinter("stamp --configuration Received --allow-signed --output out.pdf signed.pdf").status, 0);
    EXPECT_TRUE(readFile(folder / "out.pdf").starts_with(readFile(folder / "signed.pdf")));
    EXPECT_TRUE(bears("out.pdf", "RECEIVED"));
    EXPECT_NE(shell("pdfsig out.pdf").output.find("Signature is Valid."), std::string::npos);
}

TEST_F(Stamping, CertifiedDocumentsAreNeverStamped) {
    const render::Folder keys;
    writeFile(folder / "certified.pdf",
              render::signedDocument(keys, "/Reference [<< /Type /SigRef /TransformMethod /DocMDP >>]",
                                     "/Perms << /DocMDP 7 0 R >>"));
    const auto run = imprinter("stamp --configuration Received --allow-signed --output out.pdf certified.pdf");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "imprinter: certified.pdf: The document is certified; a stamp would break that.\n");
    EXPECT_FALSE(fs::exists(folder / "out.pdf"));
}

TEST_F(Stamping, ListsOfPagesGivenOneByOneAreJoined) {
    letter("letter.pdf", 5);
    const auto run = imprinter("stamp --configuration Received --pages 1 --pages 3,5- --output out.pdf letter.pdf");
    EXPECT_EQ(run.status, 0) << run.output;
    for (int page = 1; page <= 5; ++page) {
        const auto n = std::to_string(page);
        const auto text = shell("pdftotext -f " + n + " -l " + n + " out.pdf -").output;
        EXPECT_EQ(text.find("RECEIVED") != std::string::npos, page % 2 == 1) << page;
    }
    EXPECT_EQ(imprinter("stamp --configuration Received --pages 1 --pages x --output two.pdf letter.pdf").status, 64);
}

TEST_F(Stamping, APipeByItsOwnNameIsRefusedWithAHint) {
    letter();
    auto run = shell("mkfifo pipe && " + environment() + quoted(IMPRINTER) +
                     " stamp --configuration Received --output out.pdf pipe");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "imprinter: pipe: This is a pipe or a device, not a file. What comes through a pipe is read "
                          "from the standard input, which is called \"-\".\n");
    run = imprinter("stamp --configuration Received --output pipe letter.pdf");
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.output, "imprinter: pipe: The output is a pipe or a device, not a file.\n");
    EXPECT_TRUE(fs::is_fifo(folder / "pipe"));
}

TEST_F(Stamping, ReplacingAndRemovingFromTheCommandLine) {
    letter();
    const auto stamp = "stamp --configuration Received --replace --in-place letter.pdf";
    ASSERT_EQ(imprinter(stamp).status, 0);
    const auto once = textOf("letter.pdf");
    ASSERT_EQ(imprinter(stamp).status, 0);
    EXPECT_EQ(textOf("letter.pdf"), once);
    ASSERT_EQ(imprinter("stamp --configuration 'Page of Pages' --in-place letter.pdf").status, 0);
    const auto run = imprinter("unstamp --configuration Received letter.pdf");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(run.output, "letter-unstamped.pdf\n");
    EXPECT_FALSE(bears("letter-unstamped.pdf", "RECEIVED"));
    EXPECT_TRUE(bears("letter-unstamped.pdf", "Page 2 of 3"));
    EXPECT_EQ(imprinter("unstamp --in-place letter.pdf").status, 0);
    EXPECT_FALSE(bears("letter.pdf", "Page"));
    const auto again = imprinter("unstamp --in-place letter.pdf");
    EXPECT_EQ(again.status, 2);
    EXPECT_EQ(again.output, "imprinter: letter.pdf: The document bears no such stamp.\n");
}

TEST_F(Stamping, OnlyThePagesThatAreListedLoseStamps) {
    letter();
    ASSERT_EQ(imprinter("stamp --title before --in-place letter.pdf").status, 0);
    ASSERT_EQ(imprinter("stamp --title after --replace --pages 1 --in-place letter.pdf").status, 0);
    const auto words = [this] { return shell("pdftotext letter.pdf - | tr -s '\\n\\f' '  '").output; };
    EXPECT_EQ(words(), "after before before ");
    ASSERT_EQ(imprinter("unstamp --pages 2- --in-place letter.pdf").status, 0);
    EXPECT_EQ(words(), "after ");
    const auto run = imprinter("unstamp --pages 2-,9 --in-place letter.pdf");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "imprinter: letter.pdf: The document bears no such stamp.\n");
}

TEST_F(Stamping, StampsAreListedByTheNamesThatTakeThemOff) {
    letter();
    ASSERT_EQ(imprinter("stamp --configuration Received --in-place letter.pdf").status, 0);
    ASSERT_EQ(imprinter("stamp --title Upper --position top-left --pages 1,3 --in-place letter.pdf").status, 0);
    ASSERT_EQ(imprinter("stamp --title Lower --position bottom --pages 2 --in-place letter.pdf").status, 0);
    letter("plain.pdf");
    const auto before = files();
    const auto run = imprinter("unstamp --list letter.pdf plain.pdf");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "letter.pdf: \"Received\" on page 1\n"
                          "letter.pdf: \"title-top-left\" on pages 1,3\n"
                          "letter.pdf: \"title-bottom\" on page 2\n"
                          "plain.pdf: no stamps\n");
    EXPECT_EQ(
        imprinter("unstamp --list --json -", "cat letter.pdf | ")
            .output.find("{\"file\": \"standard input\", \"status\": \"ok\", \"pages\": 3, \"stamps\": [{\"name\": "
                         "\"Received\", \"identifier\": \""),
        0U);
    EXPECT_EQ(files(), before);

    ASSERT_EQ(imprinter("unstamp --stamp title-top-left --stamp title-bottom --in-place letter.pdf").status, 0);
    EXPECT_FALSE(bears("letter.pdf", "Upper"));
    EXPECT_FALSE(bears("letter.pdf", "Lower"));
    EXPECT_TRUE(bears("letter.pdf", "RECEIVED"));
    EXPECT_EQ(imprinter("unstamp --stamp title-top-left --in-place letter.pdf").output,
              "imprinter: letter.pdf: The document bears no such stamp.\n");
    // The configuration is gone, and its stamp is known by its identifier.
    writeFile(folder / "other.json", R"({"format": "imprinter-configurations", "version": 1, "configurations": []})");
    const auto listed = imprinter("--store other.json unstamp --list letter.pdf").output;
    const auto quote = listed.find('"');
    const auto identifier = listed.substr(quote + 1, listed.find('"', quote + 1) - quote - 1);
    EXPECT_GT(identifier.size(), 20U) << listed;
    const auto removal = imprinter("--store other.json unstamp --in-place --stamp " + identifier + " letter.pdf");
    EXPECT_EQ(removal.status, 0) << removal.output;
    EXPECT_FALSE(bears("letter.pdf", "RECEIVED"));
}

TEST_F(Stamping, AListOfStampsWritesNothingAndSaysWhatHasNone) {
    letter();
    ASSERT_EQ(imprinter("stamp --title x --in-place letter.pdf").status, 0);
    ASSERT_EQ(shell("qpdf --encrypt '' owner 256 --modify=none -- letter.pdf closed.pdf").status, 0);
    EXPECT_EQ(imprinter("unstamp --list closed.pdf").output, "closed.pdf: \"title-top-right\" on pages 1-3\n");
    ASSERT_TRUE(render::white(20, 20).save((folder / "scan.png").c_str()));
    auto run = imprinter("unstamp --list scan.png missing.pdf letter.pdf");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.output.find(
                  "imprinter: scan.png: A stamp on a picture is part of the picture and cannot be told from it.\n"),
              std::string::npos);
    EXPECT_NE(run.output.find("imprinter: missing.pdf: The file cannot be read.\n"), std::string::npos);
    EXPECT_NE(run.output.find("letter.pdf: \"title-top-right\" on pages 1-3\n"), std::string::npos);
    for (const std::string option : {"--in-place", "--output x.pdf", "--stamp x", "--pages 1", "--dry-run"}) {
        run = imprinter("unstamp --list " + option + " letter.pdf");
        EXPECT_EQ(run.status, 64) << option;
        EXPECT_EQ(run.output,
                  "imprinter: --list only looks; " + option.substr(0, option.find(' ')) + " has no place beside it\n");
    }
}

TEST_F(Stamping, AProtectedFileIsReplacedByForceOnly) {
    letter("a.pdf");
    letter("b.pdf");
    fs::permissions(folder / "a.pdf", fs::perms(0444));
    const auto old = readFile(folder / "a.pdf");
    auto run = imprinter("stamp --title x --in-place a.pdf b.pdf");
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.output, "imprinter: a.pdf: The file is write-protected. It is replaced where --force says so.\n");
    EXPECT_EQ(readFile(folder / "a.pdf"), old);
    EXPECT_TRUE(bears("b.pdf", "x"));
    run = imprinter("stamp --title x --json --output a.pdf b.pdf");
    EXPECT_EQ(run.status, 3);
    EXPECT_NE(run.output.find("\"status\": \"writeProtected\""), std::string::npos) << run.output;
    EXPECT_EQ(imprinter("stamp --title x --in-place --force a.pdf").output, "");
    EXPECT_TRUE(bears("a.pdf", "x"));
    EXPECT_EQ(imprinter("unstamp --in-place a.pdf").status, 3);
    EXPECT_EQ(imprinter("unstamp --in-place --force a.pdf").status, 0);
    EXPECT_EQ(fs::status(folder / "a.pdf").permissions(), fs::perms(0444));
}

TEST_F(Stamping, WhatReadsPicturesSaysNothingItself) {
    ASSERT_TRUE(render::white(40, 20).save((folder / "white.png").c_str()));
    const auto white = readFile(folder / "white.png");
    // The sum at the end of a chunk: that of its type and data.
    const auto sum = [](const std::string& bytes) {
        std::uint32_t value = 0xFFFFFFFF;
        for (const char byte : bytes) {
            value ^= static_cast<unsigned char>(byte);
            for (int bit = 0; bit < 8; ++bit)
                value = value >> 1 ^ (value & 1 ? 0xEDB88320 : 0);
        }
        std::string text;
        for (int shift = 24; shift >= 0; shift -= 8)
            text += static_cast<char>(~value >> shift & 0xFF);
        return text;
    };
    const auto changed = [&](const std::string& chunk, std::size_t at, char byte) {
        auto bytes = white;
        const auto begin = bytes.find(chunk);
        const auto length = std::size_t{static_cast<unsigned char>(bytes[begin - 2])} << 8 |
                            static_cast<unsigned char>(bytes[begin - 1]);
        bytes[begin + 4 + at] = byte;
        return bytes.replace(begin + 4 + length, 4, sum(bytes.substr(begin, 4 + length)));
    };
    writeFile(folder / "depth.png", changed("IHDR", 8, 3));
    writeFile(folder / "kind.png", changed("IHDR", 9, 5));
    writeFile(folder / "data.png", changed("IDAT", 0, 0));
    writeFile(folder / "more.png", changed("IDAT", 6, '\x55'));
    for (const std::string name : {"depth.png", "kind.png", "data.png", "more.png"})
        EXPECT_EQ(imprinter("stamp --title x --output out.png " + name).output,
                  "imprinter: " + name + ": The picture is damaged.\n");
}

TEST_F(Stamping, EitherWayOfSavingCanBeAskedFor) {
    letter();
    EXPECT_EQ(imprinter("stamp --configuration Received --incremental --output a.pdf letter.pdf").status, 0);
    EXPECT_TRUE(readFile(folder / "a.pdf").starts_with(readFile(folder / "letter.pdf")));
    EXPECT_EQ(imprinter("stamp --configuration Received --rewrite --output b.pdf letter.pdf").status, 0);
    EXPECT_FALSE(readFile(folder / "b.pdf").starts_with(readFile(folder / "letter.pdf")));
    EXPECT_EQ(imprinter("stamp --configuration Received --rewrite --incremental --output c.pdf letter.pdf").status, 64);
    writeFile(folder / "junk.pdf", "junk\n" + readFile(folder / "letter.pdf"));
    const auto run = imprinter("stamp --configuration Received --incremental --output d.pdf junk.pdf");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "imprinter: junk.pdf: The document cannot be updated incrementally.\n");
    EXPECT_FALSE(fs::exists(folder / "d.pdf"));
}

TEST_F(Stamping, APictureOfTenThousandMillionPixelsIsOneLineAndWritesNothing) {
    // The head of a PNG file of 100,000 by 100,000 pixels, and of a JPEG file as large as they come.
    std::string png("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\x01\x86\xa0\0\x01\x86\xa0\x08\x02\0\0\0\0\0\0\0", 33);
    std::string jpeg("\xff\xd8\xff\xc0\0\x11\x08\xff\xff\xff\xff\x03\x01\x11\0\x02\x11\0\x03\x11\0\xff\xda\0\x0c\x03"
                     "\x01\0\x02\0\x03\0\0\x3f\0",
                     35);
    // And sides whose product is more than a number of 64 bits holds.
    auto huge = png;
    huge.replace(16, 8, 8, '\xff');
    writeFile(folder / "large.png", png);
    writeFile(folder / "large.jpg", jpeg);
    writeFile(folder / "huge.png", huge);
    for (const std::string name : {"large.png", "large.jpg", "huge.png"}) {
        const auto before = files();
        const auto run = imprinter("stamp --configuration Received --output out " + name);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.output, "imprinter: " + name + ": The picture has more than 100 million pixels.\n");
        EXPECT_EQ(files(), before);
    }
}

#ifndef __SANITIZE_ADDRESS__ // which takes memory without end for itself
TEST_F(Stamping, AFileThatTheMemoryDoesNotSufficeForIsNamedAndTheOthersAreStamped) {
    constexpr int side = 9900; // 98 million pixels
    QImage large(side, side, QImage::Format_Mono);
    large.fill(1);
    ASSERT_TRUE(large.save((folder / "large.png").c_str()));
    render::white(60, 40).save((folder / "small.png").c_str());
    // What the program with its libraries takes for a small picture is a quarter of what the large one would take more.
    long kilobytes = 100'000;
    const auto within = [&](const std::string& arguments) {
        return shell("ulimit -v " + std::to_string(kilobytes) + "; " + environment() + quoted(IMPRINTER) +
                     " stamp --title x --output out/ " + arguments);
    };
    while (within("small.png").status != 0) {
        kilobytes += 20'000;
        ASSERT_LT(kilobytes, 4'000'000);
    }
    kilobytes += 40'000;
    for (const std::string jobs : {"1", "2"}) {
        fs::remove_all(folder / "out");
        const auto run = within("--jobs " + jobs + " large.png small.png");
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.output, "imprinter: large.png: There is not enough memory for this file.\n");
        EXPECT_EQ(shell("ls out").output, "small.png\n");
    }
}
#endif

TEST_F(Stamping, ABlankTitleIsGivenAsTheReasonWhyNothingIsStamped) {
    letter();
    render::white(60, 40).save((folder / "a.png").c_str());
    for (const std::string name : {"letter.pdf", "a.png"}) {
        const auto run = imprinter("stamp --title ' ' --output out " + name);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.output, "imprinter: " + name + ": The title is empty.\n");
        const auto line = imprinter("stamp --title ' ' --json --dry-run --output out " + name).output;
        EXPECT_NE(line.find("\"nothingToStamp\", \"message\": \"The title is empty.\""), std::string::npos) << line;
    }
    EXPECT_EQ(imprinter("stamp --title x --pages 2 --output out a.png").output,
              "imprinter: a.png: The page list names no page of the file.\n");
}

TEST_F(Stamping, AStampThatLiesOutsideThePageIsWarnedOfInTheRunToo) {
    letter();
    render::white(60, 40).save((folder / "a.png").c_str());
    auto run = imprinter("stamp --title x --offset 2000,0 --output out.pdf letter.pdf");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "imprinter: letter.pdf: The stamp lies outside page 1 and 2 others, where nobody sees it.\n");
    run = imprinter("stamp --title x --offset 0,-2000 --output out.png a.png");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "imprinter: a.png: The stamp lies outside page 1, where nobody sees it.\n");
    EXPECT_EQ(imprinter("stamp --title 'far too wide for it' --output out.png a.png").output, "");
}

TEST_F(Stamping, AFolderAmongTheInputsIsSaidToBeOne) {
    letter();
    fs::create_directory(folder / "papers");
    const auto run = imprinter("stamp --title x --output out/ papers letter.pdf");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "imprinter: papers: This is a folder.\n");
    EXPECT_TRUE(fs::exists(folder / "out" / "letter.pdf"));
}

TEST_F(Stamping, WhatLibrariesSayAboutADamagedPictureIsNotPrinted) {
    render::white(60, 40).save((folder / "a.png").c_str());
    auto bytes = readFile(folder / "a.png");
    bytes[bytes.find("IDAT") + 8] ^= 0x55;
    writeFile(folder / "a.png", bytes);
    const auto run = imprinter("stamp --title x --output out.png a.png");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "imprinter: a.png: The picture is damaged.\n");
}

TEST_F(Stamping, StandardInputThatCannotBeKeptIsAFailureToWrite) {
    letter();
    const auto run = shell("ulimit -f 1; " + environment() + "TMPDIR=" + quoted(folder.path()) + " " +
                           quoted(IMPRINTER) + " stamp --title x --output out.pdf - < /dev/zero");
    EXPECT_EQ(run.status, 3) << run.output;
    EXPECT_TRUE(run.output.starts_with("imprinter: the standard input cannot be kept in ")) << run.output;
    EXPECT_TRUE(run.output.ends_with(": File too large\n")) << run.output;
}
