// SPDX-License-Identifier: MIT
#include "model_title.h"
#include "store_support.h"

#include <Foundation/NSString.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace {

using host::NSColor;
using model::Configuration;
using RoundTrip = StoreTest;

/// Every bit of the value, as text, so that -0 differs from 0 and a failure shows both sides.
std::string bits(double value) {
    return std::to_string(value) + "/" + std::to_string(std::bit_cast<std::uint64_t>(value));
}

std::string show(const std::shared_ptr<const NSColor>& colour) {
    if (!colour)
        return "none";
    return std::string(colour->colorSpace() == NSColor::Space::gray ? "gray " : "sRGB ") +
           bits(colour->redComponent()) + " " + bits(colour->greenComponent()) + " " + bits(colour->blueComponent()) +
           " " + bits(colour->alphaComponent());
}

std::string show(const host::TitleToken& token) {
    if (const auto* text = std::get_if<std::u16string>(&token))
        return "text " + platform::toUtf8(*text);
    const auto* held = std::get_if<std::shared_ptr<host::ImprinterFont>>(&token);
    if (!held || !*held)
        return "foreign";
    const auto& run = **held;
    return "run " + std::to_string(run.fontNumber()) + " " + platform::toUtf8(run.fullFontName()) + " " +
           show(run.colour()) + " " + bits(run.fontSize()) + " " + bits(run.strokeWidth()) +
           (run.outline() ? " outline" : "") + (run.underline() ? " underline" : "") +
           (run.strikethrough() ? " strikethrough" : "");
}

/// Everything that the file keeps of a configuration, one value a line.
std::string show(const host::ImprinterConfiguration& c) {
    std::string text = platform::toUtf8(c.uniqueID()) + "\n" + platform::toUtf8(c.name()) + "\n" +
                       std::to_string(c.duplicateRecord()) + "\n";
    if (c.combinedConfiguration()) {
        for (const auto& member : *c.configurations())
            text += "member " + platform::toUtf8(member->uniqueID()) + "\n";
        return text;
    }
    if (!c.titleTokens())
        text += "no title\n";
    else
        for (const auto& token : *c.titleTokens())
            text += show(token) + "\n";
    text += std::to_string(c.position()) + "\n" + bits(c.offset().x) + " " + bits(c.offset().y) + "\n" +
            bits(c.rotation()) + "\n" + std::to_string(c.occurance()) + "\n" +
            (c.customOccurance() ? "pages " + platform::toUtf8(*c.customOccurance()) : "no pages") + "\n" +
            std::to_string(c.borderEnabled()) + " " + std::to_string(c.borderStyle()) + " " +
            bits(c.borderThickness()) + " " + show(c.borderColour()) + "\n" + std::to_string(c.fillEnabled()) + " " +
            show(c.fillColour()) + " " + bits(c.fillOpacity());
    return text;
}

/// Values that a person would hardly enter, from a fixed seed.
class Generator {
public:
    Configurations configurations(std::size_t count) {
        Configurations made;
        std::vector<std::shared_ptr<Configuration>> ordinary;
        while (made.size() < count) {
            made.push_back(configuration(below(5) == 0));
            if (!made.back()->combinedConfiguration())
                ordinary.push_back(made.back());
        }
        for (const auto& combined : made)
            for (auto left = ordinary.empty() ? 0 : below(5); combined->combinedConfiguration() && left > 0; --left)
                combined->addConfiguration(ordinary[below(ordinary.size())]);
        return made;
    }

private:
    std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(m_random); }
    bool coin() { return below(2) == 1; }

    double number() {
        using Limits = std::numeric_limits<double>;
        constexpr double odd[] = {
            0.0, -0.0, 1.0, 0.1, 1.0 / 3, 9007199254740993.0, 1e21, -1e300, 1.2345678901234567e18};
        constexpr double edges[] = {
            Limits::min(),         Limits::max(),     Limits::lowest(),      Limits::denorm_min(),
            -Limits::denorm_min(), Limits::epsilon(), 9223372036854775808.0, 1e23};
        switch (below(4)) {
        case 0:
            return odd[below(std::size(odd))];
        case 1:
            return edges[below(std::size(edges))];
        case 2:
            return std::uniform_real_distribution<double>(-1000, 1000)(m_random);
        default:
            for (;;)
                if (const auto any = std::bit_cast<double>(m_random()); std::isfinite(any))
                    return any;
        }
    }
    host::NSInteger integer() {
        using Limits = std::numeric_limits<host::NSInteger>;
        constexpr host::NSInteger odd[] = {
            0, 1, -1, 1LL << 53, -(1LL << 53), (1LL << 53) + 1, Limits::max(), Limits::min()};
        return coin() ? odd[below(std::size(odd))] : static_cast<host::NSInteger>(m_random());
    }
    std::u16string text() {
        static const std::vector<std::u16string> pieces{u"",
                                                        u"Page ",
                                                        u"%pageNumber%",
                                                        u"%",
                                                        u"\"quoted\"",
                                                        u"back\\slash",
                                                        u"line\nline\r\n",
                                                        u"\t",
                                                        u"\U0001F469\u200D\U0001F4BB",
                                                        u"שלום",
                                                        u"مرحبا",
                                                        u"e\u0301",
                                                        u"\uFEFF",
                                                        std::u16string(1, u'\0'),
                                                        u"\u2028",
                                                        u"\uFFFF",
                                                        u"日本語",
                                                        u"</script>",
                                                        u"\u202E\u200F",
                                                        u"\x7f\x1b",
                                                        u"\U0010FFFF"};
        std::u16string made;
        for (auto left = below(4); left > 0; --left)
            made += pieces[below(pieces.size())];
        return made;
    }
    std::shared_ptr<const NSColor> colour() {
        if (below(4) == 0)
            return nullptr;
        return coin() ? NSColor::colorWithWhite(number(), number())
                      : NSColor::colorWithSRGB(number(), number(), number(), number());
    }
    std::shared_ptr<Configuration> configuration(bool combined) {
        auto made = Configuration::make(combined);
        made->setName(text());
        made->setDuplicateRecord(integer());
        std::vector<host::TitleToken> title;
        host::NSUInteger runs = 0;
        for (auto left = below(6); left > 0; --left) {
            if (coin()) {
                title.emplace_back(text());
                continue;
            }
            const auto run = made->createFontToken();
            run->setFontNumber(runs++);
            run->setFullFontName(text());
            run->setFontSize(number());
            run->setStrokeWidth(number());
            run->setColour(colour());
            run->setOutline(coin());
            run->setUnderline(coin());
            run->setStrikethrough(coin());
            title.emplace_back(run);
        }
        made->setTitleTokens(below(8) == 0 ? nullptr : titleOf(std::move(title)));
        made->setPosition(integer());
        made->setOffset({number(), number()});
        made->setRotation(number());
        made->setOccurance(integer());
        if (coin())
            made->setCustomOccurance(text());
        made->setBorderEnabled(coin());
        made->setBorderStyle(integer());
        made->setBorderThickness(number());
        made->setBorderColour(colour());
        made->setFillEnabled(coin());
        made->setFillColour(colour());
        made->setFillOpacity(number());
        return made;
    }

    std::mt19937_64 m_random{20240229};
};

TEST_F(RoundTrip, KeepsEveryBitOfAnyConfiguration) {
    const auto written = Generator().configurations(400);
    store::Store store(file);
    store.load();
    ASSERT_EQ(sentenceOf(store.save(*modelOf(written))), "");
    const auto result = store::Store(file).load();
    ASSERT_EQ(sentenceOf(result), "");
    ASSERT_EQ(result.configurations.size(), written.size());
    for (std::size_t i = 0; i < written.size(); ++i)
        ASSERT_EQ(show(*result.configurations[i]), show(*written[i])) << "configuration " << i;
}

TEST_F(RoundTrip, WritesTheSameBytesAgainToBeGivenAway) {
    store::Store store(file);
    store.keepNoVersions();
    store.load();
    ASSERT_EQ(sentenceOf(store.save(*modelOf(Generator().configurations(50)))), "");
    const auto first = content();
    store::Store again(folder / "again.json");
    again.keepNoVersions();
    again.load();
    ASSERT_EQ(sentenceOf(again.save(*modelOf(store.load().configurations))), "");
    EXPECT_EQ(readAll(again.file()), first);
}

TEST_F(RoundTrip, KeepsTheSuppliedConfigurations) {
    store::Store store(file);
    const auto supplied = store.load().configurations;
    ASSERT_EQ(sentenceOf(store.save(*modelOf(supplied))), "");
    const auto loaded = store::Store(file).load().configurations;
    ASSERT_EQ(loaded.size(), supplied.size());
    for (std::size_t i = 0; i < loaded.size(); ++i)
        EXPECT_EQ(show(*loaded[i]), show(*supplied[i]));
}

TEST_F(RoundTrip, LeavesOutWhatOneCombinedConfigurationWasToldAboutTitleAndPlace) {
    const auto combined = Configuration::make(true);
    combined->setName(u"both");
    combined->setDuplicateRecord(2);
    combined->setTitleTokens(titleOf({u"of another"}));
    combined->setRotation(30);
    store::Store store(file);
    store.load();
    ASSERT_EQ(sentenceOf(store.save(*modelOf({combined}))), "");
    EXPECT_EQ(content().find("titleTokens"), std::string::npos);
    EXPECT_EQ(content().find("rotation"), std::string::npos);
    const auto loaded = store::Store(file).load().configurations.at(0);
    EXPECT_EQ(loaded->name(), u"both");
    EXPECT_EQ(loaded->duplicateRecord(), 2);
    EXPECT_EQ(platform::count(loaded->titleTokens()), 0u);
    EXPECT_EQ(loaded->rotation(), 0);
}

TEST_F(RoundTrip, GivesEveryTitleRunsOfItsOwn) {
    const auto first = Configuration::make(false);
    const auto second = Configuration::make(false);
    second->setTitleTokens(first->titleTokens());
    store::Store store(file);
    store.load();
    ASSERT_EQ(sentenceOf(store.save(*modelOf({first, second}))), "");
    const auto loaded = store::Store(file).load().configurations;
    EXPECT_NE(runAt(*loaded.at(0), 0), runAt(*loaded.at(1), 0));
}

TEST_F(RoundTrip, KeepsKeysThatThisVersionDoesNotKnow) {
    put(R"({"format": "imprinter-configurations", "version": 1, "writtenBy": {"name": "a later one", "build": 7},
            "configurations": [{"uniqueID": "a", "watermark": [1, 2],
                                "titleTokens": [{"fontSize": 8, "kerning": "tight"}, "x"]}]})");
    store::Store store(file);
    auto configurations = store.load().configurations;
    ASSERT_EQ(configurations.size(), 1u);
    configurations[0]->setName(u"renamed");
    // The pane hands back the same runs in a new array.
    configurations[0]->setTitleTokens(titleOf({u"before", runAt(*configurations[0], 0)}));
    configurations.push_back(configurations[0]->copy());
    ASSERT_EQ(sentenceOf(store.save(*modelOf(configurations))), "");
    const auto saved = content();
    EXPECT_NE(saved.find("a later one"), std::string::npos);
    EXPECT_NE(saved.find("renamed"), std::string::npos);
    EXPECT_NE(saved.find("\"tight\""), std::string::npos);
    EXPECT_NE(saved.find("watermark"), std::string::npos);
    EXPECT_EQ(saved.find("watermark"), saved.rfind("watermark")) << "they belong to the one they were read for";
}

TEST_F(RoundTrip, KeepsAByteOrderMarkThatAnotherProgramWroteInAText) {
    put("\xEF\xBB\xBF" + documentOf("{\"uniqueID\": \"a\", \"name\": \"\xEF\xBB\xBFn\\\"\xEF\xBB\xBF\"}"));
    EXPECT_EQ(store::Store(file).load().configurations.at(0)->name(), u"\uFEFFn\"\uFEFF");
}

TEST_F(RoundTrip, NumbersTheRunsOfATitleInTheirOrder) {
    put(documentOf(R"({"uniqueID": "a", "titleTokens": ["x", {}, {}, "y", {}]})"));
    const auto configuration = store::Store(file).load().configurations.at(0);
    EXPECT_EQ(runAt(*configuration, 1)->name(), u"Font 1");
    EXPECT_EQ(runAt(*configuration, 2)->name(), u"Font 2");
    EXPECT_EQ(runAt(*configuration, 4)->name(), u"Font 3");
}

TEST_F(RoundTrip, ReadsTheExampleOfTheDocumentation) {
    const auto page = readAll(FORMAT_DOCUMENT);
    const auto start = page.find("```json") + 7;
    put(page.substr(start, page.find("```", start) - start));
    const auto result = store::Store(file).load();
    ASSERT_EQ(sentenceOf(result), "");
    ASSERT_EQ(namesOf(result.configurations), (std::vector<std::string>{"Page of Pages", "Numbered twice"}));
    EXPECT_EQ(result.configurations[1]->configurations()->at(0), result.configurations[0]);
    EXPECT_EQ(runAt(*result.configurations[0], 0)->fontSize(), 10);
    // The example has every key of a file that is given away, and no other.
    const auto example = content();
    store::Store again(folder / "again.json");
    again.keepNoVersions();
    again.load();
    ASSERT_EQ(sentenceOf(again.save(*modelOf(result.configurations))), "");
    const auto squeezed = [](std::string text) {
        std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
        std::sort(text.begin(), text.end());
        return text;
    };
    EXPECT_EQ(squeezed(readAll(again.file())), squeezed(example));
}

TEST_F(RoundTrip, GivesMissingKeysTheValuesOfANewConfiguration) {
    put(documentOf(R"({"uniqueID": "a"}, {"uniqueID": "b", "combinedConfiguration": true})"));
    const auto loaded = store::Store(file).load().configurations;
    ASSERT_EQ(loaded.size(), 2u);
    EXPECT_EQ(show(*loaded[0]), show(*Configuration::makeWithID(u"a", false)));
    EXPECT_EQ(show(*loaded[1]), show(*Configuration::makeWithID(u"b", true)));
}

TEST_F(RoundTrip, LoadsHundredsOfConfigurations) {
    const auto supplied = store::suppliedConfigurations();
    Configurations many;
    for (int i = 0; i < 500; ++i) {
        many.push_back(supplied[static_cast<std::size_t>(i) % 3]->copy());
        many.back()->setName(platform::fromUtf8("Configuration " + std::to_string(i)));
    }
    const auto all = Configuration::make(true);
    for (const auto& configuration : many)
        all->addConfiguration(configuration);
    many.push_back(all);
    const auto model = modelOf(many);
    store::Store store(file);
    store.load();
    ASSERT_EQ(sentenceOf(store.save(*model)), "");
    const auto loaded = store::Store(file).load().configurations;
    ASSERT_EQ(loaded.size(), many.size());
    EXPECT_EQ(show(*loaded[411]), show(*many[411]));
    EXPECT_EQ(platform::count(loaded.back()->configurations()), 500u);
}

} // namespace
