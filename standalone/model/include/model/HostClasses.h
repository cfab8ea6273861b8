// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSClass.h>
#include <model/ImprinterModel.h>

namespace model {

/// Makes the stand-alone host known to a pane as long as it lives: the class "VelImprinterPlugin", which answers
/// `imprinter` with the model, and the class "VelIFontType" of its font runs. No object of either is made by name.
class HostClasses {
public:
    /// A null model is answered as it is: the host then has none to offer.
    explicit HostClasses(std::shared_ptr<ImprinterModel> model);

private:
    platform::ClassRegistration m_fontType;
    platform::ClassRegistration m_plugin;
};

} // namespace model
