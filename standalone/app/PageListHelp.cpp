// SPDX-License-Identifier: MIT
#include "PageListHelp.h"

#include "HostBundle.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpression>
#include <QToolTip>

namespace app {

namespace {

bool isDash(QChar character) {
    return character == u'-' || character == u'\u2010' || character == u'\u2011' || character == u'\u2012' ||
           character == u'\u2013' || character == u'\u2014' || character == u'\uFF0D';
}

/// The digit or comma that this one stands for; itself where it stands for neither.
QChar plain(QChar character) {
    if (character.digitValue() >= 0 && character.isDigit())
        return QChar(u'0' + static_cast<char16_t>(character.digitValue()));
    const bool comma = character == u'\u060C' || character == u'\u3001' || character == u'\uFF0C';
    return comma ? QChar(u',') : isDash(character) ? QChar(u'-') : character;
}

} // namespace

QString pageListOf(const QString& written, qsizetype most) {
    QString list;
    for (const auto character : written)
        list += plain(character);
    static const QRegularExpression range(QStringLiteral("(\\d{1,9})\\s*-\\s*(\\d{1,9})"));
    QString result;
    qsizetype done = 0;
    for (auto matches = range.globalMatch(list); matches.hasNext();) {
        const auto match = matches.next();
        const auto first = match.capturedView(1).toLongLong();
        const auto last = match.capturedView(2).toLongLong();
        result += list.mid(done, match.capturedStart() - done);
        done = match.capturedEnd();
        const auto start = result.size();
        for (auto page = first; page <= last && result.size() <= most; ++page)
            result += (page == first ? QString() : QStringLiteral(",")) + QString::number(page);
        if (first > last || result.size() > most)
            result = result.left(start) + match.captured();
    }
    return result + list.mid(done);
}

PageListHelp::PageListHelp(QLineEdit& field) : QObject(&field), m_field(field) {
    field.installEventFilter(this);
}

bool PageListHelp::eventFilter(QObject* object, QEvent* event) {
    if (object != &m_field || event->type() != QEvent::KeyPress || m_field.isReadOnly())
        return false;
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (key.matches(QKeySequence::Paste)) {
        const auto pasted = QApplication::clipboard()->text();
        const auto list = pageListOf(pasted);
        if (list != pasted)
            m_field.insert(list);
        return list != pasted;
    }
    const auto typed = key.text();
    if (typed.size() != 1)
        return false;
    if (isDash(typed.front())) {
        QApplication::beep();
        QToolTip::showText(m_field.mapToGlobal(QPoint(0, m_field.height())),
                           text(u"Pages are written one by one: 2,3,4"), &m_field);
        return true;
    }
    const auto digit = plain(typed.front());
    if (digit == typed.front())
        return false;
    m_field.insert(digit);
    return true;
}

} // namespace app
