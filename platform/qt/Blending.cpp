// SPDX-License-Identifier: MIT
#include "Blending.h"

#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string>
#include <xcb/xcb.h>

namespace platform::qt {

namespace {

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

/// The manager of the first screen owns the selection that the window manager hints name for it.
bool compositorRuns(xcb_connection_t* connection) {
    static constexpr char name[] = "_NET_WM_CM_S0";
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(
        xcb_intern_atom_reply(connection, xcb_intern_atom(connection, true, sizeof name - 1, name), nullptr));
    if (!atom || atom->atom == XCB_ATOM_NONE)
        return false;
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace

bool windowsBlend() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    auto* connection = x11 ? x11->connection() : nullptr; // none offscreen
    return !connection || compositorRuns(connection);
}

} // namespace platform::qt
