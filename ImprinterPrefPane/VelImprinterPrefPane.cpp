// SPDX-License-Identifier: MIT
#include "VelImprinterPrefPane.h"

#include "VelCombinedViewController.h"
#include "VelIFontAttributePopupButton.h"
#include "VelIFontPopupButton.h"
#include "VelPreviewViewController.h"

#include <AppKit/NSAlert.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSCell.h>
#include <AppKit/NSColorWell.h>
#include <AppKit/NSMatrix.h>
#include <AppKit/NSPopUpButton.h>
#include <AppKit/NSSegmentedControl.h>
#include <AppKit/NSStepper.h>
#include <AppKit/NSTokenField.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSKeyedUnarchiver.h>
#include <Foundation/NSNumberFormatter.h>
#include <Foundation/NSString.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/dispatch.h>
#include <host/Additions.h>
#include <host/VelImprinterPlugin.h>

using namespace platform;

namespace pane {

const char16_t* const VelImprintPasteboardType = u"VelImprintPasteboardType";

namespace {

constexpr auto occurrenceEveryPage = static_cast<NSInteger>(host::Occurrence::everyPage);
constexpr auto occurrenceCustom = static_cast<NSInteger>(host::Occurrence::custom);

/// Tags of the commands that need a selected row.
constexpr NSInteger duplicateTag = 1;
constexpr NSInteger deleteTag = 2;

/// How long after a change of the list the row to show is selected, in seconds.
constexpr double selectionDelay = 0.2;

/// The places of a stamp by their codes, as they are read out within a sentence.
constexpr const char16_t* places[] = {u"top left",     u"top center",  u"top right",     u"center left", u"center",
                                      u"center right", u"bottom left", u"bottom center", u"bottom right"};

const ClassRegistration registration{VelImprinterPrefPane::describeClass()};

} // namespace

VelImprinterPrefPane::VelImprinterPrefPane() = default;
VelImprinterPrefPane::~VelImprinterPrefPane() = default;

std::u16string_view VelImprinterPrefPane::className() const {
    return u"VelImprinterPrefPane";
}

NSClass VelImprinterPrefPane::describeClass() {
    using Pane = VelImprinterPrefPane;
    ClassTable<Pane> table(u"VelImprinterPrefPane", u"NSPreferencePane");
    constexpr bool unread = false; // connected for the interface's sake; no behaviour reads it
    table.outlet(u"theWindow", &Pane::m_theWindow, unread)
        .outlet(u"tableView", &Pane::m_tableView)
        .outlet(u"actionPopupMenu", &Pane::m_actionPopupMenu)
        .outlet(u"mainTabView", &Pane::m_mainTabView)
        .outlet(u"tabView", &Pane::m_tabView)
        .outlet(u"combinedTableView", &Pane::m_combinedTableView)
        .outlet(u"allConfigsTableView", &Pane::m_allConfigsTableView)
        .outlet(u"noConfigurationsLabel", &Pane::m_noConfigurationsLabel, unread)
        .outlet(u"previewBtn", &Pane::m_previewBtn)
        .outlet(u"duplicateRecBtn", &Pane::m_duplicateRecBtn)
        .outlet(u"deleteConfigurationBtn", &Pane::m_deleteConfigurationBtn)
        .outlet(u"combinedVC", &Pane::m_combinedVC)
        .outlet(u"topLeftBtn", &Pane::m_topLeftBtn)
        .outlet(u"topCenterBtn", &Pane::m_topCenterBtn)
        .outlet(u"topRightBtn", &Pane::m_topRightBtn)
        .outlet(u"centerLeftBtn", &Pane::m_centerLeftBtn)
        .outlet(u"centerBtn", &Pane::m_centerBtn)
        .outlet(u"centerRightBtn", &Pane::m_centerRightBtn)
        .outlet(u"bottomLeftBtn", &Pane::m_bottomLeftBtn)
        .outlet(u"bottomCenterBtn", &Pane::m_bottomCenterBtn)
        .outlet(u"bottomRightBtn", &Pane::m_bottomRightBtn)
        .outlet(u"positionMatrix", &Pane::m_positionMatrix, unread)
        .outlet(u"occuranceMatrix", &Pane::m_occuranceMatrix)
        .outlet(u"xOffset", &Pane::m_xOffset)
        .outlet(u"xOffsetStepper", &Pane::m_xOffsetStepper)
        .outlet(u"yOffset", &Pane::m_yOffset)
        .outlet(u"yOffsetStepper", &Pane::m_yOffsetStepper)
        .outlet(u"rotation", &Pane::m_rotation)
        .outlet(u"rotationStepper", &Pane::m_rotationStepper)
        .outlet(u"customOccurance", &Pane::m_customOccurance)
        .outlet(u"positionLabel", &Pane::m_positionLabel)
        .outlet(u"offsetLabel", &Pane::m_offsetLabel)
        .outlet(u"rotationLabel", &Pane::m_rotationLabel)
        .outlet(u"occuranceLabel", &Pane::m_occuranceLabel)
        .outlet(u"pixelsXLabel", &Pane::m_pixelsXLabel)
        .outlet(u"pixelsYLabel", &Pane::m_pixelsYLabel)
        .outlet(u"degreesLabel", &Pane::m_degreesLabel)
        .outlet(u"titleTokenField", &Pane::m_titleTokenField)
        .outlet(u"fontPopup", &Pane::m_fontPopup)
        .outlet(u"fontAttributePopup", &Pane::m_fontAttributePopup)
        .outlet(u"fontTokensPopup", &Pane::m_fontTokensPopup)
        .outlet(u"borderStylePopup", &Pane::m_borderStylePopup)
        .outlet(u"fontAttributesSegCtrl", &Pane::m_fontAttributesSegCtrl)
        .outlet(u"fontColour", &Pane::m_fontColour)
        .outlet(u"borderColourWell", &Pane::m_borderColourWell)
        .outlet(u"fillColourWell", &Pane::m_fillColourWell)
        .outlet(u"fontSizeField", &Pane::m_fontSizeField)
        .outlet(u"fontSizeStepper", &Pane::m_fontSizeStepper)
        .outlet(u"outlineTextThickness", &Pane::m_outlineTextThickness)
        .outlet(u"outlineTextThicknessStepper", &Pane::m_outlineTextThicknessStepper)
        .outlet(u"borderThickness", &Pane::m_borderThickness)
        .outlet(u"borderThicknessStepper", &Pane::m_borderThicknessStepper)
        .outlet(u"borderEnableBtn", &Pane::m_borderEnableBtn)
        .outlet(u"fillEnableBtn", &Pane::m_fillEnableBtn)
        .outlet(u"titleLabel", &Pane::m_titleLabel)
        .outlet(u"styleLabel", &Pane::m_styleLabel)
        .outlet(u"borderLabel", &Pane::m_borderLabel)
        .outlet(u"fillLabel", &Pane::m_fillLabel)
        .outlet(u"borderThicknessLabel", &Pane::m_borderThicknessLabel)
        .outlet(u"borderColourLabel", &Pane::m_borderColourLabel)
        .outlet(u"fillColourLabel", &Pane::m_fillColourLabel)
        .outlet(u"thicknessLabel", &Pane::m_thicknessLabel)
        .outlet(u"fontSizeLabel", &Pane::m_fontSizeLabel)
        .outlet(u"fontColourLabel", &Pane::m_fontColourLabel);
    table.action(u"onDuplicateRecord:", &Pane::onDuplicateRecord)
        .action(u"onPreview:", &Pane::onPreview)
        .action(u"addConfiguration:", &Pane::addConfiguration)
        .action(u"createCombinedConfiguration:", &Pane::createCombinedConfiguration)
        .action(u"duplicateConfiguration:", &Pane::duplicateConfiguration)
        .action(u"deleteConfiguration:", &Pane::deleteConfiguration)
        .action(u"onConfigurationNameChanged:", &Pane::onConfigurationNameChanged)
        .action(u"onChangePosition:", &Pane::onChangePosition)
        .action(u"onRotationChanged:", &Pane::onRotationChanged)
        .action(u"onOccuranceChanged:", &Pane::onOccuranceChanged)
        .action(u"onSelectFont:", &Pane::onSelectFont)
        .action(u"addTokenItem:", &Pane::addTokenItem)
        .action(u"onFontColourChanged:", &Pane::onFontColourChanged)
        .action(u"onFontAttributeSegChanged:", &Pane::onFontAttributeSegChanged)
        .action(u"onBorderStyleChanged:", &Pane::onBorderStyleChanged)
        .action(u"onBorderChanged:", &Pane::onBorderChanged)
        .action(u"onBorderColourChanged:", &Pane::onBorderColourChanged)
        .action(u"onBorderThicknessChanged:", &Pane::onBorderThicknessChanged)
        .action(u"onFillChanged:", &Pane::onFillChanged)
        .action(u"onFillColourChanged:", &Pane::onFillColourChanged)
        .action(u"setfillOpacityValue:", &Pane::setfillOpacityValue);
    table.key(u"currentConfiguration", &Pane::currentConfiguration, &Pane::setCurrentConfiguration)
        .key(u"xOffsetValue", &Pane::xOffsetValue, &Pane::setXOffsetValue)
        .key(u"yOffsetValue", &Pane::yOffsetValue, &Pane::setYOffsetValue)
        .key(u"rotationValue", &Pane::rotationValue, &Pane::setRotationValue)
        .key(u"fontSizeValue", &Pane::fontSizeValue, &Pane::setFontSizeValue)
        .key(u"fontStrokeWidthValue", &Pane::fontStrokeWidthValue, &Pane::setFontStrokeWidthValue)
        .key(u"borderThicknessValue", &Pane::borderThicknessValue, &Pane::setBorderThicknessValue)
        .key(u"fillOpacityValue", &Pane::fillOpacityValue)
        .keyPathsForValuesAffecting(u"fillOpacityValue", {u"currentConfiguration"});
    return table;
}

std::shared_ptr<VelImprinterPrefPane> VelImprinterPrefPane::self() {
    return std::static_pointer_cast<VelImprinterPrefPane>(shared_from_this());
}

std::u16string VelImprinterPrefPane::localized(const std::u16string& english) const {
    return tell(NSBundle::bundleForClass(classTable()), &NSBundle::localizedStringForKeyValueTable, english, u"", u"");
}

host::ConfigurationArray VelImprinterPrefPane::configurations() const {
    return tell(m_imprinter, &host::Imprinter::configurations);
}

void VelImprinterPrefPane::selectRowOf(const ConfigurationPointer& configuration) {
    // The index of what is not listed makes an empty set, which selects nothing.
    tell(m_tableView, &NSTableView::selectRowIndexesByExtendingSelection,
         NSIndexSet(indexOfObject(configurations(), configuration)), false);
}

void VelImprinterPrefPane::mainViewDidLoad() {
    if (const auto bundle = NSBundle::bundleForClass(classTable()))
        tell(mainView(), host::localizeUsingTableBundle, u"Localizable", *bundle);
    initAppearance();
    tell(m_tabView, &NSTabView::setDelegate, self());
    tell(m_tableView, &NSTableView::registerForDraggedTypes, std::vector<std::u16string>{VelImprintPasteboardType});
    tell(m_tableView, host::installBottomBorderedHeaderView);
    translateUI();

    const auto* plugin = NSClassFromString(u"VelImprinterPlugin");
    if (!plugin)
        return;
    m_imprinter = tell(std::dynamic_pointer_cast<host::VelImprinterPlugin>(plugin->classObject),
                       &host::VelImprinterPlugin::imprinter);
    if (count(configurations()) != 0) {
        const auto lastSelected = NSUserDefaults::standardUserDefaults().stringForKey(u"ImprinterPrefLastSelected");
        setCurrentConfiguration(lastSelected ? m_imprinter->configurationForID(*lastSelected)
                                             : configuarationAtIndex(0));
        updateDuplicateRecord();
        if (m_currentConfiguration) {
            selectRowOf(m_currentConfiguration);
            tell(m_deleteConfigurationBtn, &NSControl::setEnabled, true);
        }
    } else {
        tell(m_mainTabView, &NSTabView::selectTabViewItemWithIdentifier, u"No Imprint");
        tell(m_previewBtn, &NSControl::setEnabled, false);
        tell(m_duplicateRecBtn, &NSView::setHidden, true);
    }
    tell(tell(m_titleTokenField, &NSControl::cell), &NSCell::setWraps, true);
}

void VelImprinterPrefPane::translateUI() {
    translateAppearanceUI();
    translateLocationUI();
    tell(m_previewBtn, &NSButton::setTitle, localized(u"Preview"));
    tell(m_duplicateRecBtn, &NSButton::setTitle, localized(u"Duplicate item before Imprinting"));
    const auto titleColumn = [this](const std::weak_ptr<NSTableView>& table, const std::u16string& identifier,
                                    const std::u16string& title) {
        tell(tell(table, &NSTableView::tableColumnWithIdentifier, identifier), &NSTableColumn::setTitle,
             localized(title));
    };
    titleColumn(m_tableView, u"Imprinter", u"Configurations:");
    titleColumn(m_combinedTableView, u"Combined", u"Combined:");
    titleColumn(m_allConfigsTableView, u"Configurations", u"Configurations");

    const auto menu = buildActionMenu();
    tell(m_tableView, &NSView::setMenu, menu);
    tell(tell(m_actionPopupMenu, &NSControl::cell), &NSCell::setMenu, menu);
}

void VelImprinterPrefPane::setCurrentConfiguration(const ConfigurationPointer& configuration) {
    // Nothing equals a missing configuration, so going from none to none runs every step.
    if (m_currentConfiguration && m_currentConfiguration == configuration)
        return;
    switchTo(configuration);
    didChangeValueForKey(u"currentConfiguration");
}

void VelImprinterPrefPane::switchTo(const ConfigurationPointer& configuration) {
    setPreviewURL(std::nullopt);
    m_currentConfiguration = configuration;
    if (configuration) {
        if (configuration->combinedConfiguration()) {
            tell(m_mainTabView, &NSTabView::selectTabViewItemWithIdentifier, u"Imprint Combined");
            tell(m_combinedVC, &VelCombinedViewController::setImprinter, m_imprinter);
            tell(m_combinedVC, &VelCombinedViewController::setConfiguration, configuration);
            tell(m_combinedVC, &VelCombinedViewController::updateConfiguation);
        } else {
            tell(m_mainTabView, &NSTabView::selectTabViewItemWithIdentifier, u"Imprint Configuration");
            updateAppearance();
            updateLocation();
        }
        tell(m_previewBtn, &NSControl::setEnabled, true);
        updateDuplicateRecord();
    } else {
        tell(m_mainTabView, &NSTabView::selectTabViewItemWithIdentifier, u"No Imprint");
        tell(m_previewBtn, &NSControl::setEnabled, false);
    }
    updatePreview();
}

void VelImprinterPrefPane::setPreviewURL(const std::optional<NSURL>& url) {
    m_previewURL = url;
}

void VelImprinterPrefPane::updateDuplicateRecord() {
    if (!m_currentConfiguration)
        return;
    const auto code = m_currentConfiguration->duplicateRecord();
    const bool on = code == static_cast<NSInteger>(host::DuplicateRecord::followDefault)
                        ? NSUserDefaults::standardUserDefaults().boolForKey(u"ImprinterDuplicateRecord")
                        : code == static_cast<NSInteger>(host::DuplicateRecord::duplicate);
    tell(m_duplicateRecBtn, &NSButton::setState, on ? NSControlStateValueOn : NSControlStateValueOff);
}

void VelImprinterPrefPane::onDuplicateRecord(const std::shared_ptr<NSObject>&) {
    if (!m_currentConfiguration)
        return;
    const bool on = tell(m_duplicateRecBtn, &NSButton::state) == NSControlStateValueOn;
    m_currentConfiguration->setDuplicateRecord(
        static_cast<NSInteger>(on ? host::DuplicateRecord::duplicate : host::DuplicateRecord::inPlace));
}

void VelImprinterPrefPane::enableControls(bool enable) {
    enableAppearenceControls(enable);
    enableLocationControls(enable);
}

VelImprinterPrefPane::ConfigurationPointer VelImprinterPrefPane::configuarationAtIndex(NSInteger row) const {
    const auto list = configurations();
    const auto index = static_cast<NSUInteger>(row);
    return index < count(list) ? (*list)[index] : nullptr;
}

void VelImprinterPrefPane::saveConfiguration() {
    if (!m_currentConfiguration)
        return;
    saveAppearance();
    saveLocation();
    tell(m_imprinter, &host::Imprinter::saveConfigurations);
}

NSInteger VelImprinterPrefPane::numberOfRowsInTableView(const std::shared_ptr<NSTableView>&) {
    return static_cast<NSInteger>(count(configurations()));
}

std::shared_ptr<NSTableCellView>
VelImprinterPrefPane::tableViewViewForTableColumnRow(const std::shared_ptr<NSTableView>& table,
                                                     const std::shared_ptr<NSTableColumn>&, NSInteger row) {
    const auto configuration = configuarationAtIndex(row);
    const bool combined = tell(configuration, &host::ImprinterConfiguration::combinedConfiguration);
    auto view = tell(table, &NSTableView::makeViewWithIdentifierOwner,
                     combined ? u"CombinedCellID" : u"ImprinterCellID", shared_from_this());
    tell(tell(view, &NSTableCellView::textField), &NSControl::setStringValue,
         tell(configuration, &host::ImprinterConfiguration::name));
    return view;
}

bool VelImprinterPrefPane::tableViewShouldSelectRow(const std::shared_ptr<NSTableView>&, NSInteger row) {
    const auto list = configurations();
    if (row < 0 || static_cast<NSUInteger>(row) >= count(list))
        return false;
    // The editors switch when the row is proposed, before the table changes its selection.
    setCurrentConfiguration((*list)[static_cast<NSUInteger>(row)]);
    return true;
}

void VelImprinterPrefPane::tableViewSelectionDidChange(const NSNotification&) {
    const auto table = m_tableView.lock();
    if (table && table->selectedRow() == -1 && configurations())
        selectRowOf(m_currentConfiguration);
    const bool listed = configurations() != nullptr;
    tell(m_deleteConfigurationBtn, &NSControl::setEnabled, listed);
    tell(m_duplicateRecBtn, &NSView::setHidden, !listed);
}

bool VelImprinterPrefPane::tabViewShouldSelectTabViewItem(const std::shared_ptr<NSTabView>& tabView,
                                                          const std::shared_ptr<NSTabViewItem>&) {
    const auto own = m_tabView.lock();
    const auto leaving = tell(own, &NSTabView::selectedTabViewItem);
    // A page that is not there has no identifier, and a missing text compares equal to anything.
    const auto identifier = leaving ? std::optional(leaving->identifier()) : std::nullopt;
    if (tabView == own && caseInsensitiveCompare(identifier, u"Location") == 0 &&
        tell(m_currentConfiguration, &host::ImprinterConfiguration::occurance) == occurrenceCustom) {
        const auto pages = m_currentConfiguration->customOccurance();
        if (!pages || isBlank(*pages)) {
            const auto field = m_customOccurance.lock();
            tell(tell(field, &NSView::window), &NSWindow::makeFirstResponder, field);
            dispatchAsync([pane = self()] { pane->askForPageList(); });
            return false;
        }
    }
    tell(m_duplicateRecBtn, &NSView::setHidden, caseInsensitiveCompare(identifier, u"No Imprint") == 0);
    return true;
}

void VelImprinterPrefPane::askForPageList() {
    const auto alert = std::make_shared<NSAlert>();
    alert->setAlertStyle(NSAlertStyle::warning);
    alert->setMessageText(localized(u"Custom occurance requires a value"));
    alert->setInformativeText(localized(u"Set the page numbers to imprint i.e 1,2,4"));
    alert->addButtonWithTitle(localized(u"OK:"));
    alert->runModal();
}

void VelImprinterPrefPane::didSelect() {
    auto& center = NSNotificationCenter::defaultCenter();
    tokenChangeObserver = center.addObserverForNameObjectQueueUsingBlock(
        NSControlTextDidChangeNotification, m_titleTokenField.lock(), &NSOperationQueue::mainQueue(),
        [pane = self()](const NSNotification&) { pane->updatePreview(); });
    center.addObserverSelectorNameObject(self(), &VelImprinterPrefPane::fontPopuWillBeDisplayed,
                                         NSPopUpButtonWillPopUpNotification, m_fontTokensPopup.lock());
    NSPreferencePane::didSelect();
}

NSPreferencePaneUnselectReply VelImprinterPrefPane::shouldUnselect() {
    const auto pages = tell(m_currentConfiguration, &host::ImprinterConfiguration::customOccurance);
    if (pages && m_currentConfiguration->occurance() == occurrenceCustom && isBlank(*pages))
        m_currentConfiguration->setOccurance(occurrenceEveryPage);
    return NSPreferencePaneUnselectReply::now;
}

void VelImprinterPrefPane::willUnselect() {
    const auto alive = self(); // the observer may be the last that holds the pane
    saveConfiguration();
    auto& center = NSNotificationCenter::defaultCenter();
    // The token is kept, and the inherited message is not sent: a second leave removes the same observer again.
    center.removeObserver(tokenChangeObserver);
    center.removeObserverNameObject(alive, NSPopUpButtonWillPopUpNotification, m_fontTokensPopup.lock());
}

std::shared_ptr<NSMenu> VelImprinterPrefPane::buildActionMenu() {
    auto menu = std::make_shared<NSMenu>();
    menu->setDelegate(self());
    const auto add = [&](const std::u16string& title, const std::u16string& action, NSInteger tag = 0) {
        auto item = menu->addItemWithTitleActionKeyEquivalent(title.empty() ? title : localized(title), action, u"");
        item->setTarget(self());
        item->setTag(tag);
        return item;
    };
    const auto addSeparator = [&] {
        const auto separator = NSMenuItem::separatorItem();
        separator->setTarget(self());
        menu->addItem(separator);
    };
    add(u"", u"")->setImageNamed(u"NSActionTemplate");
    add(u"New Configuration", u"addConfiguration:");
    add(u"New Combined Configuration", u"createCombinedConfiguration:");
    addSeparator();
    add(u"Duplicate Configuration", u"duplicateConfiguration:", duplicateTag);
    addSeparator();
    add(u"Delete Configuration", u"deleteConfiguration:", deleteTag);
    return menu;
}

bool VelImprinterPrefPane::validateUserInterfaceItem(const NSValidatedUserInterfaceItem& item) {
    if (item.tag() != duplicateTag && item.tag() != deleteTag)
        return true;
    const auto table = m_tableView.lock();
    return table && table->selectedRowIndexes().count() > 0;
}

void VelImprinterPrefPane::addConfiguration(const std::shared_ptr<NSObject>&) {
    createConfiguration(false, u"New Imprinter");
}

void VelImprinterPrefPane::createCombinedConfiguration(const std::shared_ptr<NSObject>&) {
    createConfiguration(true, u"New Combined Imprint");
}

void VelImprinterPrefPane::createConfiguration(bool combined, const std::u16string& englishName) {
    if (!m_imprinter)
        return;
    const auto made = m_imprinter->createConfiguration(combined);
    tell(made, &host::ImprinterConfiguration::setName, localized(englishName));
    tell(m_tableView, &NSTableView::reloadData);
    enableControls(true);
    dispatchAfter(selectionDelay, [pane = self(), made] {
        // Should it have been deleted meanwhile, no row is selected and it is shown all the same.
        tell(pane->m_tableView, &NSTableView::selectRowIndexesByExtendingSelection,
             NSIndexSet(pane->m_imprinter->indexOfConfiguration(made)), false);
        pane->setCurrentConfiguration(made);
    });
}

void VelImprinterPrefPane::duplicateConfiguration(const std::shared_ptr<NSObject>&) {
    tell(m_imprinter, &host::Imprinter::duplicateConfigurationAtIndex, tell(m_tableView, &NSTableView::selectedRow));
    tell(m_tableView, &NSTableView::reloadData);
}

void VelImprinterPrefPane::deleteConfiguration(const std::shared_ptr<NSObject>&) {
    const auto alive = self(); // whoever answers the alert may let go of the pane
    // The configuration being edited, whatever row is selected; asked for before the list can change under the alert.
    const auto index = tell(m_imprinter, &host::Imprinter::indexOfConfiguration, m_currentConfiguration);
    const auto alert = std::make_shared<NSAlert>();
    alert->setAlertStyle(NSAlertStyle::warning);
    alert->addButtonWithTitle(localized(u"Delete"));
    alert->addButtonWithTitle(localized(u"Cancel"));
    alert->setMessageText(stringWithFormat(localized(u"Delete %@?"),
                                           {tell(m_currentConfiguration, &host::ImprinterConfiguration::name)}));
    alert->setInformativeText(localized(u"Deleted configurations cannot be restored."));
    if (alert->runModal() == NSAlertFirstButtonReturn)
        deleteConfigurationAtIndex(index);
}

void VelImprinterPrefPane::deleteConfigurationAtIndex(NSUInteger index) {
    tell(m_imprinter, &host::Imprinter::deleteConfigurationAtIndex, index);
    const auto left = count(configurations());
    tell(m_tableView, &NSTableView::reloadData);
    if (left == 0) {
        tell(m_mainTabView, &NSTabView::selectTabViewItemWithIdentifier, u"No Imprint");
        tell(m_previewBtn, &NSControl::setEnabled, false);
        tell(m_deleteConfigurationBtn, &NSControl::setEnabled, false);
        tell(m_duplicateRecBtn, &NSView::setHidden, true);
        return;
    }
    const auto row = index < left ? index : index - 1;
    dispatchAfter(selectionDelay, [pane = self(), row] {
        // Should the list have become shorter meanwhile, this selects no row and shows the empty page.
        tell(pane->m_tableView, &NSTableView::selectRowIndexesByExtendingSelection, NSIndexSet(row), false);
        pane->setCurrentConfiguration(pane->configuarationAtIndex(static_cast<NSInteger>(row)));
    });
}

void VelImprinterPrefPane::onConfigurationNameChanged(const std::shared_ptr<NSObject>& sender) {
    const auto row = tell(m_tableView, &NSTableView::selectedRow);
    if (row == -1 || !configurations())
        return;
    const auto name = tell(std::dynamic_pointer_cast<NSControl>(sender), &NSControl::stringValue);
    if (const auto configuration = configuarationAtIndex(row); configuration && !name.empty())
        configuration->setName(name);
}

bool VelImprinterPrefPane::canDragRowsWithIndexesAtPoint(const NSIndexSet&, NSPoint) const {
    return false;
}

NSDragOperation VelImprinterPrefPane::tableViewValidateDropProposedRowProposedDropOperation(
    const std::shared_ptr<NSTableView>&, const std::shared_ptr<NSDraggingInfo>& info, NSInteger,
    NSTableViewDropOperation operation) {
    const bool ownDrag = tell(info, &NSDraggingInfo::draggingSource) != nullptr;
    return operation == NSTableViewDropOperation::above && ownDrag ? NSDragOperationMove : NSDragOperationNone;
}

bool VelImprinterPrefPane::tableViewAcceptDropRowDropOperation(const std::shared_ptr<NSTableView>& table,
                                                               const std::shared_ptr<NSDraggingInfo>& info,
                                                               NSInteger row, NSTableViewDropOperation operation) {
    if (tableViewValidateDropProposedRowProposedDropOperation(table, info, row, operation) == NSDragOperationNone)
        return false;
    const auto data = tell(info->draggingPasteboard(), &NSPasteboard::dataForType, VelImprintPasteboardType);
    const auto archive = NSKeyedUnarchiver::initForReadingFromData(data);
    tell(archive, &NSKeyedUnarchiver::setRequiresSecureCoding, false);
    const auto rows =
        archive ? archive->decodeTopLevelObjectOfClassForKey<NSIndexSet>(NSKeyedArchiveRootObjectKey) : std::nullopt;
    // The first index of no set at all is 0, as a message to nil answers; that of an empty set is NSNotFound.
    const auto source = rows ? rows->firstIndex() : 0;
    const auto target = static_cast<NSUInteger>(row);
    if (source != target)
        tell(m_imprinter, &host::Imprinter::moveConfigurationAtIndexTo, source, target);
    tell(m_tableView, &NSTableView::reloadData);
    return true;
}

void VelImprinterPrefPane::updatePreview() {
    if (!m_currentConfiguration)
        return;
    setPreviewURL(tell(m_imprinter, &host::Imprinter::imprintFileAtURLWithIndex,
                       VelPreviewViewController::samplePictureURL(), m_currentConfiguration, 0));
    if (m_previewURL)
        tell(m_popoverViewController, &VelPreviewViewController::setPreviewURL, m_previewURL);
}

std::u16string VelImprinterPrefPane::spokenPreview() const {
    if (!m_currentConfiguration)
        return {};
    const NSNumberFormatter numbers(NSNumberFormatterStyle::decimal, NSLocale::currentLocale());
    const auto one = numbers.stringFromNumber(1); // the sample is a picture, which is a single page
    const auto name = m_currentConfiguration->name();
    const auto position = static_cast<std::size_t>(m_currentConfiguration->position());
    if (m_currentConfiguration->combinedConfiguration() || position >= std::size(places))
        return stringWithFormat(localized(u"%@, page %@ of %@"), {name, one, one});
    const auto place = localized(places[position]);
    const double degrees = m_currentConfiguration->rotation();
    if (degrees == 0)
        return stringWithFormat(localized(u"%@, page %@ of %@, %@"), {name, one, one, place});
    return stringWithFormat(localized(u"%@, page %@ of %@, %@, rotated %@ degrees"),
                            {name, one, one, place, numbers.stringFromNumber(degrees)});
}

void VelImprinterPrefPane::setPopover(const std::shared_ptr<NSPopover>& popover) {
    m_popover = popover;
}

void VelImprinterPrefPane::setPopoverViewController(const std::shared_ptr<VelPreviewViewController>& controller) {
    m_popoverViewController = controller;
}

void VelImprinterPrefPane::onPreview(const std::shared_ptr<NSObject>& sender) {
    if (!m_popoverViewController) {
        const auto controller = std::make_shared<VelPreviewViewController>();
        controller->initWithNibNameBundle(u"VelPreviewViewController", NSBundle::bundleForClass(classTable()));
        setPopoverViewController(controller);
        controller->loadView();
        controller->setDescriber([pane = std::weak_ptr(self())] {
            const auto alive = pane.lock();
            return alive ? alive->spokenPreview() : u"";
        });
    }
    if (tell(m_popover, &NSPopover::isDetached)) {
        const auto window = tell(m_popoverViewController->view(), &NSView::window);
        tell(window, &NSWindow::makeKeyAndOrderFront, nullptr);
        return;
    }
    createPopover();
    m_popoverViewController->setPreviewURL(m_previewURL);
    const auto view = std::dynamic_pointer_cast<NSView>(sender);
    m_popover->showRelativeToRectOfViewPreferredEdge(tell(view, &NSView::bounds), view, NSRectEdge::maxY);
}

void VelImprinterPrefPane::createPopover() {
    if (m_popover)
        return;
    const auto popover = std::make_shared<NSPopover>();
    popover->setContentViewController(m_popoverViewController);
    popover->setAppearance(NSAppearance::appearanceNamed(NSAppearanceNameVibrantLight));
    popover->setAnimates(true);
    popover->setBehavior(NSPopoverBehavior::transient);
    popover->setDelegate(self());
    setPopover(popover);
}

void VelImprinterPrefPane::popoverWillShow(const NSNotification&) {}
void VelImprinterPrefPane::popoverDidShow(const NSNotification&) {}

void VelImprinterPrefPane::popoverDidClose(const NSNotification&) {
    setPopover(nullptr);
    tell(m_popoverViewController, &VelPreviewViewController::resetZoom);
}

bool VelImprinterPrefPane::popoverShouldDetach(const std::shared_ptr<NSPopover>&) {
    return true;
}

} // namespace pane
