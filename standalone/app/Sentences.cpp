// SPDX-License-Identifier: MIT
#include "Sentences.h"

#include "HostBundle.h"
#include "Language.h"

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
    default: // one that has no sentence of its own
        return {};
    }
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
    const auto own = toQt(failure.sentence);
    return sentenceOf(failure) == own ? QString() : own;
}

} // namespace app
