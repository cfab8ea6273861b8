// SPDX-License-Identifier: MIT
#include "TokenPasteboard.h"

#include "PasteboardItems.h"
#include "Text.h"

#include <QTextDocumentFragment>
#include <QUrl>

#include <algorithm>

namespace platform::qt {

namespace {

const QString itemsFormat = QStringLiteral("application/x-imprinter-items");

} // namespace

std::unique_ptr<QMimeData> mimeDataOf(const NSPasteboard& pasteboard, const std::u16string& plainText) {
    auto data = std::make_unique<QMimeData>();
    data->setText(toQt(plainText));
    if (const auto items = pasteboard.readObjects()) {
        const auto encoded = encodedItems(*items);
        data->setData(itemsFormat, {reinterpret_cast<const char*>(encoded.data()), // NOLINT
                                    static_cast<qsizetype>(encoded.size())});
    }
    return data;
}

std::shared_ptr<NSPasteboard> pasteboardOf(const QMimeData* data) {
    auto pasteboard = std::make_shared<NSPasteboard>();
    if (!data)
        return pasteboard;
    const auto encoded = data->data(itemsFormat);
    if (const auto items = decodedItems({encoded.begin(), encoded.end()}))
        pasteboard->writeObjects(*items);
    else if (data->hasText())
        pasteboard->writeObjects({fromQt(data->text())});
    else if (data->hasHtml())
        pasteboard->writeObjects({fromQt(QTextDocumentFragment::fromHtml(data->html()).toPlainText())});
    return pasteboard;
}

bool hasTexts(const QMimeData* data) {
    return data && (data->hasText() || data->hasHtml() || data->hasFormat(itemsFormat));
}

bool hasFiles(const QMimeData* data) {
    const auto urls = data ? data->urls() : QList<QUrl>();
    return std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); });
}

} // namespace platform::qt
