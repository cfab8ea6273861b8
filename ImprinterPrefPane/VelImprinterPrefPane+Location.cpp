// SPDX-License-Identifier: MIT
#include "VelImprinterPrefPane.h"

#include "PageList.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSMatrix.h>
#include <AppKit/NSStepper.h>
#include <AppKit/NSTextField.h>
#include <Foundation/NSClass.h>

using namespace platform;

namespace pane {

namespace {

constexpr auto occurrenceCustom = static_cast<NSInteger>(host::Occurrence::custom);

} // namespace

std::array<std::weak_ptr<NSButton>, 9> VelImprinterPrefPane::positionButtons() const {
    return {m_topLeftBtn,     m_topCenterBtn,  m_topRightBtn,     m_centerLeftBtn, m_centerBtn,
            m_centerRightBtn, m_bottomLeftBtn, m_bottomCenterBtn, m_bottomRightBtn};
}

void VelImprinterPrefPane::translateLocationUI() {
    if (const auto tabs = m_tabView.lock()) {
        const auto index = tabs->indexOfTabViewItemWithIdentifier(u"Location");
        tell(tabs->tabViewItemAtIndex(static_cast<NSInteger>(index)), &NSTabViewItem::setLabel, localized(u"Location"));
    }
    const auto label = [this](const std::weak_ptr<NSTextField>& field, const std::u16string& english) {
        tell(field, &NSControl::setStringValue, localized(english));
    };
    label(m_positionLabel, u"Position:");
    label(m_offsetLabel, u"Offset:");
    label(m_rotationLabel, u"Rotation:");
    label(m_occuranceLabel, u"Occurance:");
    label(m_pixelsXLabel, u"Pixels");
    label(m_pixelsYLabel, u"Pixels");
    label(m_degreesLabel, u"Degrees");

    const char16_t* const titles[] = {u"Every Page", u"First Page Only", u"Even Pages", u"Odd Pages", u"Custom"};
    NSInteger tag = 0;
    for (const auto* title : titles)
        tell(tell(m_occuranceMatrix, &NSMatrix::cellWithTag, tag++), &NSCell::setTitle, localized(title));
}

void VelImprinterPrefPane::enableLocationControls(bool enable) {
    for (const auto& button : positionButtons())
        tell(button, &NSControl::setEnabled, enable);
    tell(m_xOffset, &NSControl::setEnabled, enable);
    tell(m_xOffsetStepper, &NSControl::setEnabled, enable);
    tell(m_yOffset, &NSControl::setEnabled, enable);
    tell(m_yOffsetStepper, &NSControl::setEnabled, enable);
    tell(m_rotation, &NSControl::setEnabled, enable);
    tell(m_rotationStepper, &NSControl::setEnabled, enable);
}

void VelImprinterPrefPane::updatePositionBtnState() {
    for (const auto& button : positionButtons()) {
        const bool chosen =
            tell(button, &NSButton::tag) == tell(m_currentConfiguration, &host::ImprinterConfiguration::position);
        tell(button, &NSButton::setState, chosen ? NSControlStateValueOn : NSControlStateValueOff);
    }
}

void VelImprinterPrefPane::updateLocation() {
    const auto show = [](const std::weak_ptr<NSTextField>& field, const std::weak_ptr<NSStepper>& stepper,
                         double number) {
        const auto narrowed = inSinglePrecision(number);
        tell(field, &NSControl::setFloatValue, narrowed);
        tell(stepper, &NSControl::setFloatValue, narrowed);
    };
    updatePositionBtnState();
    show(m_rotation, m_rotationStepper, tell(m_currentConfiguration, &host::ImprinterConfiguration::rotation));
    show(m_xOffset, m_xOffsetStepper, tell(m_currentConfiguration, &host::ImprinterConfiguration::offset).x);
    show(m_yOffset, m_yOffsetStepper, tell(m_currentConfiguration, &host::ImprinterConfiguration::offset).y);
    // A code that no cell has leaves the cell selected before, whose tag is then written.
    tell(m_occuranceMatrix, &NSMatrix::selectCellWithTag,
         tell(m_currentConfiguration, &host::ImprinterConfiguration::occurance));
    onOccuranceChanged(m_occuranceMatrix.lock());
}

void VelImprinterPrefPane::saveLocation() {
    if (!m_currentConfiguration)
        return;
    m_currentConfiguration->setRotation(static_cast<double>(tell(m_rotation, &NSControl::floatValue)));
    // The offset reached the model when it was edited; the stored one is only asserted again.
    m_currentConfiguration->setOffset(m_currentConfiguration->offset());
}

void VelImprinterPrefPane::onChangePosition(const std::shared_ptr<NSObject>& sender) {
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setPosition,
         tell(std::dynamic_pointer_cast<NSView>(sender), &NSView::tag));
    updatePositionBtnState();
    updatePreview();
}

void VelImprinterPrefPane::onRotationChanged(const std::shared_ptr<NSObject>& sender) {
    NSInteger degrees = 0;
    if (sender && sender->isKindOfClass(NSClassFromString(u"NSStepper"))) {
        degrees = tell(m_rotationStepper, &NSControl::integerValue);
        tell(m_rotation, &NSControl::setIntegerValue, degrees);
    } else {
        degrees = tell(m_rotation, &NSControl::integerValue);
        tell(m_rotationStepper, &NSControl::setIntegerValue, degrees);
    }
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setRotation, static_cast<double>(degrees));
    updatePreview();
}

double VelImprinterPrefPane::xOffsetValue() const {
    return tell(m_currentConfiguration, &host::ImprinterConfiguration::offset).x;
}

void VelImprinterPrefPane::setXOffsetValue(double x) {
    if (m_currentConfiguration) {
        m_currentConfiguration->setOffset({x, m_currentConfiguration->offset().y});
        updatePreview();
    }
    didChangeValueForKey(u"xOffsetValue");
}

double VelImprinterPrefPane::yOffsetValue() const {
    return tell(m_currentConfiguration, &host::ImprinterConfiguration::offset).y;
}

void VelImprinterPrefPane::setYOffsetValue(double y) {
    if (m_currentConfiguration) {
        m_currentConfiguration->setOffset({m_currentConfiguration->offset().x, y});
        updatePreview();
    }
    didChangeValueForKey(u"yOffsetValue");
}

double VelImprinterPrefPane::rotationValue() const {
    return tell(m_currentConfiguration, &host::ImprinterConfiguration::rotation);
}

void VelImprinterPrefPane::setRotationValue(double degrees) {
    if (m_currentConfiguration) {
        m_currentConfiguration->setRotation(degrees);
        updatePreview();
    }
    didChangeValueForKey(u"rotationValue");
}

void VelImprinterPrefPane::setNilValueForKey(const std::u16string& key) {
    const auto offset = [this] { return tell(m_currentConfiguration, &host::ImprinterConfiguration::offset); };
    const auto setOffset = [this](host::NSPoint point) {
        tell(m_currentConfiguration, &host::ImprinterConfiguration::setOffset, point);
    };
    if (key == u"xOffsetValue")
        setOffset({0, offset().y});
    else if (key == u"yOffsetValue")
        setOffset({offset().x, 0});
    else if (key == u"rotationValue")
        setRotationValue(0);
    else if (key == u"fontStrokeWidthValue")
        tell(m_currentFont, &host::ImprinterFont::setStrokeWidth, 1.0);
    else if (key == u"fontSizeValue")
        tell(m_currentFont, &host::ImprinterFont::setFontSize, 12.0);
    else if (key == u"borderThicknessValue")
        tell(m_currentConfiguration, &host::ImprinterConfiguration::setBorderThickness, 1.0);
    else
        NSPreferencePane::setNilValueForKey(key);
}

void VelImprinterPrefPane::onOccuranceChanged(const std::shared_ptr<NSObject>& sender) {
    const auto chosen = tell(std::dynamic_pointer_cast<NSMatrix>(sender), &NSMatrix::selectedCell);
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setOccurance, tell(chosen, &NSCell::tag));
    const auto field = m_customOccurance.lock();
    if (tell(m_currentConfiguration, &host::ImprinterConfiguration::occurance) == occurrenceCustom) {
        tell(field, &NSView::setHidden, false);
        tell(field, &NSControl::setStringValue,
             tell(m_currentConfiguration, &host::ImprinterConfiguration::customOccurance).value_or(u""));
        tell(tell(field, &NSView::window), &NSWindow::makeFirstResponder, field);
    } else {
        // The stored list stays, so that it comes back with the choice.
        tell(field, &NSView::setHidden, true);
        tell(field, &NSControl::setStringValue, u"");
    }
    updatePreview();
}

void VelImprinterPrefPane::customOccuranceTextChanged() {
    const auto field = m_customOccurance.lock();
    const auto pages = normalizedPageList(tell(field, &NSControl::stringValue));
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setCustomOccurance, pages);
    tell(field, &NSControl::setStringValue, pages);
}

} // namespace pane
