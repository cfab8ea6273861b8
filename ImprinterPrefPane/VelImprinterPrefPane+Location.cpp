// SPDX-License-Identifier: MIT
#include "VelImprinterPrefPane.h"

using namespace platform;

namespace pane {

void VelImprinterPrefPane::translateLocationUI() {}
void VelImprinterPrefPane::enableLocationControls(bool) {}
void VelImprinterPrefPane::updateLocation() {}
void VelImprinterPrefPane::saveLocation() {}
void VelImprinterPrefPane::onChangePosition(const std::shared_ptr<NSObject>&) {}
void VelImprinterPrefPane::onRotationChanged(const std::shared_ptr<NSObject>&) {}
void VelImprinterPrefPane::onOccuranceChanged(const std::shared_ptr<NSObject>&) {}

double VelImprinterPrefPane::xOffsetValue() const {
    return tell(m_currentConfiguration, &host::ImprinterConfiguration::offset).x;
}

void VelImprinterPrefPane::setXOffsetValue(double x) {
    if (!m_currentConfiguration)
        return;
    m_currentConfiguration->setOffset({x, m_currentConfiguration->offset().y});
    updatePreview();
}

double VelImprinterPrefPane::yOffsetValue() const {
    return tell(m_currentConfiguration, &host::ImprinterConfiguration::offset).y;
}

void VelImprinterPrefPane::setYOffsetValue(double y) {
    if (!m_currentConfiguration)
        return;
    m_currentConfiguration->setOffset({m_currentConfiguration->offset().x, y});
    updatePreview();
}

double VelImprinterPrefPane::rotationValue() const {
    return tell(m_currentConfiguration, &host::ImprinterConfiguration::rotation);
}

void VelImprinterPrefPane::setRotationValue(double degrees) {
    if (!m_currentConfiguration)
        return;
    m_currentConfiguration->setRotation(degrees);
    updatePreview();
}

} // namespace pane
