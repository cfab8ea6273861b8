// SPDX-License-Identifier: MIT
#include "EmptyHint.h"

#include "HostBundle.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

EmptyHint::EmptyHint(std::function<void()> makeOne, QWidget* parent) : QFrame(parent) {
    setObjectName(QStringLiteral("emptyHint"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    auto* title = new QLabel(text(u"No configurations yet"), this);
    auto bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    title->setForegroundRole(QPalette::Text);
    auto* explanation = new QLabel(text(u"A configuration says what is stamped, where, and on which pages."), this);
    explanation->setWordWrap(true);
    explanation->setForegroundRole(QPalette::Text);
    auto* button = new QPushButton(text(u"New Configuration"), this);
    button->setObjectName(QStringLiteral("makeFirst"));
    connect(button, &QPushButton::clicked, this, std::move(makeOne));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(4);
    texts->addWidget(title);
    texts->addWidget(explanation);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(16, 12, 16, 12);
    layout->setSpacing(16);
    layout->addLayout(texts, 1);
    layout->addWidget(button);
}

} // namespace app
