// SPDX-License-Identifier: MIT
#pragma once

#include <host/Imprinter.h>

namespace host {

/// What the host's class "VelImprinterPlugin" answers as a class. A host registers it under that name with an object of
/// this type as class object.
class VelImprinterPlugin : public platform::NSObject {
public:
    /// The one shared model, or null.
    virtual std::shared_ptr<Imprinter> imprinter() = 0;
};

} // namespace host
