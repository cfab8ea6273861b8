// SPDX-License-Identifier: MIT
#include "TitleOptions.h"

#include <AppKit/NSColor.h>
#include <Foundation/NSString.h>
#include <host/BorderStyle.h>

#include <QColor>

#include <array>
#include <charconv>
#include <cmath>

namespace cli {

namespace {

using platform::fromUtf8;
using platform::NSColor;

/// A word of the command line and the number that stands for it in a configuration.
struct Choice {
    const char* word;
    host::NSInteger number;
};

constexpr std::array positions{
    Choice{"top-left", 0},    Choice{"top", 1},    Choice{"top-right", 2},
    Choice{"left", 3},        Choice{"center", 4}, Choice{"right", 5},
    Choice{"bottom-left", 6}, Choice{"bottom", 7}, Choice{"bottom-right", 8},
};

constexpr auto number(host::BorderStyle style) {
    return static_cast<host::NSInteger>(style);
}

constexpr std::array borders{
    Choice{"none", number(host::BorderStyle::none)},
    Choice{"rectangle", number(host::BorderStyle::rectangle)},
    Choice{"rounded", number(host::BorderStyle::roundedRectangle)},
    Choice{"oval", number(host::BorderStyle::oval)},
    Choice{"double", number(host::BorderStyle::doubleLine)},
    Choice{"dashed", number(host::BorderStyle::dashed)},
    Choice{"underline", number(host::BorderStyle::underline)},
    Choice{"corners", number(host::BorderStyle::cornerMarks)},
};

template <std::size_t Count>
std::optional<host::NSInteger> chosenOf(const std::array<Choice, Count>& choices, const std::string& word) {
    for (const auto& choice : choices)
        if (word == choice.word)
            return choice.number;
    return std::nullopt;
}

/// "top-left, top, ... or bottom-right".
template <std::size_t Count>
std::string wordsOf(const std::array<Choice, Count>& choices) {
    std::string words;
    for (std::size_t i = 0; i < Count; ++i)
        words += (i == 0 ? "" : i + 1 == Count ? " or " : ", ") + std::string(choices[i].word);
    return words;
}

/// A decimal number with a point, of not more than a million; none for anything else.
std::optional<double> numberIn(const std::string& text) {
    constexpr double most = 1e6;
    double value = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    const bool whole = read.ec == std::errc() && read.ptr == text.data() + text.size();
    return whole && std::abs(value) <= most ? std::optional(value) : std::nullopt;
}

/// A name such as "red", or #rgb, #rrggbb or #rrggbbaa.
std::shared_ptr<const NSColor> colourIn(const std::string& text) {
    constexpr std::size_t withAlpha = 9;
    // The toolkit has the alpha in front.
    const auto name = text.size() == withAlpha && text[0] == '#' ? "#" + text.substr(7) + text.substr(1, 6) : text;
    const QString asked = QString::fromStdString(name);
    if (!QColor::isValidColor(asked) || (name.size() > withAlpha && name[0] == '#'))
        return nullptr;
    const QColor colour(asked);
    return NSColor::colorWithSRGB(colour.redF(), colour.greenF(), colour.blueF(), colour.alphaF());
}

bool isLetter(char16_t character) {
    return (character >= u'a' && character <= u'z') || (character >= u'A' && character <= u'Z');
}

/// Appends the texts and placeholders of `title`.
void appendTitle(std::vector<host::TitleToken>& tokens, const std::u16string& title) {
    std::u16string text;
    const auto endText = [&] {
        if (!text.empty())
            tokens.emplace_back(std::move(text));
        text.clear();
    };
    for (std::size_t i = 0; i < title.size(); ++i) {
        auto end = i + 1;
        while (end < title.size() && isLetter(title[end]))
            ++end;
        if (title[i] == u'%' && end > i + 1 && end < title.size() && title[end] == u'%') {
            endText();
            tokens.emplace_back(title.substr(i, end + 1 - i));
            i = end;
        } else {
            text += title[i];
        }
    }
    endText();
}

constexpr const char* usualPosition = "top-right";
constexpr const char* kTitle = "title-"; // and its position

/// What a title's stamp is found by when it is to be replaced. Its text may be corrected and its looks may change; at
/// another place it is another stamp.
std::string identifierAt(const std::string& position) {
    return "stamped-from-the-command-line-" + (position.empty() ? usualPosition : position);
}

/// Reads the options one by one into a configuration.
class Reader {
public:
    Reader(const Arguments& arguments, std::string& problem)
        : m_arguments(arguments), m_problem(problem),
          m_made(model::Configuration::makeWithID(fromUtf8(identifierAt(arguments.value("--position"))), false)) {}

    std::shared_ptr<model::Configuration> read() {
        m_made->setName(u"--title");
        m_made->setDuplicateRecord(static_cast<host::NSInteger>(host::DuplicateRecord::duplicate));
        const bool read = readTitle() && readBorder() && readPlace();
        return read ? m_made : nullptr;
    }

private:
    bool readTitle() {
        auto run = m_made->createFontToken();
        run->setFontNumber(0);
        constexpr double size = 14;
        const auto points = number(
            "--size", size, [](double value) { return value > 0; }, "a number of points");
        const auto text = colour("--color", NSColor::blackColor());
        if (!points || !text)
            return false;
        run->setFullFontName(m_arguments.has("--font") ? fromUtf8(m_arguments.value("--font")) : u"DejaVuSans-Bold");
        run->setFontSize(*points);
        run->setColour(text);
        m_text = text;
        std::vector<host::TitleToken> tokens{run};
        appendTitle(tokens, fromUtf8(m_arguments.value("--title")));
        m_made->setTitleTokens(std::make_shared<const std::vector<host::TitleToken>>(std::move(tokens)));
        return true;
    }

    bool readBorder() {
        const auto style = choice("--border", borders, "none");
        constexpr double thin = 1.5;
        const auto thickness = number(
            "--thickness", thin, [](double value) { return value >= 0; }, "a number of points");
        const auto border = colour("--border-color", m_text);
        const auto fill = colour("--fill", NSColor::blackColor());
        if (!style || !thickness || !border || !fill)
            return false;
        const bool bordered = *style != ::cli::number(host::BorderStyle::none);
        m_made->setBorderEnabled(bordered);
        m_made->setBorderThickness(*thickness);
        m_made->setBorderColour(border);
        m_made->setFillEnabled(m_arguments.has("--fill"));
        m_made->setFillColour(fill);
        // Without a border a fill has the shape of the plain one.
        m_made->setBorderStyle(bordered ? *style : ::cli::number(host::BorderStyle::rectangle));
        return true;
    }

    bool readPlace() {
        const auto position = choice("--position", positions, usualPosition);
        const auto degrees = number(
            "--rotate", 0, [](double) { return true; }, "a number of degrees");
        if (!position || !degrees)
            return false;
        host::NSPoint offset;
        if (m_arguments.has("--offset")) {
            const auto text = m_arguments.value("--offset");
            const auto comma = text.find(',');
            const auto x = numberIn(text.substr(0, comma));
            const auto y = comma == std::string::npos ? std::nullopt : numberIn(text.substr(comma + 1));
            if (!x || !y)
                return refuse("--offset", "two numbers of points such as 10,-5");
            offset = {*x, *y};
        }
        m_made->setPosition(*position);
        m_made->setOffset(offset);
        m_made->setRotation(*degrees);
        return true;
    }

    template <class IsGood>
    std::optional<double> number(const std::string& option, double otherwise, IsGood isGood, const char* what) {
        if (!m_arguments.has(option))
            return otherwise;
        const auto value = numberIn(m_arguments.value(option));
        if (value && isGood(*value))
            return value;
        refuse(option, what);
        return std::nullopt;
    }

    std::shared_ptr<const NSColor> colour(const std::string& option, const std::shared_ptr<const NSColor>& otherwise) {
        if (!m_arguments.has(option))
            return otherwise;
        auto value = colourIn(m_arguments.value(option));
        if (!value)
            refuse(option, "a colour such as red, #c00 or #cc000080");
        return value;
    }

    template <std::size_t Count>
    std::optional<host::NSInteger> choice(const std::string& option, const std::array<Choice, Count>& choices,
                                          const char* otherwise) {
        const auto value = chosenOf(choices, m_arguments.has(option) ? m_arguments.value(option) : otherwise);
        if (!value)
            refuse(option, wordsOf(choices));
        return value;
    }

    bool refuse(const std::string& option, const std::string& what) {
        m_problem = option + " takes " + what + ", not \"" + m_arguments.value(option) + '"';
        return false;
    }

    const Arguments& m_arguments;
    std::string& m_problem;
    std::shared_ptr<model::Configuration> m_made;
    std::shared_ptr<const NSColor> m_text;
};

} // namespace

const std::vector<std::string>& titleOptions() {
    static const std::vector<std::string> options{"--title",  "--font",         "--size",     "--color",
                                                  "--border", "--border-color", "--fill",     "--position",
                                                  "--offset", "--rotate",       "--thickness"};
    return options;
}

std::optional<std::string> nameOfTitle(const std::string& identifier) {
    for (const auto& position : positions)
        if (identifier == identifierAt(position.word))
            return std::string(kTitle) + position.word;
    return std::nullopt;
}

std::optional<std::string> titleCalled(const std::string& name) {
    for (const auto& position : positions)
        if (name == std::string(kTitle) + position.word)
            return identifierAt(position.word);
    return std::nullopt;
}

std::shared_ptr<model::Configuration> configurationFromOptions(const Arguments& arguments, std::string& problem) {
    if (arguments.has("--title"))
        return Reader(arguments, problem).read();
    for (const auto& option : titleOptions())
        if (arguments.has(option))
            problem = option + " says how a --title looks, and there is none";
    return nullptr;
}

} // namespace cli
