// SPDX-License-Identifier: MIT
#pragma once

#include <store/Store.h>

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <map>

namespace store {

inline constexpr qint64 formatVersion = 1;
inline constexpr qsizetype mostConfigurations = 100'000;
inline constexpr qsizetype mostMembers = 100'000;
inline constexpr qsizetype mostTitleTokens = 10'000;

/// Why a file cannot be read, or a model not written. Thrown inside the store only.
struct Problem {
    Code code;
    /// A clause, to be built into a sentence, for what is read; a whole sentence for what is written.
    QString text;
    std::vector<Detail> details{};
};

/// The keys of a file that this version of the program does not know, for the objects they belong to.
struct UnknownKeys {
    QJsonObject document;
    std::map<std::weak_ptr<const platform::NSObject>, QJsonObject, std::owner_less<>> objects;
};

/// Configurations in the form they have in a file.
struct Forms {
    /// Keys of the document that this version does not know.
    QJsonObject document;
    /// Identifiers, their case folded, in the order of the list.
    std::vector<QString> order;
    std::map<QString, QJsonObject> byIdentifier;
};

/// Throws Problem.
std::vector<std::shared_ptr<model::Configuration>> read(const QByteArray& bytes, UnknownKeys& unknown);

/// What can be understood of a file that a newer version wrote: values, members and whole configurations that cannot be
/// read are passed over. None where there is no list of configurations.
std::optional<std::vector<std::shared_ptr<model::Configuration>>> readNewer(const QByteArray& bytes);

/// Throws Problem where something has no form in a file.
Forms formsOf(const model::ImprinterModel& model, const UnknownKeys& unknown);

/// What a file holds, every key written out. Throws Problem.
Forms formsIn(const QByteArray& bytes);

/// Whether the bytes, damaged as they may be, look like a file of configurations.
bool looksLikeConfigurations(const QByteArray& bytes);

/// The document of a file. Throws Problem where it would be more than `mostBytes`.
QByteArray bytesOf(const Forms& forms, qsizetype mostBytes);

/// The JSON object that a file consists of. Throws Problem where it is none.
QJsonObject document(QByteArray bytes);
/// The file of a JSON object.
QByteArray bytesOf(const QJsonObject& document);

/// As `identifier` is told apart from others.
QString folded(const QString& identifier);

namespace key {
inline constexpr QLatin1String format("format");
inline constexpr QLatin1String version("version");
inline constexpr QLatin1String configurations("configurations");
/// Another one for each file that was begun in the place of an earlier one; carried along as a key that is not known.
inline constexpr QLatin1String lineage("lineage");
inline constexpr QLatin1String uniqueID("uniqueID");
inline constexpr QLatin1String name("name");
inline constexpr QLatin1String combined("combinedConfiguration");
inline constexpr QLatin1String members("members");
inline constexpr QLatin1String rotation("rotation");
} // namespace key

} // namespace store
