// SPDX-License-Identifier: MIT
#include "SettingsDialog.h"

#include "HostBundle.h"

#include <Foundation/NSUserDefaults.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

namespace app {

namespace {

constexpr char16_t duplicateKey[] = u"ImprinterDuplicateRecord";

} // namespace

SettingsDialog::SettingsDialog(QWidget* parent) : QDialog(parent), m_duplicate(new QCheckBox) {
    setWindowTitle(text(u"Settings"));
    m_duplicate->setText(text(u"Duplicate items before imprinting"));
    m_duplicate->setChecked(platform::NSUserDefaults::standardUserDefaults().boolForKey(duplicateKey));
    auto* explanation = new QLabel(text(
        u"This holds for every configuration that does not say otherwise. Without a duplicate, stamps are put into "
        u"the original file."));
    explanation->setWordWrap(true);
    explanation->setMinimumWidth(360);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize); // a smaller one would cut the explanation
    layout->addWidget(m_duplicate);
    layout->addWidget(explanation);
    layout->addStretch();
    layout->addWidget(buttons);
}

void SettingsDialog::accept() {
    platform::NSUserDefaults::standardUserDefaults().setBoolForKey(m_duplicate->isChecked(), duplicateKey);
    QDialog::accept();
}

} // namespace app
