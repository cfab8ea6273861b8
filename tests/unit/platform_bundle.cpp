// SPDX-License-Identifier: MIT
#include "../support/Environment.h"

#include <Foundation/NSBundle.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace {

using namespace platform;
namespace fs = std::filesystem;

constexpr const char* localeVariables[] = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};

/// A folder to put a bundle together in.
class Bundles : public testing::Test {
protected:
    Bundles() {
        for (const auto* name : localeVariables)
            environment.set(name, std::nullopt);
        std::string pattern = testing::TempDir() + "bundle-XXXXXX";
        path = fs::path(mkdtemp(pattern.data())) / "Sample.prefPane";
        fs::create_directories(path);
    }
    ~Bundles() override { fs::remove_all(path.parent_path()); }

    void write(const fs::path& name, const std::string& content) const {
        fs::create_directories((path / name).parent_path());
        std::ofstream(path / name, std::ios::binary) << content;
    }
    void writeInformation(const std::string& content = {}) const {
        write("Info.plist", "<plist version=\"1.0\"><dict>" + content + "</dict></plist>");
    }
    void writeTable(const std::string& language, const std::string& content,
                    const std::string& name = "Localizable") const {
        write(fs::path(language + ".lproj") / (name + ".strings"), content);
    }

    support::Environment environment;
    fs::path path;
};

TEST_F(Bundles, AreFoldersWithAReadableInformationList) {
    testing::internal::CaptureStderr();
    EXPECT_FALSE(NSBundle::bundleWithPath(path / "absent"));
    EXPECT_FALSE(NSBundle::bundleWithPath(path)) << "an empty folder";
    write("Info.plist", "{ a = b; }");
    EXPECT_FALSE(NSBundle::bundleWithPath(path)) << "a list of another kind";
    fs::remove(path / "Info.plist");
    fs::create_directory(path / "Info.plist");
    EXPECT_FALSE(NSBundle::bundleWithPath(path)) << "a folder in place of the list";
    fs::remove(path / "Info.plist");
    const auto log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 4) << log;
    EXPECT_NE(log.find("Sample.prefPane is no bundle"), std::string::npos) << log;
    writeInformation();
    EXPECT_TRUE(NSBundle::bundleWithPath(path));
}

TEST_F(Bundles, GiveTheTextsOfTheirInformationList) {
    writeInformation("<key>NSMainNibFile</key><string>Sample</string><key>a</key><true/>");
    const auto bundle = NSBundle::bundleWithPath(path);
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->bundlePath(), path);
    EXPECT_EQ(bundle->objectForInfoDictionaryKey(u"NSMainNibFile"), u"Sample");
    EXPECT_EQ(bundle->objectForInfoDictionaryKey(u"a"), std::nullopt);
    EXPECT_EQ(bundle->objectForInfoDictionaryKey(u"absent"), std::nullopt);
}

TEST_F(Bundles, ListTheirLanguagesInOrder) {
    writeInformation();
    for (const auto* folder : {"en.lproj", "ja.lproj", "de.lproj", "pt-BR.lproj", "images", "fr.txt"})
        fs::create_directory(path / folder);
    EXPECT_EQ(NSBundle::bundleWithPath(path)->localizations(), (std::vector<std::string>{"de", "en", "ja", "pt-BR"}));
}

TEST_F(Bundles, ChooseTheFirstOfTheUsersLanguagesThatTheyHave) {
    struct Row {
        const char* row;
        std::map<std::string, std::string> variables;
        std::string expected;
    };
    const Row table[] = {
        {"nothing said", {}, "en"},
        {"LANG", {{"LANG", "de_DE.UTF-8"}}, "de"},
        {"LANG without territory", {{"LANG", "ja"}}, "ja"},
        {"LANG with modifier", {{"LANG", "de_DE@euro"}}, "de"},
        {"LC_MESSAGES before LANG", {{"LANG", "de_DE.UTF-8"}, {"LC_MESSAGES", "ja_JP.UTF-8"}}, "ja"},
        {"LC_ALL before both",
         {{"LANG", "de_DE.UTF-8"}, {"LC_MESSAGES", "de_DE.UTF-8"}, {"LC_ALL", "ja_JP.UTF-8"}},
         "ja"},
        {"empty LC_ALL counts for nothing", {{"LANG", "de_DE.UTF-8"}, {"LC_ALL", ""}}, "de"},
        {"LANGUAGE before all", {{"LANG", "ja_JP.UTF-8"}, {"LC_ALL", "ja_JP.UTF-8"}, {"LANGUAGE", "de"}}, "de"},
        {"LANGUAGE is a list", {{"LANG", "ja_JP.UTF-8"}, {"LANGUAGE", "sv:fi:de:ja"}}, "de"},
        {"LANGUAGE with gaps", {{"LANG", "ja_JP.UTF-8"}, {"LANGUAGE", "::de"}}, "de"},
        {"empty LANGUAGE counts for nothing", {{"LANG", "ja_JP.UTF-8"}, {"LANGUAGE", ""}}, "ja"},
        {"LANGUAGE does not count under C", {{"LANG", "C"}, {"LANGUAGE", "de"}}, "en"},
        {"LANGUAGE does not count without a locale", {{"LANGUAGE", "de"}}, "en"},
        {"C", {{"LANG", "C"}}, "en"},
        {"C with an encoding", {{"LANG", "C.UTF-8"}}, "en"},
        {"POSIX", {{"LANG", "de_DE.UTF-8"}, {"LC_ALL", "POSIX"}}, "en"},
        {"English", {{"LANG", "en_GB.UTF-8"}}, "en"},
        {"territory that has its own", {{"LANG", "pt_BR.UTF-8"}}, "pt-BR"},
        {"another territory has none", {{"LANG", "pt_PT.UTF-8"}}, "en"},
        {"territory before its language", {{"LANG", "de_AT.UTF-8"}}, "de"},
        {"territory, then the next language", {{"LANG", "pt_BR.UTF-8"}, {"LANGUAGE", "pt_PT:ja"}}, "ja"},
        {"Chinese as the territory writes it", {{"LANG", "zh_CN.UTF-8"}}, "zh-Hans"},
        {"so does another", {{"LANG", "zh_SG.UTF-8"}}, "zh-Hans"},
        {"another writes otherwise", {{"LANG", "zh_TW.UTF-8"}}, "en"},
        {"Chinese with its script", {{"LANG", "zh_Hans_CN.UTF-8"}}, "zh-Hans"},
        {"Chinese alone", {{"LANG", "zh"}}, "zh-Hans"},
        {"unknown language", {{"LANG", "sv_SE.UTF-8"}}, "en"},
        {"case matters", {{"LANG", "DE"}}, "en"},
    };
    writeInformation();
    for (const auto* folder : {"en.lproj", "ja.lproj", "de.lproj", "pt-BR.lproj", "zh-Hans.lproj"})
        fs::create_directory(path / folder);
    for (const auto& row : table) {
        for (const auto* name : localeVariables) {
            const auto value = row.variables.find(name);
            environment.set(name, value == row.variables.end() ? std::nullopt : std::optional(value->second));
        }
        EXPECT_EQ(NSBundle::bundleWithPath(path)->preferredLocalization(), row.expected) << row.row;
    }
}

TEST_F(Bundles, WithoutAFittingLanguageAnswerWithTheCommonFilesAlone) {
    writeInformation();
    writeTable("ja", "a = ja;");
    write("Localizable.strings", "a = common;");
    const auto bundle = NSBundle::bundleWithPath(path);
    EXPECT_EQ(bundle->preferredLocalization(), "");
    EXPECT_EQ(bundle->localizedStringForKeyValueTable(u"a", u"", u""), u"common");
}

TEST_F(Bundles, TranslateKeys) {
    writeInformation();
    writeTable("en", "\"Title\" = \"Titel\"; \"Empty\" = \"\";");
    writeTable("en", "Title = other;", "Other");
    const auto bundle = NSBundle::bundleWithPath(path);
    const struct {
        const char* row;
        std::u16string key;
        std::u16string value;
        std::u16string table;
        std::u16string expected;
    } table[] = {
        {"found", u"Title", u"", u"", u"Titel"},
        {"found in the table by its name", u"Title", u"", u"Localizable", u"Titel"},
        {"found, value given", u"Title", u"value", u"", u"Titel"},
        {"found in another table", u"Title", u"", u"Other", u"other"},
        {"an empty text is found", u"Empty", u"value", u"", u""},
        {"missing", u"Absent", u"", u"", u"Absent"},
        {"missing, value given", u"Absent", u"value", u"", u"value"},
        {"missing table", u"Title", u"", u"None", u"Title"},
        {"case matters", u"title", u"", u"", u"title"},
        {"empty key", u"", u"", u"", u""},
        {"empty key, value given", u"", u"value", u"", u"value"},
    };
    for (const auto& row : table)
        EXPECT_EQ(bundle->localizedStringForKeyValueTable(row.key, row.value, row.table), row.expected) << row.row;
}

TEST_F(Bundles, DoNotMixLanguagesByKey) {
    environment.set("LANG", "de_DE.UTF-8");
    writeInformation();
    writeTable("en", "a = english; b = english;");
    writeTable("de", "a = deutsch;");
    const auto bundle = NSBundle::bundleWithPath(path);
    EXPECT_EQ(bundle->localizedStringForKeyValueTable(u"a", u"", u""), u"deutsch");
    EXPECT_EQ(bundle->localizedStringForKeyValueTable(u"b", u"", u""), u"b");
}

TEST_F(Bundles, ReadATableOnce) {
    writeInformation();
    writeTable("en", "a = before;");
    const auto bundle = NSBundle::bundleWithPath(path);
    EXPECT_EQ(bundle->localizedStringForKeyValueTable(u"a", u"", u""), u"before");
    writeTable("en", "a = after;");
    EXPECT_EQ(bundle->localizedStringForKeyValueTable(u"a", u"", u""), u"before");
    EXPECT_EQ(NSBundle::bundleWithPath(path)->localizedStringForKeyValueTable(u"a", u"", u""), u"after");
}

TEST_F(Bundles, LeaveOutATableWithAFaultAndSayWhereOnce) {
    writeInformation();
    writeTable("en", "a = b;\nc = d\n");
    const auto bundle = NSBundle::bundleWithPath(path);
    testing::internal::CaptureStderr();
    EXPECT_EQ(bundle->localizedStringForKeyValueTable(u"a", u"", u""), u"a");
    EXPECT_EQ(bundle->localizedStringForKeyValueTable(u"c", u"value", u""), u"value");
    const auto log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_NE(log.find("Localizable.strings is left out: line 3"), std::string::npos) << log;
}

TEST_F(Bundles, ReadTablesInUtf16) {
    writeInformation();
    writeTable("en", std::string("\xFF\xFE"
                                 "a\0=\0\xE4\0;\0",
                                 10));
    testing::internal::CaptureStderr();
    EXPECT_EQ(NSBundle::bundleWithPath(path)->localizedStringForKeyValueTable(u"a", u"", u""), u"a")
        << "a word has ASCII letters only";
    EXPECT_NE(testing::internal::GetCapturedStderr().find("line 1"), std::string::npos);
    writeTable("en", std::string("\xFF\xFE"
                                 "a\0=\0'\0\xE4\0'\0;\0",
                                 14));
    EXPECT_EQ(NSBundle::bundleWithPath(path)->localizedStringForKeyValueTable(u"a", u"", u""), u"\u00E4");
}

TEST_F(Bundles, FindTheLocalizedFileFirst) {
    writeInformation();
    write("both.txt", "");
    write("en.lproj/both.txt", "");
    write("common.txt", "");
    write("en.lproj/localized.txt", "");
    write("de.lproj/german.txt", "");
    write("plain", "");
    fs::create_directory(path / "folder.txt");
    const auto bundle = NSBundle::bundleWithPath(path);
    const struct {
        std::u16string name;
        std::u16string extension;
        std::optional<fs::path> expected;
    } table[] = {
        {u"both", u"txt", "en.lproj/both.txt"},
        {u"common", u"txt", "common.txt"},
        {u"localized", u"txt", "en.lproj/localized.txt"},
        {u"german", u"txt", std::nullopt},
        {u"plain", u"", "plain"},
        {u"common.txt", u"", "common.txt"},
        {u"common", u"", std::nullopt},
        {u"common", u"TXT", std::nullopt},
        {u"folder", u"txt", std::nullopt},
        {u"absent", u"txt", std::nullopt},
    };
    for (const auto& row : table) {
        const auto url = bundle->URLForResourceWithExtension(row.name, row.extension);
        EXPECT_EQ(url ? std::optional(url->path()) : std::nullopt,
                  row.expected ? std::optional(path / *row.expected) : std::nullopt);
    }
}

TEST_F(Bundles, SayWhyTheirLibraryCannotBeLoaded) {
    writeInformation("<key>CFBundleExecutable</key><string>absent.so</string>");
    std::string error;
    EXPECT_FALSE(NSBundle::bundleWithPath(path)->load(error));
    EXPECT_NE(error.find("absent.so"), std::string::npos) << error;
    write("absent.so", "no library");
    error.clear();
    EXPECT_FALSE(NSBundle::bundleWithPath(path)->load(error));
    EXPECT_NE(error.find("absent.so"), std::string::npos) << error;
    writeInformation();
    error.clear();
    EXPECT_FALSE(NSBundle::bundleWithPath(path)->load(error)) << "no library is named";
    EXPECT_FALSE(error.empty());
}

TEST_F(Bundles, OwnTheClassesOfTheirLibraryAndAreThenTheSameObject) {
    writeInformation("<key>CFBundleExecutable</key><string>Sample.so</string>"
                     "<key>NSPrincipalClass</key><string>UnitLoaded</string>");
    fs::copy_file(BUNDLE_LIBRARY, path / "Sample.so");
    ASSERT_EQ(NSClassFromString(u"UnitLoaded"), nullptr);
    const auto bundle = NSBundle::bundleWithPath(path);
    EXPECT_EQ(bundle->principalClass(), nullptr);
    std::string error;
    ASSERT_TRUE(bundle->load(error)) << error;
    ASSERT_TRUE(bundle->load(error)) << "loading again does nothing";
    const auto* cls = bundle->principalClass();
    ASSERT_TRUE(cls);
    EXPECT_EQ(cls, NSClassFromString(u"UnitLoaded"));
    EXPECT_EQ(NSBundle::bundleForClass(cls), bundle);
    EXPECT_EQ(cls->make()->classTable(), cls);
    EXPECT_EQ(NSBundle::bundleWithPath(path), bundle);
    EXPECT_EQ(NSBundle::bundleWithPath(path / ""), bundle) << "with a separator at the end";
    EXPECT_EQ(NSBundle::bundleWithPath(path / ".." / path.filename()), bundle) << "by a detour";
}

TEST_F(Bundles, OwnNoClassOfTheProgram) {
    NSClass description;
    description.name = u"UnitOfTheProgram";
    const ClassRegistration registration(description);
    EXPECT_EQ(NSBundle::bundleForClass(NSClassFromString(u"UnitOfTheProgram")), nullptr);
    EXPECT_EQ(NSBundle::bundleForClass(nullptr), nullptr);
}

} // namespace
