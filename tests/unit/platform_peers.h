// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSClass.h>

#include "Peers.h"

#include <string>
#include <vector>

namespace platform_test {

/// What happened, in order.
using Log = std::vector<std::string>;

/// Remembers what it was told to show, and in which order where that matters.
class FakePeer : public virtual platform::ViewPeer {
public:
    void setHidden(bool value) override { hidden = value; }
    void setEnabled(bool value) override { enabled = value; }
    std::shared_ptr<platform::NSWindow> window() override { return inWindow.lock(); }
    bool focus() override { return ++focusCount, takesFocus; }
    void setMenu(const std::shared_ptr<platform::NSMenu>& value) override { menu = value; }
    void setToolTip(const std::u16string& value) override { toolTip = value; }
    void setAccessibilityLabel(const std::u16string& value) override { accessibilityLabel = value; }
    void setDraggedTypes(const std::vector<std::u16string>& value) override { draggedTypes = value; }

    bool hidden = false;
    bool enabled = true;
    bool takesFocus = true;
    int focusCount = 0;
    std::weak_ptr<platform::NSWindow> inWindow;
    std::shared_ptr<platform::NSMenu> menu;
    std::u16string toolTip;
    std::u16string accessibilityLabel;
    std::vector<std::u16string> draggedTypes;
};

class FakeButtonPeer final : public FakePeer, public platform::ButtonPeer {
public:
    void setTitle(const std::u16string& value) override { title = value; }
    void setOn(bool value) override { on = value; }

    std::u16string title;
    bool on = false;
};

class FakeTextPeer final : public FakePeer, public platform::TextPeer {
public:
    void setText(const std::u16string& value) override { text = value; }
    void setWraps(bool value) override { wraps = value; }

    std::u16string text;
    bool wraps = false;
};

class FakeWindowPeer final : public platform::WindowPeer {
public:
    bool clearFocus() override { return ++clearCount, lets; }
    bool contains(platform::ViewPeer& peer) override { return &peer == inside; }

    bool lets = true;
    int clearCount = 0;
    platform::ViewPeer* inside = nullptr;
};

/// Gives `view` a peer of this kind, which the view then owns.
template <class Peer>
Peer& give(platform::NSView& view) {
    auto peer = std::make_unique<Peer>();
    auto& given = *peer;
    view.setPeer(std::move(peer));
    return given;
}

/// A target that notes every action it gets.
class Listener final : public platform::NSObject {
public:
    std::u16string_view className() const override { return u"UnitListener"; }
    void onAction(const std::shared_ptr<platform::NSObject>& sender) {
        senders.push_back(sender);
        if (handler)
            handler();
    }

    std::vector<std::shared_ptr<platform::NSObject>> senders;
    std::function<void()> handler;
};

/// A control of the kind that sends "onAction:" to `listener`.
template <class Control>
std::shared_ptr<Control> controlFor(const std::shared_ptr<Listener>& listener) {
    auto control = std::make_shared<Control>();
    control->setTarget(listener);
    control->setAction(u"onAction:");
    return control;
}

} // namespace platform_test
