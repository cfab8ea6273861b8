// SPDX-License-Identifier: MIT
// The library of the bundle that the tests load.
#include <Foundation/NSClass.h>

namespace {

class Loaded final : public platform::NSObject {
public:
    std::u16string_view className() const override { return u"UnitLoaded"; }
};

const platform::ClassRegistration registration{platform::ClassTable<Loaded>(u"UnitLoaded")};

} // namespace
