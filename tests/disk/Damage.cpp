// SPDX-License-Identifier: MIT
#include "model_title.h"
#include "store_support.h"

#include <fstream>

#include <sys/stat.h>

namespace {

using store::Code;
using Damage = StoreTest;

TEST_F(Damage, IsKeptAsideAndNamedAndTheSuppliedConfigurationsTakeItsPlace) {
    put("not JSON at all");
    store::Store store(file);
    const auto result = store.load();
    EXPECT_EQ(namesOf(result.configurations), suppliedNames);
    EXPECT_FALSE(result.readOnly);
    EXPECT_TRUE(result.standIns);
    ASSERT_EQ(result.messages.size(), 1u);
    EXPECT_EQ(result.messages[0].code, Code::damaged);
    EXPECT_EQ(result.messages[0].file, file);
    ASSERT_EQ(othersInFolder().size(), 1u);
    const auto aside = othersInFolder()[0];
    EXPECT_TRUE(aside.starts_with("configurations.damaged-2")) << aside;
    EXPECT_TRUE(aside.ends_with(".json")) << aside;
    EXPECT_EQ(readAll(folder / aside), "not JSON at all");
    EXPECT_NE(sentenceOf(result).find(file.string()), std::string::npos) << sentenceOf(result);
    EXPECT_NE(sentenceOf(result).find((folder / aside).string()), std::string::npos) << sentenceOf(result);
    ASSERT_EQ(sentenceOf(store.save(*modelOf(result.configurations))), "");
    EXPECT_EQ(namesOf(store::Store(file).load().configurations), suppliedNames);
    EXPECT_EQ(readAll(folder / aside), "not JSON at all");
}

TEST_F(Damage, NeverTakesThePlaceOfAnEarlierOne) {
    for (const std::string text : {"first", "second", "third"}) {
        put(text);
        store::Store(file).load();
    }
    std::string kept;
    for (const auto& name : othersInFolder())
        kept += readAll(folder / name) + " ";
    EXPECT_EQ(othersInFolder().size(), 3u);
    for (const std::string text : {"first", "second", "third"})
        EXPECT_NE(kept.find(text), std::string::npos) << kept;
}

TEST_F(Damage, IsToldByLine) {
    put("{\n \"format\": \"imprinter-configurations\",\n oops\n}");
    EXPECT_NE(sentenceOf(store::Store(file).load()).find("line 3"), std::string::npos);
}

struct Bad {
    const char* what;
    std::string text;
    Code code;
    const char* told;
};

/// `value` under `key` in an otherwise good configuration.
std::string with(const std::string& key, const std::string& value) {
    return documentOf(R"({"uniqueID": "a", ")" + key + "\": " + value + "}");
}

std::string repeated(const std::string& text, int count) {
    std::string made;
    for (int i = 0; i < count; ++i)
        made += (i ? "," : "") + text;
    return made;
}

std::vector<Bad> badFiles() {
    const std::string head = R"({"format": "imprinter-configurations", )";
    const std::string deep(2000, '[');
    return {
        {"empty", "", Code::damaged, "line 1"},
        {"zeros", std::string(4096, '\0'), Code::damaged, "line 1"},
        {"a list", "[]", Code::damaged, "its format is not “imprinter-configurations”"},
        {"another format", R"({"format": "recipes", "version": 1})", Code::damaged,
         "its format is not “imprinter-configurations”"},
        {"two documents", documentOf("") + documentOf(""), Code::damaged, "line 1"},
        {"ill-formed UTF-8", with("name", "\"\xff\""), Code::damaged, "line 1"},
        {"a number beyond double", with("rotation", "1e999"), Code::damaged, "line 1"},
        {"not a number", with("rotation", "NaN"), Code::damaged, "line 1"},
        {"nested too deeply", head + R"("version": 1, "x": )" + deep, Code::damaged, "line 1"},
        {"no version", head + R"("configurations": []})", Code::invalid, "version is not a whole number"},
        {"version 0", head + R"("version": 0, "configurations": []})", Code::invalid, "version 0"},
        {"version 1.5", head + R"("version": 1.5, "configurations": []})", Code::invalid,
         "version is not a whole number"},
        {"no list", head + R"("version": 1})", Code::invalid, "configurations is not a list"},
        {"a text for a configuration", documentOf("\"x\""), Code::invalid, "configurations[0] is not an object"},
        {"no identifier", documentOf("{}"), Code::invalid, "configurations[0] has no uniqueID"},
        {"an empty identifier", documentOf(R"({"uniqueID": ""})"), Code::invalid, "configurations[0] has no uniqueID"},
        {"the same identifier", documentOf(R"({"uniqueID": "a"}, {"uniqueID": "b"}, {"uniqueID": "a"})"), Code::invalid,
         "configurations[2] has the uniqueID “a”, as configurations[0] has"},
        {"the same but for case", documentOf(R"({"uniqueID": "ä"}, {"uniqueID": "Ä"})"), Code::invalid,
         "configurations[1] has the uniqueID “Ä”, as configurations[0] has"},
        {"an unknown member",
         documentOf(R"({"uniqueID": "a"}, {"uniqueID": "c", "combinedConfiguration": true, "members": ["a", "z"]})"),
         Code::invalid, "configurations[1].members[1] names “z”, which is not there"},
        {"a member that is combined", documentOf(R"({"uniqueID": "c", "combinedConfiguration": true, "members": ["d"]},
                       {"uniqueID": "d", "combinedConfiguration": true})"),
         Code::invalid, "configurations[0].members[0] names “d”, which is combined itself"},
        {"a member of itself", documentOf(R"({"uniqueID": "c", "combinedConfiguration": true, "members": ["c"]})"),
         Code::invalid, "configurations[0].members[0] names “c”, which is combined itself"},
        {"members that are no texts", documentOf(R"({"uniqueID": "c", "combinedConfiguration": true, "members": [1]})"),
         Code::invalid, "configurations[0].members[0] is not a text"},
        {"members without being combined", with("members", "[]"), Code::invalid,
         "configurations[0] has members and is not combined"},
        {"a number for the name", with("name", "7"), Code::invalid, "configurations[0].name is not a text"},
        {"half a surrogate pair", with("name", R"("x\ud83d")"), Code::invalid,
         "configurations[0].name has half a surrogate pair"},
        {"the halves in the wrong order", with("titleTokens", R"(["\ude00\ud83d"])"), Code::invalid,
         "configurations[0].titleTokens[0] has half a surrogate pair"},
        {"half a pair in a font name", with("titleTokens", R"(["x", {"fullFontName": "\udc00"}])"), Code::invalid,
         "configurations[0].titleTokens[1].fullFontName has half a surrogate pair"},
        {"a number for a token", with("titleTokens", "[1]"), Code::invalid,
         "configurations[0].titleTokens[0] is not a text"},
        {"a text for a size", with("titleTokens", R"([{"fontSize": "12 pt"}])"), Code::invalid,
         "configurations[0].titleTokens[0].fontSize is not a number"},
        {"infinity as text", with("rotation", R"("inf")"), Code::invalid, "configurations[0].rotation is not a number"},
        {"a fraction for a code", with("position", "1.5"), Code::invalid,
         "configurations[0].position is not a whole number"},
        {"a code beyond 2^53", with("position", "9007199254740994"), Code::invalid,
         "configurations[0].position is not a whole number"},
        {"a code beyond 64 bits", with("position", R"("9223372036854775808")"), Code::invalid,
         "configurations[0].position is not a whole number"},
        {"one coordinate", with("offset", "[1]"), Code::invalid, "configurations[0].offset is not a list of 2 numbers"},
        {"a text for a coordinate", with("offset", R"([1, "x"])"), Code::invalid,
         "configurations[0].offset[1] is not a number"},
        {"a number for a switch", with("borderEnabled", "1"), Code::invalid,
         "configurations[0].borderEnabled is neither true nor false"},
        {"a colour by name", with("fillColour", R"("red")"), Code::invalid,
         "configurations[0].fillColour is no colour"},
        {"an unknown colour space", with("fillColour", R"({"cmyk": [0, 0, 0, 1]})"), Code::invalid,
         "configurations[0].fillColour is no colour"},
        {"three components", with("fillColour", R"({"sRGB": [0, 0, 0]})"), Code::invalid,
         "configurations[0].fillColour.sRGB is not a list of 4 numbers"},
        {"too many tokens", with("titleTokens", "[" + repeated("\"\"", 10001) + "]"), Code::tooLarge,
         "configurations[0].titleTokens has 10001 entries, and 10000 is the most"},
        {"too many configurations", documentOf(repeated("0", 100001)), Code::tooLarge,
         "configurations has 100001 entries, and 100000 is the most"},
    };
}

TEST_F(Damage, IsToldByWhatIsWrong) {
    for (const auto& [what, text, code, told] : badFiles()) {
        put(text);
        const auto result = store::Store(file).load();
        EXPECT_EQ(namesOf(result.configurations), suppliedNames) << what;
        EXPECT_FALSE(std::filesystem::exists(file)) << what;
        ASSERT_EQ(result.messages.size(), 1u) << what;
        EXPECT_EQ(result.messages[0].code, code) << what;
        EXPECT_NE(sentenceOf(result).find(told), std::string::npos) << what << ": " << sentenceOf(result);
    }
    EXPECT_EQ(othersInFolder().size(), badFiles().size()) << "each is kept";
}

TEST_F(Damage, ByCuttingTheFileAnywhereIsAlwaysKeptAside) {
    const auto whole = documentOf(R"({"uniqueID": "a", "name": "é\n\ud83d\ude00", "rotation": -1.5e-3,
        "titleTokens": [{"fontSize": 12, "colour": {"sRGB": [1, 0, 0, 0.5]}}, "x", "%pageNumber%"]},
        {"uniqueID": "c", "combinedConfiguration": true, "members": ["a"]})");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        put(whole.substr(0, length));
        const auto result = store::Store(file).load();
        ASSERT_EQ(result.messages.size(), 1u) << length;
        ASSERT_EQ(namesOf(result.configurations), suppliedNames) << length;
        ASSERT_EQ(othersInFolder().size(), 1u) << length;
        const auto aside = folder / othersInFolder()[0];
        ASSERT_EQ(readAll(aside), whole.substr(0, length));
        std::filesystem::remove(aside);
    }
    put(whole);
    EXPECT_TRUE(store::Store(file).load().messages.empty());
}

TEST_F(Damage, ByChangingAnyByteLosesNothing) {
    const auto whole = documentOf(R"({"uniqueID": "a", "name": "n", "offset": [1, 2],
        "titleTokens": [{"fontSize": 12}, "x"], "fillColour": {"gray": [1, 0]}})");
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const char byte : {'\0', '"', '9', ']', '\xc3'}) {
            auto changed = whole;
            changed[at] = byte;
            put(changed);
            const auto result = store::Store(file).load();
            const auto others = othersInFolder();
            // Either it could be read, or seems newer, and stands where it was, or it was renamed as it is.
            const auto kept = others.empty() ? file : folder / others[0];
            ASSERT_TRUE(result.readOnly || result.messages.size() == others.size()) << at;
            ASSERT_EQ(readAll(kept), changed) << at;
            std::filesystem::remove(kept);
        }
    }
}

TEST_F(Damage, OfAFolderInThePlaceOfTheFileLeavesTheFolderThere) {
    std::filesystem::create_directories(file / "inside");
    store::Store store(file);
    const auto result = store.load();
    EXPECT_EQ(namesOf(result.configurations), suppliedNames);
    EXPECT_TRUE(result.readOnly);
    ASSERT_EQ(result.messages.size(), 1u);
    EXPECT_EQ(result.messages[0].code, Code::foreign);
    EXPECT_NE(sentenceOf(result).find("it is a folder"), std::string::npos) << sentenceOf(result);
    EXPECT_TRUE(store.save(*modelOf({})));
    EXPECT_TRUE(std::filesystem::exists(file / "inside"));
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(Damage, OfAPipeInThePlaceOfTheFileDoesNotHoldTheProgramUp) {
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    const auto result = store::Store(file).load();
    ASSERT_EQ(result.messages.size(), 1u);
    EXPECT_EQ(result.messages[0].code, Code::foreign);
    EXPECT_TRUE(std::filesystem::is_fifo(file));
}

TEST_F(Damage, OfAFileThatIsTooLargeIsFoundWithoutReadingIt) {
    put("{");
    std::filesystem::resize_file(file, (std::uintmax_t{64} << 20) + 1); // a hole, which takes no time
    const auto result = store::Store(file).load();
    ASSERT_EQ(result.messages.size(), 1u);
    EXPECT_EQ(result.messages[0].code, Code::tooLarge);
    EXPECT_EQ(othersInFolder().size(), 1u);
}

TEST_F(Damage, OfTheWayToTheFileMakesTheStoreReadOnly) {
    put("a file");
    store::Store store(file / "configurations.json");
    const auto result = store.load();
    EXPECT_EQ(namesOf(result.configurations), suppliedNames);
    EXPECT_TRUE(result.readOnly);
    ASSERT_EQ(result.messages.size(), 1u);
    EXPECT_EQ(result.messages[0].code, Code::unreadable);
    const auto failure = store.save(*modelOf({}));
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::readOnly);
    EXPECT_EQ(content(), "a file");
}

TEST_F(Damage, OfAFileThatOnlyClaimsToBeAStoreIsKeptAsideWhereverItStands) {
    const auto given = data / "mine.json";
    std::ofstream(given) << documentOf("{}");
    const auto result = store::Store(given).load();
    EXPECT_FALSE(result.readOnly);
    EXPECT_FALSE(std::filesystem::exists(given));
    EXPECT_NE(sentenceOf(result).find((data / "mine.damaged-").string()), std::string::npos) << sentenceOf(result);
}

TEST_F(Damage, IsNotWhatAnotherKindOfFileIsCalled) {
    const auto given = data / "letter.pdf";
    for (const std::string bytes : {"%PDF-1.7\n(imprinter-configurations)", "\x89PNG\r\n", "", "{}", "[1, 2]",
                                    "  {\"format\": \"recipes\"}", "Dear {name}"}) {
        std::ofstream(given, std::ios::binary) << bytes;
        store::Store store(given);
        const auto result = store.load();
        EXPECT_EQ(namesOf(result.configurations), suppliedNames) << bytes;
        EXPECT_TRUE(result.readOnly) << bytes;
        ASSERT_EQ(result.messages.size(), 1u) << bytes;
        EXPECT_EQ(result.messages[0].code, Code::foreign) << bytes;
        EXPECT_TRUE(sentenceOf(result).starts_with("“" + given.string() + "” is not a file of configurations"))
            << sentenceOf(result);
        const auto failure = store.save(*modelOf({}));
        ASSERT_TRUE(failure) << bytes;
        EXPECT_EQ(failure->code, Code::readOnly) << bytes;
        EXPECT_EQ(readAll(given), bytes);
    }
    EXPECT_TRUE(othersInFolder().empty());
}

using Reading = StoreTest;

TEST_F(Reading, RenamesNothingAndSaysThatTheSuppliedConfigurationsStandIn) {
    const auto given = data / "given.json";
    for (const auto& path : {file, given}) {
        for (const auto& text : {std::string("{ not json"), documentOf("{}"), std::string("%PDF-1.7"),
                                 std::string(R"({"format": "imprinter-configurations", "version": 99})")}) {
            std::ofstream(path, std::ios::binary) << text;
            const auto result = store::Store(path).read();
            EXPECT_EQ(namesOf(result.configurations), suppliedNames) << text;
            EXPECT_TRUE(result.standIns) << text;
            ASSERT_EQ(result.messages.size(), 1u) << text;
            EXPECT_NE(sentenceOf(result).find(path.string()), std::string::npos) << sentenceOf(result);
            EXPECT_TRUE(sentenceOf(result).ends_with("). The file is left as it is.")) << sentenceOf(result);
            EXPECT_EQ(readAll(path), text);
        }
    }
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(Reading, OfAFolderLeavesItAlone) {
    const auto result = store::Store(data).read();
    EXPECT_TRUE(result.standIns);
    EXPECT_EQ(sentenceOf(result),
              "“" + data.string() + "” is not a file of configurations (it is a folder). The file is left as it is.");
    EXPECT_TRUE(std::filesystem::is_directory(data));
}

TEST_F(Reading, AnswersWhatTheFileHoldsAndAtFirstTheSuppliedConfigurations) {
    auto result = store::Store(file).read();
    EXPECT_EQ(namesOf(result.configurations), suppliedNames);
    EXPECT_FALSE(result.standIns);
    EXPECT_TRUE(result.messages.empty());
    put(documentOf(R"({"uniqueID": "a", "name": "mine"})"));
    result = store::Store(file).read();
    EXPECT_EQ(namesOf(result.configurations), std::vector<std::string>{"mine"});
    EXPECT_FALSE(result.standIns);
    EXPECT_TRUE(result.messages.empty());
}

TEST_F(Reading, IsNotEnoughToSave) {
    put(documentOf(""));
    store::Store store(file);
    store.read();
    const auto failure = store.save(*modelOf({}));
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::changedElsewhere);
}

TEST_F(Damage, BehindASymbolicLinkIsKeptAsideAndTheLinkStays) {
    const auto elsewhere = data / "elsewhere";
    std::filesystem::create_directory(elsewhere);
    std::ofstream(elsewhere / "mine.json") << "not JSON at all";
    std::filesystem::create_symlink("../elsewhere/mine.json", file);
    store::Store store(file);
    const auto result = store.load();
    EXPECT_FALSE(result.readOnly);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_TRUE(othersInFolder().empty());
    std::string aside;
    for (const auto& entry : std::filesystem::directory_iterator(elsewhere))
        aside = entry.path().filename().string();
    EXPECT_TRUE(aside.starts_with("mine.damaged-2")) << aside;
    EXPECT_EQ(readAll(elsewhere / aside), "not JSON at all");
    EXPECT_NE(sentenceOf(result).find(aside), std::string::npos) << sentenceOf(result);
    ASSERT_EQ(sentenceOf(store.save(*modelOf(result.configurations))), "");
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(namesOf(store::Store(elsewhere / "mine.json").read().configurations), suppliedNames);
}

TEST_F(Damage, IsLeftInItsPlaceWhereThatIsWanted) {
    put("not JSON at all");
    store::Store store(file);
    const auto result = store.load(store::Damaged::leave);
    EXPECT_TRUE(result.standIns);
    EXPECT_TRUE(result.readOnly);
    EXPECT_EQ(sentenceOf(result), sentenceOf(store::Store(file).read()));
    const auto failure = store.save(*modelOf(result.configurations));
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::readOnly);
    EXPECT_EQ(content(), "not JSON at all");
    EXPECT_TRUE(othersInFolder().empty());
    EXPECT_FALSE(store.load().readOnly) << "whoever opens the window has it kept aside";
}

using NewerFile = StoreTest;

TEST_F(NewerFile, IsLeftAsItIsAndNotSavedOver) {
    const std::string text =
        R"({"format": "imprinter-configurations", "version": 2, "configurations": {"no longer": "a list"}})";
    put(text);
    store::Store store(file);
    const auto result = store.load();
    EXPECT_EQ(namesOf(result.configurations), suppliedNames);
    EXPECT_TRUE(result.readOnly);
    ASSERT_EQ(result.messages.size(), 1u);
    EXPECT_EQ(result.messages[0].code, Code::newer);
    EXPECT_NE(sentenceOf(result).find("newer version of the program (format 2)"), std::string::npos);
    const auto failure = store.save(*modelOf(result.configurations));
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::readOnly);
    EXPECT_EQ(content(), text);
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(NewerFile, IsShownAsFarAsItCanBeRead) {
    const std::string text = R"({"format": "imprinter-configurations", "version": 2, "configurations": [
        {"uniqueID": "a", "name": "A", "rotation": 30, "position": {"anchor": "new"}, "glow": 7,
         "titleTokens": ["title", {"fontSize": "large", "underline": true}]},
        {"uniqueID": "b", "name": "B", "titleTokens": [["no", "longer", "texts"]]},
        {"name": "without an identifier"}, 7, {"uniqueID": "A", "name": "the same again"},
        {"uniqueID": "all", "name": "All", "combinedConfiguration": true, "members": ["a", {"by": "rule"}, "gone", "b"]},
        {"uniqueID": "c", "combinedConfiguration": true, "name": "C", "members": 7}]})";
    put(text);
    store::Store store(file);
    const auto result = store.load();
    ASSERT_EQ(namesOf(result.configurations), (std::vector<std::string>{"A", "B", "All", "C"}));
    const auto& first = *result.configurations[0];
    EXPECT_EQ(first.rotation(), 30);
    EXPECT_EQ(first.position(), 0) << "what cannot be read is as in a new one";
    ASSERT_EQ(platform::count(first.titleTokens()), 2u);
    EXPECT_EQ(std::get<std::u16string>((*first.titleTokens())[0]), u"title");
    EXPECT_TRUE(runAt(first, 1)->underline());
    EXPECT_EQ(runAt(first, 1)->fontSize(), 12);
    EXPECT_EQ(platform::count(result.configurations[2]->configurations()), 2u);
    EXPECT_TRUE(result.readOnly);
    EXPECT_TRUE(result.standIns) << "nothing is stamped or imported with what may mean something else";
    EXPECT_NE(sentenceOf(result).find("The file is left as it is; its configurations are shown as far as they can be "
                                      "read, and changes are not saved."),
              std::string::npos)
        << sentenceOf(result);
    result.configurations[0]->setName(u"changed");
    const auto failure = store.save(*modelOf(result.configurations));
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->code, Code::readOnly);
    EXPECT_FALSE(store.keepUnsaved(*modelOf(result.configurations)));
    EXPECT_EQ(content(), text);
    EXPECT_TRUE(othersInFolder().empty());
}

TEST_F(NewerFile, CanBeLoadedAgainWhenAnOldOneIsPutBack) {
    put(R"({"format": "imprinter-configurations", "version": 2})");
    store::Store store(file);
    EXPECT_TRUE(store.load().readOnly);
    put(documentOf(""));
    EXPECT_FALSE(store.load().readOnly);
    EXPECT_FALSE(store.save(*modelOf({})));
}

} // namespace
