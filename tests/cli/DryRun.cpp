// SPDX-License-Identifier: MIT
// `--dry-run`: what would come of a run, without a trace of it.

#include "ProgramTest.h"

#include <map>

using namespace cli_test;

namespace {

class DryRun : public ProgramTest {
protected:
    /// Runs `stamp` or `unstamp` dry; nothing may change, and the status is that of the real run.
    render::Run dry(const std::string& arguments) {
        const auto before = snapshot();
        auto run = imprinter(arguments + " --dry-run");
        EXPECT_EQ(snapshot(), before) << arguments;
        return run;
    }
    std::map<std::string, std::string> snapshot() {
        std::map<std::string, std::string> bytes;
        for (const auto& entry : fs::recursive_directory_iterator(folder.path()))
            bytes[entry.path().string()] = entry.is_regular_file() ? readFile(entry.path()) : std::string();
        return bytes;
    }
    void encrypt(const std::string& options, const std::string& name) {
        letter("plain.pdf");
        ASSERT_EQ(shell("qpdf --allow-weak-crypto --encrypt " + options + " -- plain.pdf " + name + " && rm plain.pdf")
                      .status,
                  0);
    }
    void SetUp() override { ASSERT_EQ(imprinter("list").status, 0); }
};

} // namespace

TEST_F(DryRun, ItSaysHowManyPagesWouldBeStampedAndWritesNothing) {
    letter();
    ASSERT_TRUE(render::white(400, 300).save((folder / "scan.png").c_str()));
    auto run = dry("stamp --title x --output new/ letter.pdf scan.png");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "letter.pdf: 3 pages would be stamped.\nscan.png: 1 page would be stamped.\n");
    for (const std::string where : {"", " --in-place", " --output out.pdf", " --rewrite --output out.pdf"}) {
        run = dry("stamp --configuration Received" + where + " letter.pdf");
        EXPECT_EQ(run.output, "letter.pdf: 1 page would be stamped.\n") << where;
        EXPECT_EQ(run.status, 0) << where;
    }
    run = imprinter("stamp --title x --dry-run - < letter.pdf");
    EXPECT_EQ(run.output, "standard input: 3 pages would be stamped.\n");
}

TEST_F(DryRun, JsonSaysItToPrograms) {
    letter();
    const auto run = dry("stamp --title x --json --output out.pdf letter.pdf");
    EXPECT_EQ(run.output, "{\"file\": \"letter.pdf\", \"status\": \"ok\", \"output\": \"out.pdf\", \"pages\": 3, "
                          "\"message\": \"3 pages would be stamped.\", \"warnings\": []}\n");
}

TEST_F(DryRun, WhatCouldNotBeStampedIsNamedWithItsReason) {
    encrypt("secret owner 128 --use-aes=y", "encrypted.pdf");
    encrypt("'' owner 128 --use-aes=y --modify=none", "forbidden.pdf");
    writeFile(folder / "broken.pdf", "%PDF-1.4 broken");
    writeFile(folder / "text.txt", "no document");
    // As in tests/render: a form field with a signature, and a catalog that certifies it.
    const std::string form = "/AcroForm <</SigFlags 3 /Fields [<</FT /Sig /V <</Type /Sig /ByteRange [0 1 2 3]>>>>]>>";
    writeFile(folder / "signed.pdf", document(2, "/MediaBox [0 0 595 842]", "BT ET", form));
    writeFile(folder / "certified.pdf",
              document(2, "/MediaBox [0 0 595 842]", "BT ET", form + "/Perms <</DocMDP <</Type /Sig>>>>"));
    const std::map<std::string, std::string> reasons{{"encrypted.pdf", "encrypted"}, {"forbidden.pdf", "notPermitted"},
                                                     {"broken.pdf", "damaged"},      {"text.txt", "unsupported"},
                                                     {"missing.pdf", "unreadable"},  {"signed.pdf", "signed"},
                                                     {"certified.pdf", "certified"}};
    for (const auto& [name, reason] : reasons) {
        const auto run = dry("stamp --title x --json --output out.pdf " + name);
        EXPECT_EQ(run.status, 2) << name;
        EXPECT_NE(run.output.find("\"status\": \"" + reason + '"'), std::string::npos) << run.output;
        const auto real = imprinter("stamp --title x --json --output out.pdf " + name);
        EXPECT_EQ(real.output, run.output) << name;
    }
    // What opens the door for the real run opens it here too.
    EXPECT_EQ(dry("stamp --title x --allow-signed --output out.pdf signed.pdf").status, 0);
    writeFile(folder / "password", "owner\n");
    EXPECT_EQ(dry("stamp --title x --password-file password --output out/ encrypted.pdf forbidden.pdf").status, 0);
}

TEST_F(DryRun, APageListThatChoosesNothingIsTold) {
    letter();
    const auto run = dry("stamp --title x --pages 7- --output out.pdf letter.pdf");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.output, "imprinter: letter.pdf: The page list names no page of the file.\n");
}

TEST_F(DryRun, CharactersThatNoFontHasAreTold) {
    letter();
    const auto run = dry("stamp --title '\xF4\x8F\xBF\xBD' --output out.pdf letter.pdf"); // U+10FFFD, for private use
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.output.find("No font on this machine has the character U+10FFFD."), std::string::npos) << run.output;
}

TEST_F(DryRun, CharactersThatComeFromAnotherFontAreToldHereAndNotAfterwards) {
    letter();
    ASSERT_TRUE(render::white(400, 300).save((folder / "scan.png").c_str()));
    for (const std::string name : {"letter.pdf", "scan.png"}) {
        auto run = dry("stamp --title '\xE6\xBC\xA2' " + name); // U+6F22
        EXPECT_EQ(run.output.find("imprinter: " + name +
                                  ": The font \"DejaVuSans-Bold\" lacks the character U+6F22; it is taken from \""),
                  0U)
            << run.output;
        run = imprinter("stamp --title '\xE6\xBC\xA2' --output out-" + name + " " + name);
        EXPECT_EQ(run.output, "");
    }
}

TEST_F(DryRun, StampsThatDoNotFitOnTheirPageAreTold) {
    letter();
    const std::string wide = "'a title that is much wider than a sheet of paper is'";
    EXPECT_EQ(dry("stamp --title " + wide + " --size 40 --pages 2- letter.pdf").output,
              "imprinter: letter.pdf: The stamp is larger than page 2 and 1 other.\n"
              "letter.pdf: 2 pages would be stamped.\n");
    EXPECT_EQ(dry("stamp --title x --offset 0,19 --border rectangle --pages 3 letter.pdf").output,
              "imprinter: letter.pdf: The stamp reaches beyond the edge of page 3.\n"
              "letter.pdf: 1 page would be stamped.\n");
    // Turned, it fits where it did not before.
    const std::string tall = "'somewhat wider than a sheet of paper is'";
    EXPECT_NE(dry("stamp --title " + tall + " --size 26 letter.pdf").output.find("larger than page 1 and 2 others"),
              std::string::npos);
    EXPECT_EQ(dry("stamp --title " + tall + " --size 26 --rotate 90 letter.pdf").output,
              "letter.pdf: 3 pages would be stamped.\n");
    // A page is as wide as it is shown.
    writeFile(folder / "wide.pdf", document(1, "/MediaBox [0 0 595 842] /Rotate 90", "BT ET"));
    EXPECT_EQ(dry("stamp --title " + tall + " --size 26 wide.pdf").output, "wide.pdf: 1 page would be stamped.\n");
    ASSERT_TRUE(render::white(40, 300).save((folder / "narrow.png").c_str()));
    EXPECT_EQ(dry("stamp --title " + wide + " narrow.png").output,
              "imprinter: narrow.png: The stamp is larger than page 1.\nnarrow.png: 1 page would be stamped.\n");
}

TEST_F(DryRun, RemovingIsTriedInTheSameWay) {
    letter();
    ASSERT_EQ(imprinter("stamp --title x --in-place letter.pdf").status, 0);
    EXPECT_EQ(dry("unstamp --in-place letter.pdf").output, "letter.pdf: Stamps would be removed from 3 pages.\n");
    EXPECT_EQ(dry("unstamp --configuration Received --in-place letter.pdf").status, 2);
}
