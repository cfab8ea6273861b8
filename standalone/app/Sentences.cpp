// SPDX-License-Identifier: MIT
#include "Sentences.h"

#include "HostBundle.h"
#include "Language.h"

#include <QStringList>

namespace app {

namespace {

bool isEnglish() {
    return programLanguage() == QLatin1String("en");
}

QString textFor(engine::Code code, bool triedPassword) {
    using engine::Code;
    switch (code) {
    case Code::unreadable:
        return text(u"The file cannot be read.");
    case Code::otherKind:
        return text(u"This is no PDF, PNG, JPEG or TIFF file.");
    case Code::unsupported:
    case Code::nothingToRemove: // which the window does not do
        return text(u"Files of this kind cannot be stamped.");
    case Code::damaged:
        return text(u"The file is damaged.");
    case Code::encrypted:
        return triedPassword ? text(u"The password is wrong.") : text(u"The document needs a password.");
    case Code::notPermitted:
        return text(u"The document forbids changes; its owner's password lifts that.");
    case Code::isSigned:
        return text(u"The document is signed.");
    case Code::certified:
        return text(u"The document is certified; a stamp would break that.");
    case Code::tooLarge:
        return text(u"The picture is too large.");
    case Code::noMemory:
        return text(u"There is not enough memory for this file.");
    case Code::nothingToStamp:
        return text(u"There is nothing to stamp on any page.");
    case Code::sameFile:
        return text(u"The output is the same file as the input.");
    case Code::writeProtected:
        return text(u"The file is write-protected.");
    case Code::cannotWrite:
        return text(u"The output cannot be written.");
    case Code::changed:
        return text(u"The file was changed meanwhile, and is left as it is.");
    case Code::cancelled:
        return text(u"Cancelled.");
    case Code::ok:
        break;
    }
    return {};
}

QString textFor(store::Code code, const std::vector<QString>& file) {
    using store::Code;
    switch (code) {
    case Code::unreadable:
        return text(u"The configurations in “%@” cannot be read.", file);
    case Code::damaged:
    case Code::invalid:
        return text(u"The configurations in “%@” cannot be understood.", file);
    case Code::foreign:
        return text(u"“%@” is not a file of configurations.", file);
    case Code::newer:
        return text(u"The configurations in “%@” were written by a newer version of the program.", file);
    case Code::tooLarge:
        return text(u"The configurations in “%@” are too large for one file.", file);
    case Code::unstorable:
        return text(u"A configuration holds something that cannot be stored in “%@”.", file);
    case Code::readOnly:
        return text(u"“%@” is left as it is, and nothing was saved.", file);
    case Code::changedElsewhere:
        return text(u"Another program has written the configurations in “%@”, and nothing was saved.", file);
    case Code::contested:
        return text(u"Another program has changed the same configurations in “%@”; nothing was saved.", file);
    case Code::unwritable:
        return text(u"The configurations could not be saved in “%@”.", file);
    case Code::busy:
        return text(u"Another program has been writing the configurations in “%@” for too long, and nothing was saved.",
                    file);
    }
    return {};
}

/// As a warning names them.
QString pagesOf(const std::vector<QString>& firstAndOthers) {
    const auto first = written(firstAndOthers.at(0).toULongLong());
    const auto others = firstAndOthers.at(1).toULongLong();
    return others == 0 ? text(u"page %@", {first}) : text(u"page %1$@ and %2$@ more", {first, written(others)});
}

QString textFor(engine::Warning::Kind kind, const std::vector<QString>& about) {
    using Kind = engine::Warning::Kind;
    switch (kind) {
    case Kind::fontMissing:
        return text(u"The font “%1$@” is not on this machine; “%2$@” is used instead.", about);
    case Kind::characterElsewhere:
        return text(u"The font “%1$@” lacks the character %2$@; it is taken from “%3$@”.", about);
    case Kind::characterMissing:
        return text(u"No font on this machine has the character %@.", about);
    case Kind::noFont:
        return text(u"This machine has no font that can be stamped.");
    case Kind::notEmbeddable:
        return text(u"The font “%@” may not be embedded; its text is drawn as outlines.", about);
    case Kind::unknownPlaceholder:
        return text(u"The placeholder “%@” is unknown; it is stamped as it stands.", about);
    case Kind::outsidePage:
        return text(u"The stamp lies outside the page, where nobody sees it (%@).", {pagesOf(about)});
    case Kind::largerThanPage:
        return text(u"The stamp is larger than the page (%@).", {pagesOf(about)});
    case Kind::beyondEdge:
        return text(u"The stamp reaches beyond the edge of the page (%@).", {pagesOf(about)});
    case Kind::contentUnread:
        return text(u"The content cannot be decoded; the stamp may not look as it should (%@).", {pagesOf(about)});
    case Kind::repaired:
        return text(u"The document was damaged; it was repaired as far as possible.");
    case Kind::pictureDamaged:
        return text(u"The picture is damaged; it was read as far as possible.");
    case Kind::paintedInGreys:
        return text(u"The picture has a colour profile of greys; the stamp was painted in greys.");
    case Kind::profileLeftOut:
        return text(u"The picture's colour profile is for greys only and was left out.");
    case Kind::otherNames:
        return text(u"The file has other names too (hard links), under which it is as it was.");
    }
    return {};
}

QString textFor(store::Detail::Kind kind, const QString& about) {
    using Kind = store::Detail::Kind;
    switch (kind) {
    case Kind::reason:
        return text(u"The reason: %@", {about});
    case Kind::isFolder:
        return text(u"It is a folder.");
    case Kind::isNoOrdinaryFile:
        return text(u"It is no ordinary file.");
    case Kind::atLine:
        return text(u"The fault is in line %@.", {written(about.toULongLong())});
    case Kind::atPlace:
        return text(u"The fault is at “%@”.", {about});
    case Kind::formatVersion:
        return text(u"The version of its format is %@.", {written(about.toULongLong())});
    case Kind::concerns:
        return text(u"It concerns “%@”.", {about});
    case Kind::left:
        return text(u"The file is left as it is.");
    case Kind::keptAside:
        return text(u"The file is kept as “%@”; the supplied configurations take its place.", {about});
    case Kind::notRenamed:
        return text(u"The file could not be renamed: %@", {about});
    case Kind::suppliedShown:
        return text(u"The supplied configurations are shown, and changes are not saved.");
    case Kind::shownAsFarAsItGoes:
        return text(u"Its configurations are shown as far as they can be read, and changes are not saved.");
    }
    return {};
}

/// About what was changed or, with `use`, put into a combined configuration where it was not deleted.
QString textFor(store::Notice::Deleted deleted, bool use, const std::vector<QString>& names) {
    using Deleted = store::Notice::Deleted;
    switch (deleted) {
    case Deleted::here:
        return use ? text(u"“%1$@” was deleted here and put into “%2$@” by another program; it was kept.", names)
                   : text(u"“%@” was deleted here and changed by another program; it was kept.", names);
    case Deleted::byAnotherProgram:
        return use ? text(u"“%1$@” was deleted by another program and put into “%2$@” here; it was kept.", names)
                   : text(u"“%@” was deleted by another program and changed here; it was kept.", names);
    case Deleted::beforeTheProgramEnded:
        return use ? text(u"“%1$@” was deleted before the program ended and put into “%2$@” since; it was kept.", names)
                   : text(u"“%@” was deleted before the program ended and changed since; it was kept.", names);
    case Deleted::since:
        return use ? text(u"“%1$@” was put into “%2$@” before the program ended and deleted since; it was kept.", names)
                   : text(u"“%@” was changed before the program ended and deleted since; it was kept.", names);
    }
    return {};
}

QString textFor(const store::Notice& notice) {
    const std::vector<QString> names{toQt(notice.configuration), toQt(notice.combined)};
    switch (notice.kind) {
    case store::Notice::Kind::outlivedDeletion:
        return textFor(notice.deleted, false, names);
    case store::Notice::Kind::outlivedDeletionByUse:
        return textFor(notice.deleted, true, names);
    case store::Notice::Kind::leftOut:
        return text(u"“%1$@” is no member of “%2$@”, since it is a combined configuration now.", names);
    }
    return {};
}

} // namespace

QString sentenceOf(const engine::Outcome& outcome, bool triedPassword) {
    std::error_code none;
    if (outcome.code == engine::Code::unreadable && !std::filesystem::exists(outcome.path, none))
        return text(u"The file does not exist.");
    auto own = QString::fromStdString(outcome.sentence);
    const auto general = textFor(outcome.code, triedPassword);
    if (isEnglish() || general.isEmpty())
        return own;
    // The reason that the system gives is nowhere else.
    return outcome.code == engine::Code::cannotWrite && !own.isEmpty() ? general + QStringLiteral(" (") + own + u')'
                                                                       : general;
}

QString sentenceOf(const store::Failure& failure) {
    const auto general = textFor(failure.code, {QString::fromStdString(failure.file.string())});
    return isEnglish() || general.isEmpty() ? toQt(failure.sentence) : general;
}

QString detailOf(const store::Failure& failure) {
    constexpr qsizetype most = 10;
    QStringList lines;
    if (!isEnglish())
        for (const auto& detail : failure.details)
            lines.append(lines.size() < most ? textFor(detail.kind, toQt(detail.argument)) : QStringLiteral("…"));
    return lines.mid(0, most + 1).join(u'\n');
}

QString sentenceOf(const engine::Warning& warning) {
    if (isEnglish())
        return QString::fromStdString(warning.sentence());
    std::vector<QString> arguments;
    for (const auto& argument : warning.arguments)
        arguments.push_back(QString::fromStdString(argument));
    return textFor(warning.kind, arguments);
}

QString sentenceOf(const store::Notice& notice) {
    return isEnglish() ? toQt(notice.sentence) : textFor(notice);
}

} // namespace app
