// SPDX-License-Identifier: MIT
// The manual page and the completion say what the program knows.

#include "ProgramTest.h"

#include <set>

using namespace cli_test;

namespace {

class Manual : public ProgramTest {
protected:
    /// The long options of a text.
    static std::set<std::string> optionsIn(const std::string& text) {
        std::set<std::string> options;
        for (auto at = text.find("--"); at != std::string::npos; at = text.find("--", at + 2)) {
            auto end = at + 2;
            while (end < text.size() && ((text[end] >= 'a' && text[end] <= 'z') || text[end] == '-'))
                ++end;
            if (end > at + 3)
                options.insert(text.substr(at, end - at));
        }
        return options;
    }
    fs::path source(const std::string& path) const { return fs::path(SOURCES) / path; }
};

} // namespace

TEST_F(Manual, ThePageIsWellFormedAndNamesEveryOptionOfTheHelp) {
    const auto page = source("standalone/cli/imprinter.1");
    const auto shown = shell("MANWIDTH=100 man --warnings=all -l " + quoted(page) + " | col -b");
    EXPECT_EQ(shown.output.find("warning:"), std::string::npos) << shown.output;
    EXPECT_EQ(optionsIn(shown.output), optionsIn(imprinter("--help").output));
    for (const char* command : {"open", "list", "show", "stamp", "unstamp", "preview", "export", "import", "pictures"})
        EXPECT_NE(shown.output.find(std::string("imprinter ") + command), std::string::npos) << command;
}

TEST_F(Manual, TheShellCompletesCommandsOptionsAndConfigurations) {
    const auto complete = [&](const std::string& words, int word) {
        writeFile(folder / "complete.sh", "PATH=" + quoted(fs::path(IMPRINTER).parent_path()) + ":$PATH\nsource " +
                                              quoted(source("standalone/cli/completion.bash")) + "\nCOMP_WORDS=(" +
                                              words + ")\nCOMP_CWORD=" + std::to_string(word) +
                                              "\n_imprinter\nprintf '%s\\n' \"${COMPREPLY[@]}\"\n");
        return shell(environment() + "bash complete.sh").output;
    };
    EXPECT_EQ(complete("imprinter un", 1), "unstamp\n");
    EXPECT_EQ(complete("imprinter stamp --al", 2), "--allow-signed\n");
    EXPECT_EQ(complete("imprinter stamp --configuration Re", 3), "Received\n");
    EXPECT_EQ(complete("imprinter stamp --configuration Pa", 3), "Page\\ of\\ Pages\n");
    EXPECT_EQ(complete("imprinter unstamp --stamp title-bottom-", 3), "title-bottom-left\ntitle-bottom-right\n");
    EXPECT_EQ(complete("imprinter unstamp --stamp Re", 3), "Received\n");
    EXPECT_EQ(complete("imprinter show Con", 2), "Confidential\n");
    writeFile(folder / "letter.pdf", "");
    EXPECT_EQ(complete("imprinter stamp --configuration Received let", 4), "letter.pdf\n");
    std::set<std::string> known = optionsIn(readFile(source("standalone/cli/completion.bash")));
    EXPECT_EQ(known, optionsIn(imprinter("--help").output));
}
