// SPDX-License-Identifier: MIT
#include "Format.h"

#include <Foundation/NSString.h>

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace store {

namespace key {
constexpr QLatin1String duplicateRecord("duplicateRecord");
constexpr QLatin1String titleTokens("titleTokens");
constexpr QLatin1String position("position");
constexpr QLatin1String offset("offset");
constexpr QLatin1String occurance("occurance");
constexpr QLatin1String customOccurance("customOccurance");
constexpr QLatin1String borderEnabled("borderEnabled");
constexpr QLatin1String borderStyle("borderStyle");
constexpr QLatin1String borderThickness("borderThickness");
constexpr QLatin1String borderColour("borderColour");
constexpr QLatin1String fillEnabled("fillEnabled");
constexpr QLatin1String fillColour("fillColour");
constexpr QLatin1String fillOpacity("fillOpacity");
constexpr QLatin1String fullFontName("fullFontName");
constexpr QLatin1String fontSize("fontSize");
constexpr QLatin1String colour("colour");
constexpr QLatin1String strokeWidth("strokeWidth");
constexpr QLatin1String outline("outline");
constexpr QLatin1String underline("underline");
constexpr QLatin1String strikethrough("strikethrough");
constexpr QLatin1String sRGB("sRGB");
constexpr QLatin1String gray("gray");
} // namespace key

namespace {

using host::NSColor;
using host::TitleToken;
using model::Configuration;
using Colour = std::shared_ptr<const NSColor>;
using Font = std::shared_ptr<host::ImprinterFont>;

constexpr QLatin1String formatName("imprinter-configurations");

/// Up to here every whole number is a double too, and every JSON program reads it as it was written.
constexpr qint64 largestExact = qint64{1} << 53;

/// Whether every surrogate of `text` is half of a pair.
bool isWellFormed(QStringView text) {
    return text.isValidUtf16();
}

/// Unit by unit: the toolkit's own conversion takes a byte order mark at the start for itself.
QString toQString(std::u16string_view text) {
    return QStringView(text.data(), static_cast<qsizetype>(text.size())).toString();
}

/// The JSON reader drops a byte order mark at the start of a text unless it is escaped. Behind a quotation mark it can
/// be nothing but part of a text.
void escapeByteOrderMarks(QByteArray& json) {
    json.replace("\"\xEF\xBB\xBF", "\"\\ufeff");
}

template <class Number>
std::optional<Number> parsed(const QString& text) {
    const auto bytes = text.toLatin1();
    Number value{};
    const auto result = std::from_chars(bytes.data(), bytes.data() + bytes.size(), value);
    return result.ec == std::errc() && result.ptr == bytes.data() + bytes.size() ? std::optional(value) : std::nullopt;
}

// Reading.

/// Where in the document a value stands. Lives on the stack beside the value, and becomes a text only for a message.
struct Place {
    const Place* outer = nullptr;
    QLatin1String name;
    qsizetype index = -1;
    /// At the outermost: what cannot be understood is passed over.
    bool isLenient = false;

    bool passesOver() const { return outer ? outer->passesOver() : isLenient; }

    QString text() const {
        const auto before = outer ? outer->text() : QString();
        if (index >= 0)
            return before + QStringLiteral("[%1]").arg(index);
        return before.isEmpty() ? QString(name) : before + u'.' + name;
    }
    [[noreturn]] void refuse(Code code, const QString& clause) const {
        const auto where = text();
        if (where.isEmpty())
            throw Problem{code, clause};
        throw Problem{code, where + u' ' + clause, {{Detail::Kind::atPlace, where.toStdU16String()}}};
    }
};

double number(const QJsonValue& value, const Place& place) {
    if (value.isDouble())
        return value.toDouble();
    if (const auto read = value.isString() ? parsed<double>(value.toString()) : std::nullopt;
        read && std::isfinite(*read))
        return *read;
    place.refuse(Code::invalid, QStringLiteral("is not a number"));
}

qint64 integer(const QJsonValue& value, const Place& place) {
    if (value.isString())
        if (const auto read = parsed<qint64>(value.toString()))
            return *read;
    const double read = value.isDouble() ? value.toDouble() : std::nan("");
    if (std::abs(read) <= static_cast<double>(largestExact) && std::trunc(read) == read)
        return static_cast<qint64>(read);
    place.refuse(Code::invalid, QStringLiteral("is not a whole number"));
}

bool boolean(const QJsonValue& value, const Place& place) {
    if (!value.isBool())
        place.refuse(Code::invalid, QStringLiteral("is neither true nor false"));
    return value.toBool();
}

std::u16string text(const QJsonValue& value, const Place& place) {
    if (!value.isString())
        place.refuse(Code::invalid, QStringLiteral("is not a text"));
    const auto read = value.toString();
    if (!isWellFormed(read))
        place.refuse(Code::invalid, QStringLiteral("has half a surrogate pair"));
    return read.toStdU16String();
}

QJsonArray list(const QJsonValue& value, qsizetype most, const Place& place) {
    if (!value.isArray())
        place.refuse(Code::invalid, QStringLiteral("is not a list"));
    auto read = value.toArray();
    if (read.size() > most)
        place.refuse(Code::tooLarge, QStringLiteral("has %1 entries, and %2 is the most").arg(read.size()).arg(most));
    return read;
}

std::vector<double> components(const QJsonValue& value, const Place& place, std::size_t count) {
    std::vector<double> numbers;
    if (value.isArray())
        for (const auto entries = value.toArray(); const auto& entry : entries)
            numbers.push_back(number(entry, {&place, {}, static_cast<qsizetype>(numbers.size())}));
    if (numbers.size() != count)
        place.refuse(Code::invalid, QStringLiteral("is not a list of %1 numbers").arg(count));
    return numbers;
}

Colour colour(const QJsonValue& value, const Place& place) {
    if (value.isNull())
        return nullptr;
    const auto object = value.toObject();
    if (object.size() == 1 && object.contains(key::sRGB)) {
        const auto c = components(object.value(key::sRGB), {&place, key::sRGB}, 4);
        return NSColor::colorWithSRGB(c[0], c[1], c[2], c[3]);
    }
    if (object.size() == 1 && object.contains(key::gray)) {
        const auto c = components(object.value(key::gray), {&place, key::gray}, 2);
        return NSColor::colorWithWhite(c[0], c[1]);
    }
    place.refuse(Code::invalid, QStringLiteral("is no colour"));
}

/// The keys of one object: each is taken out when it is read, and what is left at the end is unknown.
class Fields {
public:
    Fields(const QJsonValue& value, const Place& place) : m_place(place), m_left(value.toObject()) {
        if (!value.isObject())
            place.refuse(Code::invalid, QStringLiteral("is not an object"));
    }

    const Place& place() const { return m_place; }
    bool has(QLatin1String name) const { return m_left.contains(name); }

    /// Hands the value under `name`, as `read` reads it, to `set`; does nothing where the key is missing.
    template <class Read, class Set>
    void field(QLatin1String name, Read&& read, Set&& set) {
        const auto value = m_left.take(name);
        if (value.isUndefined())
            return;
        try {
            set(read(value, Place{&m_place, name}));
        } catch (const Problem&) {
            if (!m_place.passesOver())
                throw;
        }
    }

    void keepUnknown(const std::shared_ptr<platform::NSObject>& object, UnknownKeys& unknown) const {
        if (!m_left.isEmpty())
            unknown.objects.emplace(object, m_left);
    }

private:
    Place m_place;
    QJsonObject m_left;
};

TitleToken fontRun(const QJsonValue& value, const Place& place, Configuration& configuration, host::NSUInteger number_,
                   UnknownKeys& unknown) {
    Fields fields(value, place);
    const auto run = configuration.createFontToken();
    run->setFontNumber(number_);
    fields.field(key::fullFontName, text, [&](const auto& name) { run->setFullFontName(name); });
    fields.field(key::fontSize, number, [&](double points) { run->setFontSize(points); });
    fields.field(key::colour, colour, [&](const Colour& set) { run->setColour(set); });
    fields.field(key::strokeWidth, number, [&](double points) { run->setStrokeWidth(points); });
    fields.field(key::outline, boolean, [&](bool on) { run->setOutline(on); });
    fields.field(key::underline, boolean, [&](bool on) { run->setUnderline(on); });
    fields.field(key::strikethrough, boolean, [&](bool on) { run->setStrikethrough(on); });
    fields.keepUnknown(run, unknown);
    return run;
}

host::NSArray<TitleToken> title(const QJsonValue& value, const Place& place, Configuration& configuration,
                                UnknownKeys& unknown) {
    if (value.isNull())
        return nullptr;
    auto tokens = std::make_shared<std::vector<TitleToken>>();
    host::NSUInteger runs = 0;
    for (const auto entries = list(value, mostTitleTokens, place); const auto& entry : entries) {
        const Place here{&place, {}, static_cast<qsizetype>(tokens->size())};
        if (entry.isObject())
            tokens->push_back(fontRun(entry, here, configuration, runs++, unknown));
        else
            tokens->emplace_back(text(entry, here));
    }
    return tokens;
}

host::NSPoint point(const QJsonValue& value, const Place& place) {
    const auto read = components(value, place, 2);
    return {read[0], read[1]};
}

struct Entry {
    std::shared_ptr<Configuration> configuration;
    QJsonValue members; // undefined for an ordinary one
};

Entry configurationEntry(const QJsonValue& value, const Place& place, UnknownKeys& unknown) {
    Fields fields(value, place);
    std::u16string identifier;
    bool combined = false;
    fields.field(key::uniqueID, text, [&](auto read) { identifier = std::move(read); });
    fields.field(key::combined, boolean, [&](bool read) { combined = read; });
    if (identifier.empty())
        place.refuse(Code::invalid, QStringLiteral("has no uniqueID"));
    if (!combined && fields.has(key::members))
        place.refuse(Code::invalid, QStringLiteral("has members and is not combined"));

    Entry entry{Configuration::makeWithID(std::move(identifier), combined), QJsonValue(QJsonValue::Undefined)};
    auto& made = *entry.configuration;
    fields.field(key::name, text, [&](const auto& name) { made.setName(name); });
    fields.field(key::duplicateRecord, integer, [&](qint64 code) { made.setDuplicateRecord(code); });
    if (combined) {
        fields.field(
            key::members, [](const QJsonValue& read, const Place&) { return read; },
            [&](const QJsonValue& read) { entry.members = read; });
    } else {
        fields.field(
            key::titleTokens,
            [&](const QJsonValue& read, const Place& where) { return title(read, where, made, unknown); },
            [&](const auto& tokens) { made.setTitleTokens(tokens); });
        fields.field(key::position, integer, [&](qint64 anchor) { made.setPosition(anchor); });
        fields.field(key::offset, point, [&](host::NSPoint offset) { made.setOffset(offset); });
        fields.field(key::rotation, number, [&](double degrees) { made.setRotation(degrees); });
        fields.field(key::occurance, integer, [&](qint64 code) { made.setOccurance(code); });
        fields.field(
            key::customOccurance,
            [](const QJsonValue& read, const Place& where) {
                return read.isNull() ? std::nullopt : std::optional(text(read, where));
            },
            [&](const auto& pages) {
                if (pages)
                    made.setCustomOccurance(*pages);
            });
        fields.field(key::borderEnabled, boolean, [&](bool on) { made.setBorderEnabled(on); });
        fields.field(key::borderStyle, integer, [&](qint64 style) { made.setBorderStyle(style); });
        fields.field(key::borderThickness, number, [&](double points) { made.setBorderThickness(points); });
        fields.field(key::borderColour, colour, [&](const Colour& set) { made.setBorderColour(set); });
        fields.field(key::fillEnabled, boolean, [&](bool on) { made.setFillEnabled(on); });
        fields.field(key::fillColour, colour, [&](const Colour& set) { made.setFillColour(set); });
        fields.field(key::fillOpacity, number, [&](double opacity) { made.setFillOpacity(opacity); });
    }
    fields.keepUnknown(entry.configuration, unknown);
    return entry;
}

} // namespace

QJsonObject document(QByteArray bytes) {
    escapeByteOrderMarks(bytes);
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError) {
        const auto line =
            1 + std::count(bytes.begin(), bytes.begin() + std::min<qsizetype>(error.offset, bytes.size()), '\n');
        throw Problem{Code::damaged,
                      QStringLiteral("line %1: %2").arg(QString::number(line), error.errorString()),
                      {{Detail::Kind::atLine, QString::number(line).toStdU16String()}}};
    }
    return document.object();
}

namespace {

// Writing.

[[noreturn]] void refuse(Code code, const QString& what, const QString& clause) {
    throw Problem{code, QStringLiteral("%1 %2, and nothing was saved.").arg(what, clause)};
}

QJsonValue numberValue(double value, const QString& what) {
    if (!std::isfinite(value))
        refuse(Code::unstorable, what, QStringLiteral("is not a finite number"));
    // A JSON reader need not keep the sign of a zero.
    return value == 0 && std::signbit(value) ? QJsonValue(QStringLiteral("-0")) : QJsonValue(value);
}

QJsonValue integerValue(qint64 value) {
    return value < -largestExact || value > largestExact ? QJsonValue(QString::number(value)) : QJsonValue(value);
}

QJsonValue textValue(const std::u16string& value, const QString& what) {
    auto written = toQString(value);
    if (!isWellFormed(written))
        refuse(Code::unstorable, what, QStringLiteral("has half a surrogate pair"));
    return written;
}

QJsonValue colourValue(const Colour& value, const QString& what) {
    if (!value)
        return QJsonValue::Null;
    const auto component = [&](double written) { return numberValue(written, what); };
    if (value->colorSpace() == NSColor::Space::gray)
        return QJsonObject{
            {key::gray, QJsonArray{component(value->redComponent()), component(value->alphaComponent())}}};
    return QJsonObject{{key::sRGB, QJsonArray{component(value->redComponent()), component(value->greenComponent()),
                                              component(value->blueComponent()), component(value->alphaComponent())}}};
}

class Writer {
public:
    Writer(const model::ImprinterModel& model, const UnknownKeys& unknown) : m_model(model), m_unknown(unknown) {}

    Forms forms() const {
        const auto all = m_model.configurations();
        if (all->size() > mostConfigurations)
            refuse(Code::tooLarge, QStringLiteral("The list of configurations"),
                   QStringLiteral("has more than %1 entries").arg(mostConfigurations));
        Forms written;
        written.document = m_unknown.document;
        for (const auto& configuration : *all) {
            const auto identifier = toQString(configuration->uniqueID());
            const auto key = folded(identifier);
            // What a reader would refuse must not be written.
            if (identifier.isEmpty() || written.byIdentifier.contains(key))
                refuse(Code::unstorable, QStringLiteral("The identifier “%1”").arg(identifier),
                       QStringLiteral("is empty or another's"));
            written.order.push_back(key);
            try {
                written.byIdentifier.emplace(key, object(configuration));
            } catch (Problem& problem) {
                problem.details.push_back({Detail::Kind::concerns, shown(configuration->name())});
                throw;
            }
        }
        return written;
    }

private:
    /// Whatever a name holds, a message about it can be shown.
    static std::u16string shown(const std::u16string& name) { return platform::fromUtf8(platform::toUtf8(name)); }

    QJsonObject start(const std::shared_ptr<platform::NSObject>& object) const {
        const auto found = m_unknown.objects.find(object);
        return found == m_unknown.objects.end() ? QJsonObject() : found->second;
    }

    QJsonObject object(const std::shared_ptr<host::ImprinterConfiguration>& configuration) const {
        const auto& c = *configuration;
        const auto owner = toQString(shown(c.name()));
        const auto the = [&owner](const char* what) {
            return QStringLiteral("The %1 of “%2”").arg(QLatin1String(what), owner);
        };
        auto o = start(configuration);
        o[key::uniqueID] = textValue(c.uniqueID(), the("identifier"));
        o[key::name] = textValue(c.name(), the("name"));
        o[key::combined] = c.combinedConfiguration();
        o[key::duplicateRecord] = integerValue(c.duplicateRecord());
        if (c.combinedConfiguration()) {
            o[key::members] = members(c, owner, the("member list"));
            return o;
        }
        o[key::titleTokens] = title(c, owner);
        o[key::position] = integerValue(c.position());
        o[key::offset] = QJsonArray{numberValue(c.offset().x, the("horizontal offset")),
                                    numberValue(c.offset().y, the("vertical offset"))};
        o[key::rotation] = numberValue(c.rotation(), the("rotation"));
        o[key::occurance] = integerValue(c.occurance());
        const auto pages = c.customOccurance();
        o[key::customOccurance] = pages ? textValue(*pages, the("page list")) : QJsonValue(QJsonValue::Null);
        o[key::borderEnabled] = c.borderEnabled();
        o[key::borderStyle] = integerValue(c.borderStyle());
        o[key::borderThickness] = numberValue(c.borderThickness(), the("border thickness"));
        o[key::borderColour] = colourValue(c.borderColour(), the("border colour"));
        o[key::fillEnabled] = c.fillEnabled();
        o[key::fillColour] = colourValue(c.fillColour(), the("fill colour"));
        o[key::fillOpacity] = numberValue(c.fillOpacity(), the("fill opacity"));
        return o;
    }

    QJsonArray members(const host::ImprinterConfiguration& combined, const QString& owner, const QString& what) const {
        QJsonArray written;
        for (const auto& member : *combined.configurations()) {
            if (m_model.indexOfConfiguration(member) == platform::NSNotFound)
                refuse(Code::unstorable,
                       QStringLiteral("The member “%1” of “%2”").arg(toQString(member->name()), owner),
                       QStringLiteral("is not in the list of configurations"));
            written.append(textValue(member->uniqueID(), what));
        }
        if (written.size() > mostMembers)
            refuse(Code::tooLarge, what, QStringLiteral("has more than %1 entries").arg(mostMembers));
        return written;
    }

    QJsonValue title(const host::ImprinterConfiguration& configuration, const QString& owner) const {
        const auto tokens = configuration.titleTokens();
        if (!tokens)
            return QJsonValue::Null;
        QJsonArray written;
        int runs = 0;
        for (const auto& token : *tokens) {
            if (const auto* text = std::get_if<std::u16string>(&token))
                written.append(textValue(*text, QStringLiteral("The title of “%1”").arg(owner)));
            else if (const auto* run = std::get_if<Font>(&token); run && *run)
                written.append(fontRun(*run, ++runs, owner));
            else
                refuse(Code::unstorable, QStringLiteral("The title of “%1”").arg(owner),
                       QStringLiteral("has a token that is neither text nor font"));
        }
        if (written.size() > mostTitleTokens)
            refuse(Code::tooLarge, QStringLiteral("The title of “%1”").arg(owner),
                   QStringLiteral("has more than %1 tokens").arg(mostTitleTokens));
        return written;
    }

    QJsonObject fontRun(const Font& run, int position, const QString& owner) const {
        const auto the = [&](const char* what) {
            return QStringLiteral("The %1 of font %2 of “%3”")
                .arg(QLatin1String(what), QString::number(position), owner);
        };
        auto o = start(run);
        o[key::fullFontName] = textValue(run->fullFontName(), the("name"));
        o[key::fontSize] = numberValue(run->fontSize(), the("size"));
        o[key::colour] = colourValue(run->colour(), the("colour"));
        o[key::strokeWidth] = numberValue(run->strokeWidth(), the("stroke width"));
        o[key::outline] = run->outline();
        o[key::underline] = run->underline();
        o[key::strikethrough] = run->strikethrough();
        return o;
    }

    const model::ImprinterModel& m_model;
    const UnknownKeys& m_unknown;
};

} // namespace

namespace {

/// Does `work`, and answers whether it was done; where it cannot be, and `place` passes that over, it answers NO.
template <class Work>
bool isDone(const Place& place, const Work& work) {
    try {
        work();
        return true;
    } catch (const Problem&) {
        if (!place.passesOver())
            throw;
        return false;
    }
}

std::vector<std::shared_ptr<Configuration>> configurationsIn(const QJsonValue& listed, const Place& place,
                                                             UnknownKeys& unknown) {
    std::vector<std::shared_ptr<Configuration>> configurations;
    std::vector<QJsonValue> members;
    QHash<QString, qsizetype> byFoldedIdentifier;
    qsizetype number = 0;
    for (const auto entries = list(listed, mostConfigurations, place); const auto& value : entries) {
        const Place here{&place, {}, number++};
        Entry entry;
        if (!isDone(here, [&] { entry = configurationEntry(value, here, unknown); }))
            continue;
        // The pane tells identifiers apart without regard to case.
        const auto identifier = toQString(entry.configuration->uniqueID());
        const auto key = folded(identifier);
        if (byFoldedIdentifier.contains(key) && place.passesOver())
            continue;
        if (byFoldedIdentifier.contains(key))
            here.refuse(Code::invalid, QStringLiteral("has the uniqueID “%1”, as configurations[%2] has")
                                           .arg(identifier, QString::number(byFoldedIdentifier.value(key))));
        byFoldedIdentifier.insert(key, static_cast<qsizetype>(configurations.size()));
        configurations.push_back(std::move(entry.configuration));
        members.push_back(std::move(entry.members));
    }

    for (std::size_t i = 0; i < configurations.size(); ++i) {
        if (members[i].isUndefined())
            continue;
        const Place here{&place, {}, static_cast<qsizetype>(i)};
        const Place membersPlace{&here, key::members};
        qsizetype index = 0;
        QJsonArray entries;
        isDone(membersPlace, [&] { entries = list(members[i], mostMembers, membersPlace); });
        for (const auto& value : std::as_const(entries)) {
            const Place memberPlace{&membersPlace, {}, index++};
            isDone(memberPlace, [&] {
                const auto identifier = toQString(text(value, memberPlace));
                const auto found = byFoldedIdentifier.constFind(folded(identifier));
                if (found == byFoldedIdentifier.constEnd())
                    memberPlace.refuse(Code::invalid, QStringLiteral("names “%1”, which is not there").arg(identifier));
                const auto& member = configurations[static_cast<std::size_t>(*found)];
                if (member->combinedConfiguration())
                    memberPlace.refuse(Code::invalid,
                                       QStringLiteral("names “%1”, which is combined itself").arg(identifier));
                configurations[i]->addConfiguration(member);
            });
        }
    }
    return configurations;
}

} // namespace

std::vector<std::shared_ptr<Configuration>> read(const QByteArray& bytes, UnknownKeys& unknown) {
    auto object = document(bytes);
    if (object.take(key::format).toString() != formatName)
        throw Problem{Code::damaged, QStringLiteral("its format is not “%1”").arg(formatName)};
    const auto version = integer(object.take(key::version), {nullptr, key::version});
    if (version > formatVersion)
        throw Problem{Code::newer,
                      QStringLiteral("format %1").arg(version),
                      {{Detail::Kind::formatVersion, QString::number(version).toStdU16String()}}};
    if (version < formatVersion)
        throw Problem{Code::invalid, QStringLiteral("version %1 of the format never was").arg(version)};
    auto configurations = configurationsIn(object.take(key::configurations), {nullptr, key::configurations}, unknown);
    unknown.document = object;
    return configurations;
}

std::optional<std::vector<std::shared_ptr<Configuration>>> readNewer(const QByteArray& bytes) {
    UnknownKeys unknown;
    std::optional<std::vector<std::shared_ptr<Configuration>>> configurations;
    const Place place{nullptr, key::configurations, -1, true};
    isDone(place,
           [&] { configurations = configurationsIn(document(bytes).value(key::configurations), place, unknown); });
    return configurations;
}

bool looksLikeConfigurations(const QByteArray& bytes) {
    const auto start = bytes.left(1024).trimmed();
    return (start.startsWith('{') || start.startsWith("\xEF\xBB\xBF{")) && bytes.contains(formatName.data());
}

Forms formsOf(const model::ImprinterModel& model, const UnknownKeys& unknown) {
    return Writer(model, unknown).forms();
}

Forms formsIn(const QByteArray& bytes) {
    UnknownKeys unknown;
    model::ImprinterModel model;
    model.setConfigurations(read(bytes, unknown));
    return formsOf(model, unknown);
}

QByteArray bytesOf(const QJsonObject& document) {
    auto bytes = QJsonDocument(document).toJson();
    escapeByteOrderMarks(bytes);
    return bytes;
}

QByteArray bytesOf(const Forms& forms, qsizetype mostBytes) {
    // Two lists of which each may be written can be joined to one that may not.
    if (forms.order.size() > mostConfigurations)
        refuse(Code::tooLarge, QStringLiteral("The list of configurations"),
               QStringLiteral("would have %1 entries, of which %2 are the most")
                   .arg(forms.order.size())
                   .arg(mostConfigurations));
    QJsonArray configurations;
    for (const auto& identifier : forms.order)
        configurations.append(forms.byIdentifier.at(identifier));
    auto object = forms.document;
    object[key::format] = formatName;
    object[key::version] = formatVersion;
    object[key::configurations] = configurations;
    auto bytes = bytesOf(object);
    if (bytes.size() > mostBytes)
        refuse(Code::tooLarge, QStringLiteral("The file of configurations"),
               QStringLiteral("would be larger than %1 MiB").arg(mostBytes >> 20));
    return bytes;
}

QString folded(const QString& identifier) {
    return identifier.toCaseFolded();
}

} // namespace store
