// SPDX-License-Identifier: MIT
#include "VelImprinterPrefPane.h"

#include "TitleTokens.h"
#include "VelIFontPopupButton.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSColorWell.h>
#include <AppKit/NSPopUpButton.h>
#include <AppKit/NSSegmentedControl.h>
#include <AppKit/NSStepper.h>
#include <AppKit/NSTokenField.h>

using namespace platform;

namespace pane {

namespace {

constexpr NSInteger underlineSegment = 0;
constexpr NSInteger strikethroughSegment = 1;
constexpr NSInteger outlineSegment = 2;

std::shared_ptr<const NSColor> colourOr(const std::shared_ptr<const NSColor>& colour,
                                        const std::shared_ptr<const NSColor>& missing) {
    return colour ? colour : missing;
}

NSInteger stateOf(bool on) {
    return on ? NSControlStateValueOn : NSControlStateValueOff;
}

bool isOn(const std::shared_ptr<NSObject>& button) {
    return tell(std::dynamic_pointer_cast<NSButton>(button), &NSButton::state) == NSControlStateValueOn;
}

std::shared_ptr<const NSColor> colourOf(const std::shared_ptr<NSObject>& well) {
    return tell(std::dynamic_pointer_cast<NSColorWell>(well), &NSColorWell::color);
}

} // namespace

void VelImprinterPrefPane::initAppearance() {
    setUpTitleField();
    tell(m_fontPopup, &VelIFontPopupButton::setDelegate, self());
    tell(m_fontPopup, &VelIFontPopupButton::setOnFontChanged,
         [pane = std::weak_ptr(self())](const std::optional<std::u16string>& fullFontName) {
             if (const auto alive = pane.lock())
                 alive->setNameOfCurrentFont(fullFontName);
         });
}

void VelImprinterPrefPane::translateAppearanceUI() {
    if (const auto tabs = m_tabView.lock()) {
        const auto index = tabs->indexOfTabViewItemWithIdentifier(u"Appearance");
        tell(tabs->tabViewItemAtIndex(static_cast<NSInteger>(index)), &NSTabViewItem::setLabel,
             localized(u"Appearance"));
    }
    const auto label = [this](const std::weak_ptr<NSTextField>& field, const std::u16string& english) {
        tell(field, &NSControl::setStringValue, localized(english));
    };
    label(m_titleLabel, u"Title:");
    label(m_styleLabel, u"Style:");
    label(m_borderLabel, u"Border:");
    label(m_fillLabel, u"Fill:");
    label(m_borderThicknessLabel, u"Thickness");
    label(m_borderColourLabel, u"Color");
    label(m_fillColourLabel, u"Color");
    label(m_thicknessLabel, u"Thickness");
    label(m_fontSizeLabel, u"Size");
    label(m_fontColourLabel, u"Color");
}

void VelImprinterPrefPane::enableAppearenceControls(bool enable) {
    tell(m_titleTokenField, &NSControl::setEnabled, enable);
    tell(m_previewBtn, &NSControl::setEnabled, enable);
    tell(m_outlineTextThickness, &NSControl::setEnabled, enable);
    tell(m_outlineTextThicknessStepper, &NSControl::setEnabled, enable);
    enableBorderControls(enable);
    tell(m_fillColourWell, &NSControl::setEnabled, enable);
    tell(m_borderStylePopup, &NSControl::setEnabled, enable);
}

void VelImprinterPrefPane::enableBorderControls(bool enable) {
    tell(m_borderColourWell, &NSControl::setEnabled, enable);
    tell(m_borderThickness, &NSControl::setEnabled, enable);
    tell(m_borderThicknessStepper, &NSControl::setEnabled, enable);
}

void VelImprinterPrefPane::updateAppearance() {
    tell(m_titleTokenField, &NSTokenField::setObjectValue,
         fieldTitle(tell(m_currentConfiguration, &host::ImprinterConfiguration::titleTokens)));
    tell(m_borderStylePopup, &NSPopUpButton::selectItemWithTag,
         tell(m_currentConfiguration, &host::ImprinterConfiguration::borderStyle));
    showBorderAndFill();
    renumberFonts(getFontTokenArray());
    const auto menu = createFontTokensMenu();
    tell(m_fontTokensPopup, &NSPopUpButton::setMenu, menu);
    tell(m_fontTokensPopup, &NSPopUpButton::selectItemWithTag, 0);
    onSelectFont(tell(menu, &NSMenu::itemWithTag, 0));
}

void VelImprinterPrefPane::showBorderAndFill() {
    using Configuration = host::ImprinterConfiguration;
    // Without a style both are off, whatever the configuration says; it keeps its flags, and the boxes stay enabled.
    const bool styled = tell(m_currentConfiguration, &Configuration::borderStyle) != 0;
    const bool bordered = styled && tell(m_currentConfiguration, &Configuration::borderEnabled);
    tell(m_borderEnableBtn, &NSButton::setState, stateOf(bordered));
    enableBorderControls(bordered);
    if (styled)
        showBorderThickness();
    const bool filled = styled && tell(m_currentConfiguration, &Configuration::fillEnabled);
    tell(m_fillEnableBtn, &NSButton::setState, stateOf(filled));
    tell(m_fillColourWell, &NSControl::setEnabled, filled);
    tell(m_borderColourWell, &NSColorWell::setColor,
         colourOr(tell(m_currentConfiguration, &Configuration::borderColour), NSColor::blackColor()));
    tell(m_fillColourWell, &NSColorWell::setColor,
         colourOr(tell(m_currentConfiguration, &Configuration::fillColour), NSColor::whiteColor()));
}

void VelImprinterPrefPane::showBorderThickness() {
    const auto points = inSinglePrecision(tell(m_currentConfiguration, &host::ImprinterConfiguration::borderThickness));
    tell(m_borderThickness, &NSControl::setFloatValue, points);
    tell(m_borderThicknessStepper, &NSControl::setFloatValue, points);
}

void VelImprinterPrefPane::saveAppearance() {
    storeTitle(titleOfField());
}

void VelImprinterPrefPane::onSelectFont(const std::shared_ptr<NSObject>& sender) {
    using Font = host::ImprinterFont;
    const auto represented = tell(std::dynamic_pointer_cast<NSMenuItem>(sender), &NSMenuItem::representedObject);
    const auto* object = std::get_if<std::shared_ptr<NSObject>>(&represented);
    const auto run = object ? std::dynamic_pointer_cast<Font>(*object) : nullptr;
    if (!run)
        return;
    setCurrentFont(run);
    tell(m_fontPopup, &VelIFontPopupButton::updatePopupForFont, run->font());
    tell(m_fontColour, &NSColorWell::setColor, colourOr(run->colour(), NSColor::blackColor()));
    const auto size = inSinglePrecision(run->fontSize());
    tell(m_fontSizeField, &NSControl::setFloatValue, size);
    tell(m_fontSizeStepper, &NSControl::setFloatValue, size);
    tell(m_fontAttributesSegCtrl, &NSSegmentedControl::setSelectedForSegment, run->underline(), underlineSegment);
    tell(m_fontAttributesSegCtrl, &NSSegmentedControl::setSelectedForSegment, run->strikethrough(),
         strikethroughSegment);
    tell(m_fontAttributesSegCtrl, &NSSegmentedControl::setSelectedForSegment, run->outline(), outlineSegment);
    const bool outlined = run->outline();
    hideOutlineThickness(!outlined);
    if (outlined)
        showOutlineThickness();
    updatePreview();
}

void VelImprinterPrefPane::hideOutlineThickness(bool hide) {
    tell(m_outlineTextThickness, &NSView::setHidden, hide);
    tell(m_outlineTextThicknessStepper, &NSView::setHidden, hide);
    tell(m_thicknessLabel, &NSView::setHidden, hide);
}

void VelImprinterPrefPane::showOutlineThickness() {
    const auto points = inSinglePrecision(tell(m_currentFont, &host::ImprinterFont::strokeWidth));
    tell(m_outlineTextThickness, &NSControl::setFloatValue, points);
    tell(m_outlineTextThicknessStepper, &NSControl::setFloatValue, points);
}

void VelImprinterPrefPane::onFontAttributeSegChanged(const std::shared_ptr<NSObject>&) {
    using Font = host::ImprinterFont;
    const auto selected = [this](NSInteger segment) {
        return tell(m_fontAttributesSegCtrl, &NSSegmentedControl::isSelectedForSegment, segment);
    };
    tell(m_currentFont, &Font::setUnderline, selected(underlineSegment));
    tell(m_currentFont, &Font::setStrikethrough, selected(strikethroughSegment));
    tell(m_currentFont, &Font::setOutline, selected(outlineSegment));
    hideOutlineThickness(!tell(m_currentFont, &Font::outline));
    showOutlineThickness();
    updatePreview();
}

void VelImprinterPrefPane::onFontColourChanged(const std::shared_ptr<NSObject>& sender) {
    tell(m_currentFont, &host::ImprinterFont::setColour, colourOf(sender));
    updatePreview();
}

void VelImprinterPrefPane::onBorderStyleChanged(const std::shared_ptr<NSObject>& sender) {
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setBorderStyle,
         tell(std::dynamic_pointer_cast<NSPopUpButton>(sender), &NSPopUpButton::selectedTag));
    showBorderAndFill();
    updatePreview();
}

void VelImprinterPrefPane::onBorderChanged(const std::shared_ptr<NSObject>& sender) {
    const bool bordered = isOn(sender);
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setBorderEnabled, bordered);
    enableBorderControls(bordered);
    updatePreview();
}

void VelImprinterPrefPane::onBorderColourChanged(const std::shared_ptr<NSObject>& sender) {
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setBorderColour, colourOf(sender));
    updatePreview();
}

void VelImprinterPrefPane::onBorderThicknessChanged(const std::shared_ptr<NSObject>& sender) {
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setBorderThickness,
         static_cast<double>(tell(std::dynamic_pointer_cast<NSControl>(sender), &NSControl::floatValue)));
    showBorderThickness();
    updatePreview();
}

void VelImprinterPrefPane::onFillChanged(const std::shared_ptr<NSObject>& sender) {
    const bool filled = isOn(sender);
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setFillEnabled, filled);
    tell(m_fillColourWell, &NSControl::setEnabled, filled);
    updatePreview();
}

void VelImprinterPrefPane::onFillColourChanged(const std::shared_ptr<NSObject>& sender) {
    tell(m_currentConfiguration, &host::ImprinterConfiguration::setFillColour, colourOf(sender));
    updatePreview();
}

void VelImprinterPrefPane::setNameOfCurrentFont(const std::optional<std::u16string>& fullFontName) {
    tell(m_currentFont, &host::ImprinterFont::setFullFontName, fullFontName.value_or(u""));
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
