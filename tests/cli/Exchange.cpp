// SPDX-License-Identifier: MIT
// Configurations between machines, and what they look like.

#include "ProgramTest.h"

#include <QImage>

using namespace cli_test;

namespace {

class Exchange : public ProgramTest {};

} // namespace

TEST_F(Exchange, WhatIsExportedCanBeImportedElsewhere) {
    EXPECT_EQ(imprinter("export --output mine.json Received 'Page of Pages'").status, 0);
    EXPECT_EQ(imprinter("--store mine.json list").output, "Received\nPage of Pages\n");
    writeFile(folder / "other.json", R"({"format": "imprinter-configurations", "version": 1, "configurations": [
        {"uniqueID": "own", "name": "Own", "titleTokens": ["own"]}]})");
    const auto run = imprinter("--store other.json import mine.json");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(run.output, "2 configurations were imported\n");
    EXPECT_EQ(imprinter("--store other.json list").output, "Own\nReceived\nPage of Pages\n");
    EXPECT_EQ(imprinter("--store other.json show Received").output, imprinter("show Received").output);
    EXPECT_EQ(imprinter("--store other.json export").status, 0);
}

TEST_F(Exchange, AStoreThatIsNotThereIsNamedAndMadeByAnImportOnly) {
    writeFile(folder / "own.json", R"({"format": "imprinter-configurations", "version": 1, "configurations": [
        {"uniqueID": "own", "name": "Own", "titleTokens": ["own"]}]})");
    letter();
    for (const std::string command : {"list", "show Received", "export", "stamp --configuration Received letter.pdf",
                                      "preview --configuration Received --output a.png"}) {
        const auto before = files();
        const auto run = imprinter("--store tpyo.json " + command);
        EXPECT_EQ(run.status, 4) << command;
        EXPECT_EQ(run.output, "imprinter: tpyo.json: There is no such file of configurations; `import` makes one\n");
        EXPECT_EQ(files(), before);
    }
    EXPECT_EQ(imprinter("--store new.json import own.json").status, 0);
    EXPECT_EQ(imprinter("--store new.json list").output, "Own\n");
}

TEST_F(Exchange, SuppliedConfigurationsThatNobodyKeptGiveWayToImportedOnes) {
    ASSERT_EQ(imprinter("export --output sent.json Received").status, 0);
    auto sent = readFile(folder / "sent.json");
    const auto at = sent.find("\"rotation\": ");
    ASSERT_NE(at, std::string::npos);
    sent.replace(at, sent.find_first_of(",\n", at) - at, "\"rotation\": 45");
    writeFile(folder / "sent.json", sent);
    const auto run = imprinter("import sent.json");
    EXPECT_EQ(run.output, "1 configuration was imported\n");
    EXPECT_NE(imprinter("show Received").output.find("\"rotation\": 45"), std::string::npos);
    EXPECT_EQ(imprinter("list").output, "Received\nPage of Pages\nConfidential\n");
}

TEST_F(Exchange, WhatIsThereAlreadyIsReplacedOnlyWhenToldSo) {
    writeFile(folder / "a.json", R"({"format": "imprinter-configurations", "version": 1, "configurations": [
        {"uniqueID": "1", "name": "Old", "titleTokens": ["old"]},
        {"uniqueID": "2", "name": "Both", "combinedConfiguration": true, "members": ["1"]}]})");
    writeFile(folder / "b.json", R"({"format": "imprinter-configurations", "version": 1, "configurations": [
        {"uniqueID": "1", "name": "New", "titleTokens": ["new"]}]})");
    auto run = imprinter("--store a.json import b.json");
    EXPECT_EQ(run.output,
              "imprinter: b.json: \"New\" is there already and was left as it is\n0 configurations were imported\n");
    EXPECT_EQ(imprinter("--store a.json list").output, "Old\nBoth\n");
    run = imprinter("--store a.json import --replace b.json");
    EXPECT_EQ(run.output, "1 configuration was imported\n");
    EXPECT_EQ(imprinter("--store a.json list").output, "New\nBoth\n");
    // The combined one has the new member.
    letter();
    ASSERT_EQ(imprinter("--store a.json stamp --configuration Both --output out.pdf letter.pdf").status, 0);
    EXPECT_TRUE(bears("out.pdf", "new"));
}

TEST_F(Exchange, AnIdentifierInOtherLettersIsTheSame) {
    writeFile(folder / "a.json", R"({"format": "imprinter-configurations", "version": 1, "configurations": [
        {"uniqueID": "ab-1", "name": "Old"},
        {"uniqueID": "2", "name": "Both", "combinedConfiguration": true, "members": ["ab-1"]}]})");
    writeFile(folder / "b.json", R"({"format": "imprinter-configurations", "version": 1, "configurations": [
        {"uniqueID": "AB-1", "name": "New"}]})");
    EXPECT_EQ(imprinter("--store a.json import b.json").output,
              "imprinter: b.json: \"New\" is there already and was left as it is\n0 configurations were imported\n");
    EXPECT_EQ(imprinter("--store a.json import --replace b.json").output, "1 configuration was imported\n");
    EXPECT_EQ(imprinter("--store a.json list").output, "New\nBoth\n");
    EXPECT_NE(imprinter("--store a.json show Both").output.find("ab-1"), std::string::npos) << "it keeps its own";
}

TEST_F(Exchange, AStoreThatCannotBeReadIsLeftAloneAndReadOnce) {
    ASSERT_EQ(imprinter("export --output a.json").status, 0);
    const auto whole = readFile(folder / "a.json");
    for (const auto& damaged :
         {whole.substr(0, whole.size() / 2), std::string(R"({"format": "imprinter-configurations", "version": 2})")}) {
        writeFile(folder / "mine.json", damaged);
        writeFile(folder / "calls", "");
        const auto before = files();
        const auto run = shell("strace -f -o calls -P " + quoted(folder / "mine.json") + " -e trace=openat " +
                               environment() + "ASAN_OPTIONS=detect_leaks=0 " + quoted(IMPRINTER) + " --store " +
                               quoted(folder / "mine.json") + " import a.json");
        EXPECT_EQ(run.status, 4) << run.output;
        EXPECT_EQ(lines(run.output), 1) << run.output;
        EXPECT_NE(run.output.find("The file is left as it is."), std::string::npos) << run.output;
        EXPECT_EQ(readFile(folder / "mine.json"), damaged);
        EXPECT_EQ(files(), before);
        const auto calls = readFile(folder / "calls");
        EXPECT_EQ(calls.find("openat("), calls.rfind("openat(")) << calls;
        EXPECT_NE(calls.find("openat("), std::string::npos);
    }
}

TEST_F(Exchange, ACombinedConfigurationBringsItsMembers) {
    writeFile(folder / "a.json", R"({"format": "imprinter-configurations", "version": 1, "configurations": [
        {"uniqueID": "1", "name": "One", "titleTokens": ["one"]}, {"uniqueID": "3", "name": "Three"},
        {"uniqueID": "2", "name": "Both", "combinedConfiguration": true, "members": ["1"]}]})");
    EXPECT_EQ(imprinter("--store a.json export --output b.json Both").status, 0);
    EXPECT_EQ(imprinter("--store b.json list").output, "One\nBoth\n");
}

TEST_F(Exchange, ACombinedOneInsideACombinedOneIsRefusedByName) {
    writeFile(folder / "a.json", R"({"format": "imprinter-configurations", "version": 1, "configurations": [
        {"uniqueID": "1", "name": "One", "titleTokens": ["old"]},
        {"uniqueID": "2", "name": "Both", "combinedConfiguration": true, "members": ["1"]}]})");
    const auto before = readFile(folder / "a.json");
    // What is a member here is combined there.
    writeFile(folder / "b.json", R"({"format": "imprinter-configurations", "version": 1, "configurations": [
        {"uniqueID": "9", "name": "Nine"},
        {"uniqueID": "1", "name": "Several", "combinedConfiguration": true, "members": ["9"]}]})");
    auto run = imprinter("--store a.json import --replace b.json");
    EXPECT_EQ(run.status, 2) << run.output;
    EXPECT_EQ(run.output, "imprinter: b.json: \"Both\" would contain \"Several\", which is combined itself\n");
    EXPECT_EQ(readFile(folder / "a.json"), before);
    // And what is combined here is a member there.
    writeFile(folder / "c.json", R"({"format": "imprinter-configurations", "version": 1, "configurations": [
        {"uniqueID": "2", "name": "Plain"},
        {"uniqueID": "3", "name": "Three", "combinedConfiguration": true, "members": ["2"]}]})");
    run = imprinter("--store a.json import c.json");
    EXPECT_EQ(run.status, 2) << run.output;
    EXPECT_NE(run.output.find("\"Three\" would contain \"Both\", which is combined itself"), std::string::npos)
        << run.output;
    EXPECT_EQ(readFile(folder / "a.json"), before);
}

TEST_F(Exchange, WhatCannotBeImportedChangesNothing) {
    ASSERT_EQ(imprinter("export --output a.json").status, 0);
    const auto before = readFile(folder / "a.json");
    writeFile(folder / "bad.json", "{ not json");
    for (const std::string name : {"bad.json", "missing.json", "."}) {
        const auto run = imprinter("--store a.json import " + name);
        EXPECT_EQ(run.status, 2) << run.output;
        EXPECT_EQ(lines(run.output), 1) << run.output;
        EXPECT_NE(run.output.find(name), std::string::npos) << run.output;
        EXPECT_EQ(readFile(folder / "a.json"), before);
    }
    EXPECT_EQ(imprinter("--store bad.json import a.json").status, 4);
    EXPECT_EQ(imprinter("import").status, 64);
    EXPECT_EQ(imprinter("show").status, 64);
    EXPECT_EQ(imprinter("show Nobody").status, 4);
    EXPECT_EQ(imprinter("export --output a.json/x.json Received").status, 3);
}

TEST_F(Exchange, NoExportTakesThePlaceOfTheWindowsConfigurations) {
    ASSERT_EQ(imprinter("export --output mine.json").status, 0);
    ASSERT_EQ(imprinter("import mine.json").status, 0);
    const auto store = folder / "data/imprinter/configurations.json";
    const auto before = readFile(store);
    ASSERT_NE(before, "");
    const auto run = imprinter("--store mine.json export --output " + quoted(store));
    EXPECT_EQ(run.status, 3) << run.output;
    EXPECT_NE(run.output.find("configurations.json"), std::string::npos) << run.output;
    EXPECT_EQ(readFile(store), before);
}

TEST_F(Exchange, APreviewIsThePictureThatStampingTheSampleGives) {
    ASSERT_TRUE(render::white(400, 300).save((folder / "page.png").c_str()));
    ASSERT_EQ(imprinter("preview --configuration Received --output preview.png page.png").status, 0);
    ASSERT_EQ(imprinter("stamp --configuration Received --output stamped.png page.png").status, 0);
    const QImage preview((folder / "preview.png").c_str());
    ASSERT_FALSE(preview.isNull());
    EXPECT_TRUE(render::differingArea(preview, QImage((folder / "stamped.png").c_str())).isEmpty());
    ASSERT_EQ(imprinter("preview --configuration Received --output sample.jpg").status, 0);
    EXPECT_EQ(QImage((folder / "sample.jpg").c_str()).size(), QSize(1240, 1754));
    EXPECT_EQ(imprinter("preview --configuration Received").status, 64);
    EXPECT_EQ(imprinter("preview --configuration Nobody --output x.png").status, 4);
    EXPECT_EQ(imprinter("preview --configuration Received --output no/x.png").status, 3);
    EXPECT_EQ(imprinter("preview --configuration Received --output x.png missing.png").status, 2);
}
