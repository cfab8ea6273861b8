// SPDX-License-Identifier: MIT
#include "Dragging.h"

#include "Text.h"

#include <Foundation/NSRunLoop.h>
#include <PlatformQt/Bridge.h>

#include <QDrag>
#include <QMimeData>
#include <QWidget>

namespace platform {

namespace {

std::shared_ptr<NSDraggingInfo>& running() {
    static std::shared_ptr<NSDraggingInfo> info;
    return info;
}

/// Stands for a source in this program that has not said who it is.
class UnnamedSource final : public NSObject {};

std::shared_ptr<NSPasteboard> pasteboardOf(const QMimeData* mime) {
    auto pasteboard = std::make_shared<NSPasteboard>();
    for (const auto& format : mime ? mime->formats() : QStringList()) {
        const auto data = mime->data(format);
        pasteboard->setDataForType(std::make_shared<const std::vector<std::uint8_t>>(data.begin(), data.end()),
                                   qt::fromQt(format));
    }
    return pasteboard;
}

} // namespace

std::shared_ptr<NSDraggingInfo> qt::draggingInfoOf(const QDropEvent& event) {
    if (running())
        return running();
    return std::make_shared<NSDraggingInfo>(event.source() ? std::make_shared<UnnamedSource>() : nullptr,
                                            pasteboardOf(event.mimeData()));
}

Qt::DropAction qt::dropActionOf(NSDragOperation operation) {
    if (operation & (NSDragOperationMove | NSDragOperationGeneric))
        return Qt::MoveAction;
    if (operation & NSDragOperationCopy)
        return Qt::CopyAction;
    return operation & NSDragOperationLink ? Qt::LinkAction : Qt::IgnoreAction;
}

RunningDrag::RunningDrag(std::shared_ptr<NSObject> source, std::shared_ptr<NSPasteboard> pasteboard)
    : m_former(std::exchange(running(), std::make_shared<NSDraggingInfo>(std::move(source), std::move(pasteboard)))) {}

RunningDrag::~RunningDrag() {
    running() = m_former;
}

std::unique_ptr<QMimeData> mimeDataOf(const NSPasteboard& pasteboard) {
    auto mime = std::make_unique<QMimeData>();
    for (const auto& type : pasteboard.types()) {
        const auto data = pasteboard.dataForType(type);
        mime->setData(qt::toQt(type), QByteArray(reinterpret_cast<const char*>(data->data()), // NOLINT
                                                 static_cast<qsizetype>(data->size())));
    }
    return mime;
}

NSDragOperation runDrag(QWidget& widget, const std::shared_ptr<NSObject>& source,
                        const std::shared_ptr<NSPasteboard>& pasteboard, const QPixmap& picture) {
    const RunningDrag declared(source, pasteboard);
    const TrackingLoop dragging;
    auto* drag = new QDrag(&widget); // deletes itself when it has ended
    drag->setMimeData(mimeDataOf(*pasteboard).release());
    drag->setPixmap(picture);
    return drag->exec(Qt::MoveAction) == Qt::MoveAction ? NSDragOperationMove : NSDragOperationNone;
}

} // namespace platform
