// SPDX-License-Identifier: MIT
#pragma once

#include "VelIFontPopupButton.h"

#include <AppKit/NSMenu.h>
#include <AppKit/NSPopover.h>
#include <AppKit/NSTabView.h>
#include <AppKit/NSTableView.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSURL.h>
#include <PreferencePanes/NSPreferencePane.h>
#include <host/Imprinter.h>
#include <host/PlaceholderTokenField.h>

#include <array>
#include <map>
#include <optional>

namespace platform {
class NSButton;
class NSColorWell;
class NSMatrix;
class NSPopUpButton;
class NSSegmentedControl;
class NSStepper;
} // namespace platform

namespace pane {

class VelCombinedViewController;
class VelIFontAttributePopupButton;
class VelPreviewViewController;

/// The pasteboard type under which rows of the configuration table are dropped: a keyed archive whose root is an index
/// set.
extern "C" __attribute__((visibility("default"))) const char16_t* const VelImprintPasteboardType;

/// The settings pane in which imprint configurations are listed and edited.
///
/// It keeps no configuration of its own: every value is read from the host's model when it is shown and written to it
/// at once when the user changes it; the model is stored when the pane is left. A missing host, a missing configuration
/// and a nil answer are normal states that empty or disable what depends on them.
///
/// Four units share the class: the shell, the Location editor, the Appearance editor and the title. Messages are
/// virtual because whoever loads the pane's bundle does not link it.
class VelImprinterPrefPane : public platform::NSPreferencePane,
                             public platform::NSTableViewDataSource,
                             public platform::NSTableViewDelegate,
                             public platform::NSTabViewDelegate,
                             public platform::NSMenuDelegate,
                             public platform::NSUserInterfaceValidations,
                             public platform::NSPopoverDelegate,
                             public platform::NSTokenFieldDelegate,
                             public host::PlaceholderMenuDelegate,
                             public VelIFontPopupDelegate {
public:
    using NSObject = platform::NSObject;
    using NSInteger = platform::NSInteger;
    using NSRange = platform::NSRange;
    using NSUInteger = platform::NSUInteger;
    using RepresentedObject = platform::RepresentedObject;
    using TitleObjects = std::vector<RepresentedObject>;
    using FontRuns = std::vector<std::shared_ptr<host::ImprinterFont>>;
    using ConfigurationPointer = std::shared_ptr<host::ImprinterConfiguration>;

    VelImprinterPrefPane();
    ~VelImprinterPrefPane() override;
    std::u16string_view className() const override;
    /// The class's table: outlets, actions and keys.
    static platform::NSClass describeClass();

    // Life of the pane

    void mainViewDidLoad() override;
    void didSelect() override;
    /// Always lets the user go; a custom page list left blank falls back to every page.
    platform::NSPreferencePaneUnselectReply shouldUnselect() override;
    void willUnselect() override;

    // State

    /// The host's model; null without a host.
    std::shared_ptr<host::Imprinter> imprinter() const { return m_imprinter; }
    void setImprinter(const std::shared_ptr<host::Imprinter>& imprinter) { m_imprinter = imprinter; }
    ConfigurationPointer currentConfiguration() const { return m_currentConfiguration; }
    /// Switches the editors; null shows the empty page. Does nothing for the configuration already shown.
    virtual void setCurrentConfiguration(const ConfigurationPointer& configuration);
    const std::optional<platform::NSURL>& previewURL() const { return m_previewURL; }
    virtual void setPreviewURL(const std::optional<platform::NSURL>& url);
    /// The font run that the font controls edit; null for none.
    const std::shared_ptr<host::ImprinterFont>& currentFont() const { return m_currentFont; }
    void setCurrentFont(const std::shared_ptr<host::ImprinterFont>& font) { m_currentFont = font; }
    /// Null unless the preview is shown, attached or torn off.
    const std::shared_ptr<platform::NSPopover>& popover() const { return m_popover; }
    virtual void setPopover(const std::shared_ptr<platform::NSPopover>& popover);
    /// Made for the first preview and kept.
    const std::shared_ptr<VelPreviewViewController>& popoverViewController() const { return m_popoverViewController; }
    virtual void setPopoverViewController(const std::shared_ptr<VelPreviewViewController>& controller);

    /// The runs that keys on the pasteboard stand for; made anew by each write, never cleared by a read.
    const std::map<std::u16string, std::shared_ptr<host::ImprinterFont>>& fontLookup() const { return m_fontLookup; }
    void setFontLookup(std::map<std::u16string, std::shared_ptr<host::ImprinterFont>> lookup) {
        m_fontLookup = std::move(lookup);
    }
    /// What the title field wrote last, until the reorder that follows.
    const platform::NSArray<RepresentedObject>& draggedTokenObjects() const { return m_draggedTokenObjects; }
    void setDraggedTokenObjects(const platform::NSArray<RepresentedObject>& objects) {
        m_draggedTokenObjects = objects;
    }
    /// Whether the title field wrote to a pasteboard, by a drag, a copy or a cut, since the last reorder.
    bool isDraggingFromSelf() const { return m_isDraggingFromSelf; }
    void setIsDraggingFromSelf(bool dragging) { m_isDraggingFromSelf = dragging; }

    // Declared for hosts that expect them; nothing in the pane reads or writes these.

    const FontRuns& selectedFonts() const { return m_selectedFonts; }
    void setSelectedFonts(const FontRuns& fonts) { m_selectedFonts = fonts; }
    const TitleObjects& tokenItemArray() const { return m_tokenItemArray; }
    void setTokenItemArray(const TitleObjects& items) { m_tokenItemArray = items; }
    const std::vector<std::shared_ptr<platform::NSMenuItem>>& tokenMenuItems() const { return m_tokenMenuItems; }
    void setTokenMenuItems(const std::vector<std::shared_ptr<platform::NSMenuItem>>& items) {
        m_tokenMenuItems = items;
    }
    bool duplicateRecord() const { return m_duplicateRecord; }
    void setDuplicateRecord(bool duplicate) { m_duplicateRecord = duplicate; }
    std::shared_ptr<platform::NSWindow> previewWindow() const { return m_previewWindow; }
    void setPreviewWindow(const std::shared_ptr<platform::NSWindow>& window) { m_previewWindow = window; }
    std::shared_ptr<platform::NSWindow> detachedWindow() const { return m_detachedWindow; }
    void setDetachedWindow(const std::shared_ptr<platform::NSWindow>& window) { m_detachedWindow = window; }
    std::shared_ptr<platform::NSView> pdfView() const { return m_pdfView.lock(); }
    void setPdfView(const std::shared_ptr<platform::NSView>& view) { m_pdfView = view; }

    // Shell

    virtual void translateUI();
    virtual void updateDuplicateRecord();
    virtual void onDuplicateRecord(const std::shared_ptr<NSObject>& sender);
    virtual void enableControls(bool enable);
    /// Null for a row the list does not have.
    virtual ConfigurationPointer configuarationAtIndex(NSInteger row) const; // sic
    virtual void saveConfiguration();

    NSInteger numberOfRowsInTableView(const std::shared_ptr<platform::NSTableView>& table) override;
    std::shared_ptr<platform::NSTableCellView>
    tableViewViewForTableColumnRow(const std::shared_ptr<platform::NSTableView>& table,
                                   const std::shared_ptr<platform::NSTableColumn>& column, NSInteger row) override;
    bool tableViewShouldSelectRow(const std::shared_ptr<platform::NSTableView>& table, NSInteger row) override;
    void tableViewSelectionDidChange(const platform::NSNotification& notification) override;
    bool tabViewShouldSelectTabViewItem(const std::shared_ptr<platform::NSTabView>& tabView,
                                        const std::shared_ptr<platform::NSTabViewItem>& item) override;

    // Commands on configurations. The host changes the list; the pane shows it anew and selects.

    /// A new menu, with an item without title as the face of the button that pulls it down.
    virtual std::shared_ptr<platform::NSMenu> buildActionMenu();
    /// What needs a selected row is enabled while there is one.
    bool validateUserInterfaceItem(const platform::NSValidatedUserInterfaceItem& item) override;
    /// The new configuration is selected and shown 0.2 seconds later.
    virtual void addConfiguration(const std::shared_ptr<NSObject>& sender);
    virtual void createCombinedConfiguration(const std::shared_ptr<NSObject>& sender);
    virtual void duplicateConfiguration(const std::shared_ptr<NSObject>& sender);
    /// Asks first, then deletes the configuration being edited.
    virtual void deleteConfiguration(const std::shared_ptr<NSObject>& sender);
    /// The configuration that takes the row is selected and shown 0.2 seconds later; after the last one the empty page
    /// is shown at once, and the deleted configuration stays the current one.
    virtual void deleteConfigurationAtIndex(platform::NSUInteger index);
    /// `sender` is the text field of the selected row. An empty name is ignored.
    virtual void onConfigurationNameChanged(const std::shared_ptr<NSObject>& sender);

    /// NO: rows are moved by drops from elsewhere in the program, and the table starts no drags.
    virtual bool canDragRowsWithIndexesAtPoint(const platform::NSIndexSet& rows, platform::NSPoint point) const;
    platform::NSDragOperation tableViewValidateDropProposedRowProposedDropOperation(
        const std::shared_ptr<platform::NSTableView>& table, const std::shared_ptr<platform::NSDraggingInfo>& info,
        NSInteger row, platform::NSTableViewDropOperation operation) override;
    /// Moves the first row of the index set that the drag carries; row 0 where there is no readable one.
    bool tableViewAcceptDropRowDropOperation(const std::shared_ptr<platform::NSTableView>& table,
                                             const std::shared_ptr<platform::NSDraggingInfo>& info, NSInteger row,
                                             platform::NSTableViewDropOperation operation) override;

    // Preview

    /// Has the host stamp the sample page with the current configuration; a nil answer leaves the picture on show.
    virtual void updatePreview();
    /// The preview in words, for those who do not see it: "Received, page 1 of 1, top right, rotated 45 degrees". Empty
    /// without a configuration.
    std::u16string spokenPreview() const;
    /// Shows the last result beside the sender, or brings the window of a preview that was torn off to the front.
    virtual void onPreview(const std::shared_ptr<NSObject>& sender);
    /// Does nothing where there is one.
    virtual void createPopover();
    void popoverWillShow(const platform::NSNotification& notification) override;
    void popoverDidShow(const platform::NSNotification& notification) override;
    void popoverDidClose(const platform::NSNotification& notification) override;
    bool popoverShouldDetach(const std::shared_ptr<platform::NSPopover>& popover) override;

    // Location editor

    virtual void translateLocationUI();
    virtual void enableLocationControls(bool enable);
    virtual void updateLocation();
    virtual void saveLocation();
    virtual void onChangePosition(const std::shared_ptr<NSObject>& sender);
    virtual void onRotationChanged(const std::shared_ptr<NSObject>& sender);
    /// Turns the button of the stored position on and the other eight off.
    virtual void updatePositionBtnState();
    virtual void onOccuranceChanged(const std::shared_ptr<NSObject>& sender); // sic
    /// Makes what was typed a list of pages, in the field and in the model.
    virtual void customOccuranceTextChanged(); // sic
    /// What an emptied number falls to. The fill opacity has no such value and raises NSInvalidArgumentException.
    void setNilValueForKey(const std::u16string& key) override;
    double xOffsetValue() const;
    void setXOffsetValue(double x);
    double yOffsetValue() const;
    void setYOffsetValue(double y);
    double rotationValue() const;
    void setRotationValue(double degrees);

    // Appearance editor

    virtual void initAppearance();
    virtual void translateAppearanceUI();
    virtual void enableAppearenceControls(bool enable); // sic
    virtual void updateAppearance();
    virtual void saveAppearance();
    virtual void onFontColourChanged(const std::shared_ptr<NSObject>& sender);
    virtual void onFontAttributeSegChanged(const std::shared_ptr<NSObject>& sender);
    virtual void onBorderStyleChanged(const std::shared_ptr<NSObject>& sender);
    virtual void onBorderChanged(const std::shared_ptr<NSObject>& sender);
    virtual void onBorderColourChanged(const std::shared_ptr<NSObject>& sender);
    virtual void onBorderThicknessChanged(const std::shared_ptr<NSObject>& sender);
    virtual void onFillChanged(const std::shared_ptr<NSObject>& sender);
    virtual void onFillColourChanged(const std::shared_ptr<NSObject>& sender);
    /// `sender` is an item of the menu of font runs; its run becomes the current font.
    virtual void onSelectFont(const std::shared_ptr<NSObject>& sender);
    double fontSizeValue() const;
    void setFontSizeValue(double points);
    double fontStrokeWidthValue() const;
    void setFontStrokeWidthValue(double points);
    double borderThicknessValue() const;
    void setBorderThicknessValue(double points);
    double fillOpacityValue() const;
    /// The only setter; the key has none of the usual form. Leaves the preview as it is.
    void setfillOpacityValue(double opacity); // sic

    // Title: its tokens

    virtual bool isTokenString(const std::u16string& text) const;
    virtual std::u16string normalizedTitleTokenString(const std::u16string& text) const;
    virtual TitleObjects normalizedTitleTokens(const platform::NSArray<RepresentedObject>& title) const;
    virtual NSUInteger lengthOfToken(const RepresentedObject& token) const;
    /// Puts the token in the place of the characters in `range`, in the field and in the model.
    virtual void insertTokenInRange(const RepresentedObject& token, NSRange range);
    /// `sender` is an item of the insert menu; what it represents goes where the caret is, or to the front while the
    /// field is not edited. Raises NSInvalidArgumentException where that is nothing.
    virtual void addTokenItem(const std::shared_ptr<NSObject>& sender);
    /// The runs in the field.
    virtual FontRuns getFontTokenArray() const;
    /// Numbers them from 0; answers their count plus one.
    virtual NSUInteger renumberFonts(const FontRuns& fonts);
    virtual void fontTokensWereDeletedCurrentFonts(const FontRuns& previousFonts, const FontRuns& currentFonts);
    virtual FontRuns selectedFontsInRange(NSRange range) const;
    virtual void updateFontSelections(const FontRuns& fonts);
    void selectedFontUpdatedFullFontName(const std::shared_ptr<VelIFontPopupButton>& sender,
                                         const std::optional<std::u16string>& fullFontName) override;

    // Title: its field

    platform::NSTokenStyle tokenFieldStyleForRepresentedObject(const std::shared_ptr<platform::NSTokenField>& field,
                                                               const RepresentedObject& object) override;
    std::optional<std::u16string>
    tokenFieldDisplayStringForRepresentedObject(const std::shared_ptr<platform::NSTokenField>& field,
                                                const RepresentedObject& object) override;
    std::optional<RepresentedObject>
    tokenFieldRepresentedObjectForEditingString(const std::shared_ptr<platform::NSTokenField>& field,
                                                const std::u16string& editingString) override;
    platform::NSArray<RepresentedObject>
    tokenFieldShouldAddObjectsAtIndex(const std::shared_ptr<platform::NSTokenField>& field,
                                      const platform::NSArray<RepresentedObject>& objects, NSUInteger index) override;
    bool
    tokenFieldWriteRepresentedObjectsToPasteboard(const std::shared_ptr<platform::NSTokenField>& field,
                                                  const platform::NSArray<RepresentedObject>& objects,
                                                  const std::shared_ptr<platform::NSPasteboard>& pasteboard) override;
    platform::NSArray<RepresentedObject>
    tokenFieldReadFromPasteboard(const std::shared_ptr<platform::NSTokenField>& field,
                                 const std::shared_ptr<platform::NSPasteboard>& pasteboard) override;
    bool controlTextShouldBeginEditing(const std::shared_ptr<platform::NSControl>& control) override;
    bool controlTextShouldEndEditing(const std::shared_ptr<platform::NSControl>& control) override;
    virtual void textViewDidChangeSelection(const platform::NSNotification& notification);
    /// Of the title field, or of the field of custom pages.
    void controlTextDidChange(const platform::NSNotification& notification) override;
    /// Follows a paste of foreign text: no "%" stays in the text.
    virtual void sanitizeTextAfterPaste();
    /// Follows a paste or drop of what the field wrote itself: of each object that stands twice now, the first goes.
    virtual void finalizeDragReorder();

    // Title: its menus

    void tokenFieldWillPopUpMenuWithPlaceholderMenu(const std::shared_ptr<platform::NSTokenField>& field,
                                                    const std::shared_ptr<platform::NSMenu>& menu,
                                                    const std::shared_ptr<platform::NSMenu>& placeholderMenu) override;
    virtual void updateSubmenuWithTargetAction(const std::shared_ptr<platform::NSMenu>& menu,
                                               const std::shared_ptr<NSObject>& target, const std::u16string& action);
    /// An item without title, that shows `title`, an English one, as the picture of a token.
    virtual void insertPlaceholderTitleToMenuAtIndex(const std::u16string& placeholder, const std::u16string& title,
                                                     const std::shared_ptr<platform::NSMenu>& menu, NSInteger index);
    /// The runs of the configuration's title, by name.
    virtual std::shared_ptr<platform::NSMenu> createFontTokensMenu();
    /// That menu is about to open.
    virtual void fontPopuWillBeDisplayed(const platform::NSNotification& notification); // sic

private:
    std::shared_ptr<VelImprinterPrefPane> self();
    /// The text of the pane's own bundle for an English one.
    std::u16string localized(const std::u16string& english) const;
    /// The host's list, asked for afresh; nil without a host.
    host::ConfigurationArray configurations() const;
    void selectRowOf(const ConfigurationPointer& configuration);
    void askForPageList();
    void createConfiguration(bool combined, const std::u16string& englishName);
    std::array<std::weak_ptr<platform::NSButton>, 9> positionButtons() const;
    void switchTo(const ConfigurationPointer& configuration);
    void setUpTitleField();
    void showBorderAndFill();
    void showBorderThickness();
    void enableBorderControls(bool enable);
    void hideOutlineThickness(bool hide);
    void showOutlineThickness();
    /// A name that is nil takes the face away; hosts keep the former one.
    void setNameOfCurrentFont(const std::optional<std::u16string>& fullFontName);
    platform::NSArray<RepresentedObject> titleOfField() const;
    void storeTitle(const platform::NSArray<RepresentedObject>& title);

    std::shared_ptr<host::Imprinter> m_imprinter;
    ConfigurationPointer m_currentConfiguration;
    std::shared_ptr<host::ImprinterFont> m_currentFont;
    std::map<std::u16string, std::shared_ptr<host::ImprinterFont>> m_fontLookup;
    platform::NSArray<RepresentedObject> m_draggedTokenObjects;
    bool m_isDraggingFromSelf = false;
    FontRuns m_selectedFonts;
    TitleObjects m_tokenItemArray;
    std::vector<std::shared_ptr<platform::NSMenuItem>> m_tokenMenuItems;
    std::shared_ptr<NSObject> tokenChangeObserver;
    std::optional<platform::NSURL> m_previewURL;
    std::shared_ptr<platform::NSPopover> m_popover;
    std::shared_ptr<VelPreviewViewController> m_popoverViewController;
    std::shared_ptr<VelCombinedViewController> m_combinedVC;
    std::shared_ptr<platform::NSWindow> m_previewWindow;
    std::shared_ptr<platform::NSWindow> m_detachedWindow;
    std::weak_ptr<platform::NSView> m_pdfView;
    bool m_duplicateRecord = false;

    // Outlets: frame and lists
    std::weak_ptr<platform::NSWindow> m_theWindow;
    std::weak_ptr<platform::NSTableView> m_tableView;
    std::weak_ptr<platform::NSPopUpButton> m_actionPopupMenu;
    std::weak_ptr<platform::NSTabView> m_mainTabView;
    std::weak_ptr<platform::NSTabView> m_tabView;
    std::weak_ptr<platform::NSTableView> m_combinedTableView;
    std::weak_ptr<platform::NSTableView> m_allConfigsTableView;
    std::weak_ptr<platform::NSTextField> m_noConfigurationsLabel;
    std::weak_ptr<platform::NSButton> m_previewBtn;
    std::weak_ptr<platform::NSButton> m_duplicateRecBtn;
    std::weak_ptr<platform::NSButton> m_deleteConfigurationBtn;

    // Outlets: Location editor
    std::weak_ptr<platform::NSButton> m_topLeftBtn;
    std::weak_ptr<platform::NSButton> m_topCenterBtn;
    std::weak_ptr<platform::NSButton> m_topRightBtn;
    std::weak_ptr<platform::NSButton> m_centerLeftBtn;
    std::weak_ptr<platform::NSButton> m_centerBtn;
    std::weak_ptr<platform::NSButton> m_centerRightBtn;
    std::weak_ptr<platform::NSButton> m_bottomLeftBtn;
    std::weak_ptr<platform::NSButton> m_bottomCenterBtn;
    std::weak_ptr<platform::NSButton> m_bottomRightBtn;
    std::weak_ptr<platform::NSMatrix> m_positionMatrix;
    std::weak_ptr<platform::NSMatrix> m_occuranceMatrix;
    std::weak_ptr<platform::NSTextField> m_xOffset;
    std::weak_ptr<platform::NSTextField> m_yOffset;
    std::weak_ptr<platform::NSTextField> m_rotation;
    std::weak_ptr<platform::NSTextField> m_customOccurance;
    std::weak_ptr<platform::NSStepper> m_xOffsetStepper;
    std::weak_ptr<platform::NSStepper> m_yOffsetStepper;
    std::weak_ptr<platform::NSStepper> m_rotationStepper;
    std::weak_ptr<platform::NSTextField> m_positionLabel;
    std::weak_ptr<platform::NSTextField> m_offsetLabel;
    std::weak_ptr<platform::NSTextField> m_rotationLabel;
    std::weak_ptr<platform::NSTextField> m_occuranceLabel;
    std::weak_ptr<platform::NSTextField> m_pixelsXLabel;
    std::weak_ptr<platform::NSTextField> m_pixelsYLabel;
    std::weak_ptr<platform::NSTextField> m_degreesLabel;

    // Outlets: Appearance editor
    std::weak_ptr<platform::NSTokenField> m_titleTokenField;
    std::weak_ptr<VelIFontPopupButton> m_fontPopup;
    std::weak_ptr<VelIFontAttributePopupButton> m_fontAttributePopup;
    std::weak_ptr<platform::NSPopUpButton> m_fontTokensPopup;
    std::weak_ptr<platform::NSPopUpButton> m_borderStylePopup;
    std::weak_ptr<platform::NSSegmentedControl> m_fontAttributesSegCtrl;
    std::weak_ptr<platform::NSColorWell> m_fontColour;
    std::weak_ptr<platform::NSColorWell> m_borderColourWell;
    std::weak_ptr<platform::NSColorWell> m_fillColourWell;
    std::weak_ptr<platform::NSTextField> m_fontSizeField;
    std::weak_ptr<platform::NSTextField> m_outlineTextThickness;
    std::weak_ptr<platform::NSTextField> m_borderThickness;
    std::weak_ptr<platform::NSStepper> m_fontSizeStepper;
    std::weak_ptr<platform::NSStepper> m_outlineTextThicknessStepper;
    std::weak_ptr<platform::NSStepper> m_borderThicknessStepper;
    std::weak_ptr<platform::NSButton> m_borderEnableBtn;
    std::weak_ptr<platform::NSButton> m_fillEnableBtn;
    std::weak_ptr<platform::NSTextField> m_titleLabel;
    std::weak_ptr<platform::NSTextField> m_styleLabel;
    std::weak_ptr<platform::NSTextField> m_borderLabel;
    std::weak_ptr<platform::NSTextField> m_fillLabel;
    std::weak_ptr<platform::NSTextField> m_borderThicknessLabel;
    std::weak_ptr<platform::NSTextField> m_borderColourLabel;
    std::weak_ptr<platform::NSTextField> m_fillColourLabel;
    std::weak_ptr<platform::NSTextField> m_thicknessLabel;
    std::weak_ptr<platform::NSTextField> m_fontSizeLabel;
    std::weak_ptr<platform::NSTextField> m_fontColourLabel;
};

} // namespace pane
