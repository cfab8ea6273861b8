// SPDX-License-Identifier: MIT
#include <model/HostClasses.h>

#include <host/VelImprinterPlugin.h>

namespace model {

namespace {

class Plugin final : public host::VelImprinterPlugin {
public:
    explicit Plugin(std::shared_ptr<ImprinterModel> model) : m_model(std::move(model)) {}
    std::u16string_view className() const override { return u"VelImprinterPlugin"; }
    std::shared_ptr<host::Imprinter> imprinter() override { return m_model; }

private:
    std::shared_ptr<ImprinterModel> m_model;
};

} // namespace

HostClasses::HostClasses(std::shared_ptr<ImprinterModel> model)
    : m_fontType(platform::ClassTable<FontRun>(u"VelIFontType")),
      m_plugin(platform::ClassTable<host::VelImprinterPlugin>(u"VelImprinterPlugin")
                   .classObject(std::make_shared<Plugin>(std::move(model)))) {}

} // namespace model
