// SPDX-License-Identifier: MIT
#include "VelImprinterPrefPane.h"

using namespace platform;

namespace pane {

void VelImprinterPrefPane::initAppearance() {
    setUpTitleField();
}
void VelImprinterPrefPane::translateAppearanceUI() {}
void VelImprinterPrefPane::enableAppearenceControls(bool) {}
void VelImprinterPrefPane::updateAppearance() {}
void VelImprinterPrefPane::saveAppearance() {}
void VelImprinterPrefPane::onFontColourChanged(const std::shared_ptr<NSObject>&) {}
void VelImprinterPrefPane::onFontAttributeSegChanged(const std::shared_ptr<NSObject>&) {}
void VelImprinterPrefPane::onBorderStyleChanged(const std::shared_ptr<NSObject>&) {}
void VelImprinterPrefPane::onBorderChanged(const std::shared_ptr<NSObject>&) {}
void VelImprinterPrefPane::onBorderColourChanged(const std::shared_ptr<NSObject>&) {}
void VelImprinterPrefPane::onBorderThicknessChanged(const std::shared_ptr<NSObject>&) {}
void VelImprinterPrefPane::onFillChanged(const std::shared_ptr<NSObject>&) {}
void VelImprinterPrefPane::onFillColourChanged(const std::shared_ptr<NSObject>&) {}

void VelImprinterPrefPane::onSelectFont(const std::shared_ptr<NSObject>& sender) {
    const auto chosen = tell(std::dynamic_pointer_cast<NSMenuItem>(sender), &NSMenuItem::representedObject);
    const auto* object = std::get_if<std::shared_ptr<NSObject>>(&chosen);
    if (object && *object)
        m_currentFont = std::dynamic_pointer_cast<host::ImprinterFont>(*object);
}

double VelImprinterPrefPane::fontSizeValue() const {
    return tell(m_currentFont, &host::ImprinterFont::fontSize);
}

void VelImprinterPrefPane::setFontSizeValue(double points) {
    tell(m_currentFont, &host::ImprinterFont::setFontSize, points);
    updatePreview();
    didChangeValueForKey(u"fontSizeValue");
}

double VelImprinterPrefPane::fontStrokeWidthValue() const {
    return tell(m_currentFont, &host::ImprinterFont::strokeWidth);
}

void VelImprinterPrefPane::setFontStrokeWidthValue(double points) {
    tell(m_currentFont, &host::ImprinterFont::setStrokeWidth, points);
    updatePreview();
    didChangeValueForKey(u"fontStrokeWidthValue");
}

double VelImprinterPrefPane::borderThicknessValue() const {
    return tell(m_currentConfiguration, &host::ImprinterConfiguration::borderThickness);
}

void VelImprinterPrefPane::setBorderThicknessValue(double points) {
    if (m_currentConfiguration) {
        m_currentConfiguration->setBorderThickness(points);
        updatePreview();
    }
    didChangeValueForKey(u"borderThicknessValue");
}

double VelImprinterPrefPane::fillOpacityValue() const {
    return m_currentConfiguration ? m_currentConfiguration->fillOpacity() : 1.0;
}

void VelImprinterPrefPane::setfillOpacityValue(double opacity) {
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setFillOpacity, opacity);
    didChangeValueForKey(u"fillOpacityValue");
}

} // namespace pane
