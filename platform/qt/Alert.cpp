// SPDX-License-Identifier: MIT
#include "Alert.h"

#include "Peers.h"
#include "QtToolkit.h"
#include "Text.h"

#include <Foundation/NSException.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/NSString.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include <set>

namespace platform {

namespace {

std::set<std::u16string>& cancelTitles() {
    static std::set<std::u16string> titles{u"Cancel"};
    return titles;
}

QMessageBox::Icon iconOf(NSAlertStyle style) {
    switch (style) {
    case NSAlertStyle::critical:
        return QMessageBox::Critical;
    case NSAlertStyle::informational:
        return QMessageBox::Information;
    case NSAlertStyle::warning:
        break;
    }
    return QMessageBox::Warning;
}

/// The button that Escape and the close box mean; the number of buttons where they mean none.
std::size_t escapeButton(const std::vector<std::u16string>& titles) {
    if (titles.size() == 1)
        return 0;
    std::size_t at = 0;
    while (at < titles.size() && !cancelTitles().contains(titles[at]))
        ++at;
    return at;
}

} // namespace

void qt::noteCancelTitle(const std::u16string& title) {
    cancelTitles().insert(title);
}

NSInteger qt::runAlertModally(const NSAlert& alert) {
    auto titles = alert.buttonTitles();
    if (titles.empty())
        titles.push_back(u"OK");
    const auto escape = escapeButton(titles);
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
        NSLog(toUtf8(alert.messageText()) + ": " + toUtf8(alert.informativeText()));
        return NSAlertFirstButtonReturn + static_cast<NSInteger>(escape < titles.size() ? escape : titles.size() - 1);
    }

    QMessageBox box(QApplication::activeWindow());
    box.setIcon(iconOf(alert.alertStyle()));
    box.setTextFormat(Qt::PlainText);
    box.setText(qt::toQt(alert.messageText()));
    box.setInformativeText(qt::toQt(alert.informativeText()));
    // Buttons of one role in this arrangement stand from right to left in the order added.
    box.setStyleSheet(
        QStringLiteral("QDialogButtonBox { button-layout: 3 } QLabel#qt_msgbox_label { font-weight: bold }"));
    std::vector<QAbstractButton*> buttons;
    buttons.reserve(titles.size());
    for (const auto& title : titles)
        buttons.push_back(box.addButton(qt::withoutShortcut(title), QMessageBox::AcceptRole));
    box.setDefaultButton(static_cast<QPushButton*>(buttons.front()));
    if (escape < buttons.size())
        box.setEscapeButton(buttons[escape]);
    const TrackingLoop waiting;
    box.exec();
    const auto clicked = std::find(buttons.begin(), buttons.end(), box.clickedButton());
    const auto chosen = clicked == buttons.end() ? escape : static_cast<std::size_t>(clicked - buttons.begin());
    return NSAlertFirstButtonReturn + static_cast<NSInteger>(chosen);
}

} // namespace platform
