// SPDX-License-Identifier: MIT
#include <app/Window.h>

extern "C" const app::WindowLibrary* imprinterWindow();

const app::WindowLibrary* imprinterWindow() {
    static constexpr app::WindowLibrary library{&app::runWindow, &app::drawPictures};
    return &library;
}
