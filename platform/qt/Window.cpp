// SPDX-License-Identifier: MIT
#include "Window.h"

#include "WidgetPeer.h"

#include <PlatformQt/Bridge.h>

namespace platform::qt {

namespace {

/// Speaks for the outermost widget around the one it was given, which changes when a host takes a root over.
class TopLevelPeer final : public WindowPeer {
public:
    explicit TopLevelPeer(QWidget& widget) : m_widget(&widget) {}

    bool clearFocus() override {
        if (!m_widget)
            return true;
        if (!endEditingInWindow(*m_widget))
            return false;
        if (auto* focused = m_widget->window()->focusWidget())
            focused->clearFocus();
        return true;
    }

    bool contains(ViewPeer& peer) override {
        const auto* other = dynamic_cast<WidgetPeer*>(&peer);
        if (!m_widget || !other || !other->widget())
            return false;
        auto* topLevel = m_widget->window();
        return other->widget()->window() == topLevel && other->widget()->isVisibleTo(topLevel);
    }

    void orderFront() override {
        if (!m_widget)
            return;
        auto& window = *m_widget->window();
        if (window.isMinimized())
            window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
        window.show();
        window.raise();
        window.activateWindow();
    }

private:
    QPointer<QWidget> m_widget;
};

/// Keeps a top level's window beside it. An interface file's frame is only looked on, for it holds the root.
class WindowHolder final : public QObject {
public:
    explicit WindowHolder(QWidget& topLevel) : QObject(&topLevel) {}

    static WindowHolder* of(const QWidget& widget) {
        for (auto* child : widget.children())
            if (auto* holder = dynamic_cast<WindowHolder*>(child))
                return holder;
        return nullptr;
    }

    std::shared_ptr<NSWindow> window;
    std::weak_ptr<NSWindow> frame;
    bool holdsRoot = false;
};

} // namespace

std::shared_ptr<NSWindow> windowShowing(const QWidget& widget) {
    auto& topLevel = *widget.window();
    const auto* holder = WindowHolder::of(topLevel);
    if (holder && holder->holdsRoot)
        return topLevel.isVisible() ? holder->frame.lock() : nullptr;
    return windowOf(topLevel);
}

void frameRoot(QWidget& root, const std::shared_ptr<NSWindow>& frame) {
    auto* holder = new WindowHolder(root);
    holder->frame = frame;
    holder->holdsRoot = true;
    frame->setPeer(std::make_unique<TopLevelPeer>(root));
}

} // namespace platform::qt

namespace platform {

QWidget* widgetOf(const NSView& view) {
    const auto* peer = dynamic_cast<qt::WidgetPeer*>(view.peer());
    return peer ? peer->widget() : nullptr;
}

std::shared_ptr<NSWindow> windowOf(QWidget& widget) {
    auto& topLevel = *widget.window();
    auto* holder = qt::WindowHolder::of(topLevel);
    if (!holder)
        holder = new qt::WindowHolder(topLevel);
    if (holder->holdsRoot)
        return holder->frame.lock();
    if (!holder->window) {
        holder->window = std::make_shared<NSWindow>();
        holder->window->setPeer(std::make_unique<qt::TopLevelPeer>(topLevel));
    }
    return holder->window;
}

} // namespace platform
