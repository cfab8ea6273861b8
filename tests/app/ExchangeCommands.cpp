// SPDX-License-Identifier: MIT
// Configurations from files and into files, by the File menu.

#include "WindowTest.h"

#include <filesystem>

using namespace platform;
namespace fs = std::filesystem;

namespace {

std::string fileOf(const std::string& configurations) {
    return R"({"format": "imprinter-configurations", "version": 1, "configurations": [)" + configurations + "]}";
}

class ExchangeCommands : public testing_support::WindowTest {
protected:
    using Names = std::vector<std::string>;
    Names namesIn(const std::string& name) {
        Names all;
        for (const auto& configuration : store::Store(path(name)).read().configurations)
            all.push_back(toUtf8(configuration->name()));
        return all;
    }
    std::string receivedWith(const std::string& rest) {
        return R"({"uniqueID": ")" + toUtf8(at(0)->uniqueID()) + R"(", )" + rest + "}";
    }
    const Names supplied{"Received", "Page of Pages", "Confidential"};
};

TEST_F(ExchangeCommands, ExportsTheConfigurationOnShowWithItsMembers) {
    const auto combined = model().createConfiguration(true);
    combined->setName(u"Both: 1/2");
    combined->addConfiguration(at(1));
    window->show(combined);
    QString suggested;
    answering({[&](QWidget& modal) {
                  suggested = dynamic_cast<QFileDialog&>(modal).selectedFiles().value(0);
                  take(path("both.json"))(modal);
              }},
              [&] { choose("Export Configuration…"); });
    EXPECT_TRUE(suggested.endsWith("/Both- 1-2.json")) << suggested.toStdString();
    EXPECT_EQ(namesIn("both.json"), (Names{"Page of Pages", "Both: 1/2"}));
    EXPECT_EQ(status(), "Exported to " + app::toQt(path("both.json").u16string()) + ".");
}

TEST_F(ExchangeCommands, ExportsAllAndTakesThemInElsewhere) {
    at(0)->setName(u"Mine");
    answering({take(path("all.json"))}, [&] { choose("Export All Configurations…"); });
    EXPECT_EQ(namesIn("all.json"), (Names{"Mine", "Page of Pages", "Confidential"}));
    model().setConfigurations({});
    answering({take(path("all.json"))}, [&] { choose("Import Configurations…"); });
    EXPECT_EQ(names(), (Names{"Mine", "Page of Pages", "Confidential"}));
    EXPECT_EQ(current(), at(0)) << "the first one that came is shown";
    EXPECT_EQ(status(), "3 configurations imported.");
    // Importing is undone as a whole.
    choose("Undo");
    EXPECT_TRUE(names().empty());
}

TEST_F(ExchangeCommands, NothingIsWrittenOverTheConfigurationsThemselvesOrOverAnotherKindOfFile) {
    session->history().clear();
    at(0)->setRotation(3);
    session->saveChanges();
    const auto before = contents("store/configurations.json");
    QString said;
    answering({take(path("store/configurations.json")), press("Yes"), press("OK", &said)},
              [&] { choose("Export All Configurations…"); });
    EXPECT_TRUE(said.contains("configurations.json” is the file that the configurations are kept in"))
        << said.toStdString();
    EXPECT_EQ(contents("store/configurations.json"), before);
    write("notes.json", "my notes");
    answering({take(path("notes.json")), press("Yes"), press("OK", &said)},
              [&] { choose("Export All Configurations…"); });
    EXPECT_TRUE(said.contains("notes.json” is not a file of configurations")) << said.toStdString();
    EXPECT_EQ(contents("notes.json"), "my notes");
}

TEST_F(ExchangeCommands, AFolderThatCannotBeWrittenIsNamedWithTheReason) {
    write("file", "in the way");
    QString said;
    // The dialog itself refuses a folder that is none, so that it goes while the dialog is open.
    fs::create_directory(path("gone"));
    answering({[&](QWidget& modal) {
                   fs::remove(path("gone"));
                   write("gone", "a file now");
                   take(path("gone/all.json"))(modal);
               },
               press("OK", &said)},
              [&] { choose("Export All Configurations…"); });
    EXPECT_TRUE(said.contains("gone")) << said.toStdString();
}

TEST_F(ExchangeCommands, ABadFileIsNamedWithTheReasonAndTheOthersAreImported) {
    write("bad.json", "{\"format\": ");
    write("good.json", fileOf(R"({"uniqueID": "1", "name": "Good"})"));
    QString said;
    answering({[&](QWidget& modal) {
                   auto* dialog = qobject_cast<QFileDialog*>(&modal);
                   dialog->setDirectory(folder.path());
                   dialog->findChild<QLineEdit*>("fileNameEdit")->setText("\"bad.json\" \"good.json\"");
                   QMetaObject::invokeMethod(dialog, "accept");
               },
               press("OK", &said)},
              [&] { choose("Import Configurations…"); });
    EXPECT_TRUE(said.contains("bad.json")) << said.toStdString();
    EXPECT_TRUE(said.contains("is not a file of configurations (line 1")) << said.toStdString();
    EXPECT_EQ(names().back(), "Good");
    EXPECT_EQ(contents("bad.json"), "{\"format\": ") << "and left as it is";
    EXPECT_EQ(status(), "One configuration imported.");
}

TEST_F(ExchangeCommands, WhatIsTheSameIsNeitherAskedAboutNorImported) {
    answering({take(path("all.json"))}, [&] { choose("Export All Configurations…"); });
    session->history().clear();
    answering({take(path("all.json"))}, [&] { choose("Import Configurations…"); });
    EXPECT_EQ(names(), supplied);
    EXPECT_TRUE(status().startsWith("There is nothing new in “")) << status().toStdString();
    EXPECT_FALSE(session->history().canUndo());
}

TEST_F(ExchangeCommands, WhatIsHereInAnotherFormIsReplacedKeptBesideOrLeftAsTheUserSays) {
    write("other.json", fileOf(receivedWith(R"("name": "Arrived", "titleTokens": ["arrived"])")));
    const auto own = at(0);
    QString said;
    const auto import = [&](const QString& button) {
        answering({take(path("other.json")), press(button, &said)}, [&] { choose("Import Configurations…"); });
    };
    import("Leave");
    EXPECT_TRUE(said.endsWith("something else:\nArrived")) << said.toStdString();
    EXPECT_EQ(names(), supplied);
    import("Cancel");
    EXPECT_EQ(names(), supplied);
    import("Keep Both");
    EXPECT_EQ(names(), (Names{"Received", "Page of Pages", "Confidential", "Arrived copy"}));
    EXPECT_NE(at(3)->uniqueID(), own->uniqueID());
    choose("Undo");
    import("Replace");
    EXPECT_EQ(names(), (Names{"Arrived", "Page of Pages", "Confidential"}));
    EXPECT_EQ(at(0), own) << "the very object, which the pane shows";
    EXPECT_EQ(current(), own);
    choose("Undo");
    EXPECT_EQ(names(), supplied);
}

TEST_F(ExchangeCommands, ACombinedOneInsideACombinedOneIsRefusedByName) {
    const auto combined = model().createConfiguration(true);
    combined->setName(u"Both");
    combined->addConfiguration(at(0));
    write("other.json", fileOf(R"({"uniqueID": "9", "name": "Nine"},)" +
                               receivedWith(R"("name": "Several", "combinedConfiguration": true, "members": ["9"])")));
    QString said;
    answering({take(path("other.json")), press("Replace"), press("OK", &said)},
              [&] { choose("Import Configurations…"); });
    EXPECT_TRUE(said.startsWith("Nothing was imported from “")) << said.toStdString();
    EXPECT_TRUE(said.endsWith("“Both” would contain “Several”, which is combined itself.")) << said.toStdString();
    EXPECT_EQ(names(), (Names{"Received", "Page of Pages", "Confidential", "Both"}));
}

TEST_F(ExchangeCommands, AMissingFileIsNamed) {
    QString said;
    answering({[&](QWidget& modal) {
                   write("short.json", fileOf(""));
                   // It goes after the dialog has seen it.
                   QObject::connect(qobject_cast<QFileDialog*>(&modal), &QDialog::accepted,
                                    [this] { fs::remove(path("short.json")); });
                   take(path("short.json"))(modal);
               },
               press("OK", &said)},
              [&] { choose("Import Configurations…"); });
    EXPECT_TRUE(said.startsWith("There is no file “")) << said.toStdString();
}

} // namespace
