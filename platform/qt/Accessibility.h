// SPDX-License-Identifier: MIT
#pragma once

namespace platform::qt {

/// Lets assistive technology know what the toolkit does not know of the widgets made here: the titles of tokens, the
/// value of a stepper, the colour of a well, what a picture shows. Needs an application; later calls do nothing.
void installAccessibility();

} // namespace platform::qt
