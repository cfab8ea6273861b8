// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSPasteboard.h>

#include <QMimeData>

#include <memory>

namespace platform::qt {

/// Texts as the toolkit's clipboard and drags carry them: the items for this program, `plainText` for every other one.
std::unique_ptr<QMimeData> mimeDataOf(const NSPasteboard& pasteboard, const std::u16string& plainText);

/// The texts the data carries: this program's items, else one with the plain text. Rich text alone is read as plain.
std::shared_ptr<NSPasteboard> pasteboardOf(const QMimeData* data);

bool hasTexts(const QMimeData* data);
/// Whether it carries files of this machine, as a file manager's drags do beside their addresses as text.
bool hasFiles(const QMimeData* data);

} // namespace platform::qt
