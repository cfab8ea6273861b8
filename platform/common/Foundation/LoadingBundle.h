// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSBundle.h>

namespace platform {

/// The bundle whose library is being opened right now, so that classes registered meanwhile belong to it; else null.
std::shared_ptr<NSBundle>& loadingBundle();

} // namespace platform
