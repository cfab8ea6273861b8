// SPDX-License-Identifier: MIT
// The program as it is called from a shell: what it prints, its exit status, and what it leaves on disk.

#include "../render/Documents.h"
#include "../render/Render.h"

#include <algorithm>

#include <gtest/gtest.h>

using render::document;
using render::Folder;
using render::quoted;
using render::readFile;
using render::writeFile;

namespace fs = std::filesystem;

namespace {

class CommandLine : public ::testing::Test {
protected:
    /// Runs the program with data and settings of its own; both of its streams are in `output`.
    render::Run imprinter(const std::string& arguments, const std::string& variables = {}) {
        const std::string environment = "env -u DISPLAY -u WAYLAND_DISPLAY HOME=" + quoted(folder.path()) +
                                        " XDG_DATA_HOME=" + quoted(folder / "data") +
                                        " XDG_CONFIG_HOME=" + quoted(folder / "config") + " LC_ALL=C.UTF-8 " +
                                        variables + " ";
        return render::run("cd " + quoted(folder.path()) + " && " + environment + quoted(IMPRINTER) + " " + arguments);
    }

    fs::path letter(const std::string& name = "letter.pdf") {
        writeFile(folder / name, document(3, "/MediaBox [0 0 595 842]", "BT ET"));
        return folder / name;
    }

    std::string textOf(const fs::path& file) { return render::run("pdftotext -layout " + quoted(file) + " -").output; }

    /// Everything in the working folder but the program's own data.
    std::vector<std::string> files() {
        auto names = folder.names();
        std::erase(names, "data");
        std::erase(names, "config");
        return names;
    }

    Folder folder;
};

TEST_F(CommandLine, ListsTheSuppliedConfigurationsAtFirst) {
    const auto run = imprinter("list");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "Received\nPage of Pages\nConfidential\n");
}

TEST_F(CommandLine, LoadsNothingOfTheWindowForACommand) {
    const auto loaded = [this](const std::string& arguments) {
        const auto traced = imprinter(arguments, "LD_DEBUG=files LD_DEBUG_OUTPUT=loaded");
        EXPECT_EQ(traced.status, 0) << traced.output;
        auto found = render::run("cat " + quoted(folder.path()) + "/loaded.*").output;
        render::run("rm " + quoted(folder.path()) + "/loaded.*");
        return found;
    };
    letter();
    const auto forStamping = loaded("stamp --configuration Received --output stamped.pdf letter.pdf");
    EXPECT_NE(forStamping.find("libQt6Gui"), std::string::npos);
    EXPECT_EQ(forStamping.find("libQt6Widgets"), std::string::npos);
    EXPECT_NE(loaded("pictures pictures").find("libQt6Widgets"), std::string::npos);
}

TEST_F(CommandLine, StampsOneFileIntoAFile) {
    letter();
    const auto run = imprinter("stamp --configuration 'Page of Pages' --output out.pdf letter.pdf");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(run.output, "");
    const auto text = textOf(folder / "out.pdf");
    for (const char* line : {"Page 1 of 3", "Page 2 of 3", "Page 3 of 3"})
        EXPECT_NE(text.find(line), std::string::npos) << text;
}

TEST_F(CommandLine, StampsSeveralFilesIntoAFolderThatItMakes) {
    letter("a.pdf");
    letter("b.pdf");
    const auto run = imprinter("stamp --configuration Received --output stamped/there a.pdf b.pdf");
    EXPECT_EQ(run.status, 0) << run.output;
    for (const char* name : {"a.pdf", "b.pdf"})
        EXPECT_NE(textOf(folder / "stamped" / "there" / name).find("RECEIVED"), std::string::npos) << name;
}

TEST_F(CommandLine, StampsSeveralConfigurationsInOrder) {
    letter();
    const auto run =
        imprinter("stamp --configuration Received --configuration 'Page of Pages' --output out.pdf letter.pdf");
    EXPECT_EQ(run.status, 0) << run.output;
    const auto text = textOf(folder / "out.pdf");
    EXPECT_NE(text.find("RECEIVED"), std::string::npos);
    EXPECT_NE(text.find("Page 3 of 3"), std::string::npos);
}

TEST_F(CommandLine, StampsPictures) {
    ASSERT_TRUE(render::white(400, 300).save(QString::fromStdString((folder / "scan.png").string())));
    ASSERT_TRUE(render::white(400, 300).save(QString::fromStdString((folder / "scan.jpg").string())));
    for (const std::string name : {"scan.png", "scan.jpg"}) {
        const auto run = imprinter("stamp --configuration Received --output stamped-" + name + " " + name);
        EXPECT_EQ(run.status, 0) << run.output;
        const QImage before(QString::fromStdString((folder / name).string()));
        const QImage after(QString::fromStdString((folder / ("stamped-" + name)).string()));
        EXPECT_FALSE(render::differingArea(before, after).isEmpty()) << name;
    }
}

TEST_F(CommandLine, UsesAnotherStoreWhenToldSo) {
    ASSERT_EQ(imprinter("list").status, 0);
    writeFile(
        folder / "mine.json",
        R"({"format": "imprinter-configurations", "version": 1, "configurations": [{"uniqueID": "a", "name": "Mine"}]})");
    const auto run = imprinter("--store mine.json list");
    EXPECT_EQ(run.output, "Mine\n");
    EXPECT_EQ(run.status, 0);
}

TEST_F(CommandLine, AStoreThatCannotBeReadIsOneLineStatusFourAndLeftAsItIs) {
    struct Row {
        fs::path store;
        std::string bytes;
    };
    fs::create_directories(folder / "data" / "imprinter");
    fs::create_directories(folder / "folder" / "inside");
    for (const auto& [store, bytes] :
         {Row{folder / "data" / "imprinter" / "configurations.json", "{ not json"},
          Row{folder / "mine.json", R"({"format": "imprinter-configurations", "version": 1})"},
          Row{folder / "newer.json", R"({"format": "imprinter-configurations", "version": 99})"},
          Row{folder / "store.pdf", document(1, "/MediaBox [0 0 595 842]", "BT ET")}, Row{folder / "folder", ""}}) {
        if (!bytes.empty())
            writeFile(store, bytes);
        letter();
        const auto before = files();
        const auto beside = render::run("ls -a " + quoted(store.parent_path())).output;
        for (const std::string command :
             {"list", "stamp --configuration Received --output new/out.pdf letter.pdf", "pictures new"}) {
            const auto run = imprinter("--store " + quoted(store) + " " + command);
            EXPECT_EQ(run.status, 4) << command << ": " << run.output;
            EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 1) << run.output;
            EXPECT_NE(run.output.find(store.string()), std::string::npos) << run.output;
            EXPECT_TRUE(run.output.ends_with("The file is left as it is.\n")) << run.output;
            EXPECT_EQ(files(), before) << command;
            EXPECT_EQ(render::run("ls -a " + quoted(store.parent_path())).output, beside) << command;
        }
        if (!bytes.empty()) {
            EXPECT_EQ(readFile(store), bytes);
        }
    }
    EXPECT_TRUE(fs::exists(folder / "folder" / "inside"));
}

struct BadInput {
    const char* name;
    const char* file;
    std::string bytes;
};

std::string truncated() {
    const auto whole = document(3, "/MediaBox [0 0 595 842]", "BT ET");
    return whole.substr(0, whole.size() / 4);
}

TEST_F(CommandLine, WhatCannotBeReadIsOneLineStatusTwoAndNoOutput) {
    const BadInput inputs[] = {
        {"no PDF", "letter.pdf", "Dear Sir or Madam"},
        {"empty", "empty.pdf", ""},
        {"truncated", "half.pdf", truncated()},
        {"a header alone", "header.pdf", "%PDF-1.7\n"},
        {"a broken PNG", "broken.png", "\x89PNG\r\n\x1a\nxxxx"},
    };
    for (const auto& input : inputs) {
        writeFile(folder / input.file, input.bytes);
        const auto before = files();
        const auto run = imprinter("stamp --configuration Received --output out.pdf " + std::string(input.file));
        EXPECT_EQ(run.status, 2) << input.name << ": " << run.output;
        EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 1) << input.name << ": " << run.output;
        EXPECT_NE(run.output.find(input.file), std::string::npos) << input.name << ": " << run.output;
        EXPECT_EQ(files(), before) << input.name;
    }
    const auto run = imprinter("stamp --configuration Received --output out.pdf missing.pdf");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.output.find("missing.pdf"), std::string::npos) << run.output;
    EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 1) << run.output;
}

TEST_F(CommandLine, AnEncryptedDocumentWithoutItsPasswordIsRefused) {
    letter();
    ASSERT_EQ(render::run("qpdf --encrypt secret owner 256 -- " + quoted(folder / "letter.pdf") + " " +
                          quoted(folder / "locked.pdf"))
                  .status,
              0);
    const auto before = files();
    const auto run = imprinter("stamp --configuration Received --output out.pdf locked.pdf");
    EXPECT_EQ(run.status, 2) << run.output;
    EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 1) << run.output;
    EXPECT_NE(run.output.find("locked.pdf"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("password"), std::string::npos) << run.output;
    EXPECT_EQ(files(), before);
}

TEST_F(CommandLine, OneBadFileDoesNotKeepTheOthersFromBeingStamped) {
    letter("a.pdf");
    writeFile(folder / "b.pdf", "no PDF");
    letter("c.pdf");
    const auto run = imprinter("stamp --configuration Received --output out a.pdf b.pdf c.pdf");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.output.find("b.pdf"), std::string::npos) << run.output;
    EXPECT_TRUE(fs::exists(folder / "out" / "a.pdf"));
    EXPECT_FALSE(fs::exists(folder / "out" / "b.pdf"));
    EXPECT_TRUE(fs::exists(folder / "out" / "c.pdf"));
}

TEST_F(CommandLine, NeverWritesOverItsInput) {
    const auto file = letter();
    const auto before = readFile(file);
    const auto run = imprinter("stamp --configuration Received --output letter.pdf letter.pdf");
    EXPECT_EQ(run.status, 3) << run.output;
    EXPECT_EQ(readFile(file), before);
}

TEST_F(CommandLine, TwoFilesOfOneNameAreNotStampedIntoOne) {
    fs::create_directories(folder / "a");
    fs::create_directories(folder / "b");
    letter("a/x.pdf");
    letter("b/x.pdf");
    const auto run = imprinter("stamp --configuration Received --output out a/x.pdf b/x.pdf");
    EXPECT_EQ(run.status, 64);
    EXPECT_EQ(run.output, "imprinter: \"a/x.pdf\" and \"b/x.pdf\" would both be stamped into \"out/x.pdf\"\n");
    EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(CommandLine, OneFileIsNotStampedTwice) {
    letter();
    fs::create_symlink("letter.pdf", folder / "link.pdf");
    fs::create_hard_link(folder / "letter.pdf", folder / "hard.pdf");
    for (const std::string other : {"letter.pdf", "./letter.pdf", "link.pdf", "hard.pdf"}) {
        const auto run = imprinter("stamp --configuration Received --output out letter.pdf " + other);
        EXPECT_EQ(run.status, 64) << other;
        EXPECT_EQ(run.output, "imprinter: \"letter.pdf\" and \"" + other + "\" are the same file\n");
    }
    EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(CommandLine, NoOutputTakesThePlaceOfAnotherInput) {
    fs::create_directories(folder / "out");
    letter("x.pdf");
    const auto other = letter("out/y.pdf");
    const auto before = readFile(other);
    fs::create_symlink("y.pdf", folder / "out" / "x.pdf");
    const auto run = imprinter("stamp --configuration Received --output out x.pdf out/y.pdf");
    EXPECT_EQ(run.status, 64);
    EXPECT_EQ(run.output,
              "imprinter: \"x.pdf\" would be stamped into \"out/x.pdf\", which is the input \"out/y.pdf\"\n");
    EXPECT_EQ(readFile(other), before);
}

TEST_F(CommandLine, WithoutAnyFontOneLineSaysSo) {
    letter();
    ASSERT_TRUE(render::white(400, 300).save(QString::fromStdString((folder / "scan.png").string())));
    writeFile(folder / "fonts.conf", "<?xml version=\"1.0\"?><fontconfig><cachedir>" + (folder / "data").string() +
                                         "</cachedir></fontconfig>");
    for (const std::string name : {"letter.pdf", "scan.png"}) {
        const auto before = files();
        const auto run = imprinter("stamp --configuration Received --output out " + name,
                                   "FONTCONFIG_FILE=" + quoted(folder / "fonts.conf"));
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 1) << run.output;
        EXPECT_NE(run.output.find(name + ": There is nothing to stamp"), std::string::npos) << run.output;
        EXPECT_NE(run.output.find("This machine has no font that can be stamped."), std::string::npos) << run.output;
        EXPECT_EQ(files(), before);
    }
}

TEST_F(CommandLine, AFolderThatCannotBeMadeIsNamed) {
    letter();
    writeFile(folder / "taken", "");
    const auto run = imprinter("stamp --configuration Received --output taken/out/ letter.pdf");
    EXPECT_EQ(run.status, 3);
    EXPECT_NE(run.output.find("taken/out"), std::string::npos) << run.output;
}

TEST_F(CommandLine, AnUnknownConfigurationIsNamed) {
    letter();
    const auto run = imprinter("stamp --configuration Sent --output out.pdf letter.pdf");
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.output,
              "imprinter: no configuration is called \"Sent\"; there are \"Received\", \"Page of Pages\" and "
              "\"Confidential\"\n");
    EXPECT_FALSE(fs::exists(folder / "out.pdf"));
}

TEST_F(CommandLine, AConfigurationThatDiffersInCaseAloneIsNamed) {
    letter();
    const auto run = imprinter("stamp --configuration reCEIVED --output out.pdf letter.pdf");
    EXPECT_EQ(run.status, 4);
    EXPECT_EQ(run.output, "imprinter: no configuration is called \"reCEIVED\", but one \"Received\"\n");
    EXPECT_FALSE(fs::exists(folder / "out.pdf"));
}

TEST_F(CommandLine, WhatIsNoDocumentWhateverItsNameIsNotCalledAFileOfThatKind) {
    for (const std::string name : {"letter.pdf", "scan.jpg", "notes.txt"}) {
        writeFile(folder / name, "no document");
        const auto run = imprinter("stamp --configuration Received --output out " + name);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.output, "imprinter: " + name + ": This is no PDF, PNG, JPEG or TIFF file.\n");
    }
}

TEST_F(CommandLine, TheWindowOnAnotherStoreRemembersAConfigurationOfItsOwn) {
    const auto settings = folder / "config/imprinter/imprinter.ini";
    const auto remembered = [&](const std::string& section) {
        return render::run("sed -n '/^\\[" + section + "\\]/,/^\\[/p' " + quoted(settings) + " | grep '^[0-9a-zA-Z]*='")
            .output;
    };
    const std::string window = "QT_QPA_PLATFORM=offscreen IMPRINTER_END_AFTER_PAINT=1";
    ASSERT_EQ(imprinter("", window).status, 0);
    const auto usual = remembered("General");
    EXPECT_NE(usual.find("ImprinterPrefLastSelected="), std::string::npos) << readFile(settings);
    // Another store, without the configuration that was shown last; by its path and by a link to its folder.
    fs::create_directory(folder / "other");
    ASSERT_EQ(imprinter("export --output other/own.json Confidential").status, 0);
    ASSERT_EQ(imprinter("--store other/own.json", window).status, 0);
    EXPECT_EQ(remembered("General"), usual);
    const auto own = remembered("ImprinterPrefLastSelected");
    EXPECT_EQ(std::count(own.begin(), own.end(), '\n'), 1) << readFile(settings);
    const auto identifier = own.substr(own.find('=') + 1);
    EXPECT_EQ(usual.find(identifier), std::string::npos) << usual << own;
    EXPECT_NE(readFile(folder / "other/own.json").find(identifier.substr(0, identifier.size() - 1)), std::string::npos);
    fs::create_directory_symlink("other", folder / "link");
    ASSERT_EQ(imprinter("--store link/own.json", window).status, 0);
    EXPECT_EQ(remembered("ImprinterPrefLastSelected"), own);
    // The usual store by its path is the usual store.
    ASSERT_EQ(imprinter("--store data/imprinter/configurations.json", window).status, 0);
    EXPECT_EQ(remembered("General"), usual);
    EXPECT_EQ(remembered("ImprinterPrefLastSelected"), own);
}

TEST_F(CommandLine, AnIncompleteCommandSaysWhatIsMissing) {
    struct Row {
        const char* arguments;
        const char* says;
    };
    for (const auto& row :
         {Row{"stamp --output o.pdf a.pdf", "--configuration"},
          Row{"stamp --configuration Received --output '' a.pdf", "--output"},
          Row{"stamp --configuration Received --output o.pdf", "which file"},
          Row{"stamp --configuration", "--configuration needs a value"}, Row{"stamp --colour red", "--colour"},
          Row{"stampede", "stampede"}, Row{"list all", "list"}, Row{"--store", "--store needs a value"},
          Row{"--store ''", "--store needs a value"}, Row{"pictures", "pictures"},
          Row{"list --store a.json", "--store stands before the command"},
          Row{"stamp --store=a.json --configuration Received --output o.pdf a.pdf",
              "--store stands before the command: imprinter --store FILE stamp"}}) {
        const auto run = imprinter(row.arguments);
        EXPECT_EQ(run.status, 64) << row.arguments << ": " << run.output;
        EXPECT_NE(run.output.find(row.says), std::string::npos) << row.arguments << ": " << run.output;
        EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 1) << run.output;
    }
}

TEST_F(CommandLine, HelpShowsEveryCommand) {
    const auto run = imprinter("--help");
    EXPECT_EQ(run.status, 0);
    for (const char* command : {"imprinter list", "imprinter stamp", "imprinter pictures", "--store", "Exit status"})
        EXPECT_NE(run.output.find(command), std::string::npos) << command;
}

TEST_F(CommandLine, HelpIsShownAfterACommandToo) {
    const auto help = imprinter("--help").output;
    for (const char* arguments : {"list --help", "list -h", "stamp --help", "pictures --help",
                                  "stamp --configuration Received --help", "stamp a.pdf --store x -h"}) {
        const auto run = imprinter(arguments);
        EXPECT_EQ(run.status, 0) << arguments;
        EXPECT_EQ(run.output, help) << arguments;
    }
}

TEST_F(CommandLine, WhatIsGivenToAnOptionOrStandsBehindTwoDashesIsNoCallForHelp) {
    letter();
    EXPECT_EQ(imprinter("stamp --configuration --help --output out.pdf letter.pdf").status, 4);
    EXPECT_EQ(imprinter("stamp --configuration Received --output out.pdf -- --help").status, 2);
}

TEST_F(CommandLine, WithoutADisplayTheWindowSaysSo) {
    const auto run = imprinter("");
    EXPECT_EQ(run.status, 5);
    EXPECT_NE(run.output.find("display"), std::string::npos) << run.output;
}

TEST_F(CommandLine, OpeningDocumentsNeedsADisplayAndTakesNoOptions) {
    letter();
    EXPECT_EQ(imprinter("open letter.pdf").status, 5);
    const auto run = imprinter("open --output x letter.pdf");
    EXPECT_EQ(run.status, 64);
    EXPECT_EQ(run.output, "imprinter: `open` takes files, and no option --output\n");
    EXPECT_EQ(imprinter("open --help").status, 0);
}

TEST_F(CommandLine, ADisplayThatIsNotThereIsSaidToBeNone) {
    const auto run =
        render::run("DISPLAY=:4711 WAYLAND_DISPLAY= HOME=" + quoted(folder.path()) + " " + quoted(IMPRINTER));
    EXPECT_EQ(run.status, 5) << run.output;
    EXPECT_NE(run.output.find("there is no display"), std::string::npos) << run.output;
}

TEST_F(CommandLine, LeavesPicturesOfTheProgramWithoutADisplay) {
    const auto run = imprinter("pictures out");
    EXPECT_EQ(run.status, 0) << run.output;
    for (const char* name :
         {"pane-location.png", "pane-appearance.png", "pane-combined.png", "pane-empty.png", "preflight.png",
          "import.png", "unsaved.png", "progress.png", "menu-edit.png", "menu-sample.png"}) {
        const QImage picture(QString::fromStdString((folder / "out" / name).string()));
        EXPECT_GE(picture.width(), 800) << name;
        EXPECT_NE(run.output.find(std::string("out/") + name), std::string::npos) << run.output;
    }
    EXPECT_NE(textOf(folder / "out" / "sample-stamped.pdf").find("Page 1 of 1"), std::string::npos);
    const QImage stamped(QString::fromStdString((folder / "out" / "sample-stamped.jpg").string()));
    EXPECT_EQ(stamped.size(), QSize(1240, 1754));
}

} // namespace
