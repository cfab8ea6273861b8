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
};

/// The keys of a file that this version of the program does not know, for the objects they belong to.
struct UnknownKeys {
    QJsonObject document;
    std::map<std::weak_ptr<const platform::NSObject>, QJsonObject, std::owner_less<>> objects;
};

/// Throws Problem.
std::vector<std::shared_ptr<model::Configuration>> read(const QByteArray& bytes, UnknownKeys& unknown);

/// Whether the bytes, damaged as they may be, look like a file of configurations.
bool looksLikeConfigurations(const QByteArray& bytes);

/// Throws Problem, also where it would be more than `mostBytes`.
QByteArray write(const model::ImprinterModel& model, const UnknownKeys& unknown, qsizetype mostBytes);

} // namespace store
