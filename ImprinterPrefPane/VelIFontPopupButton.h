// SPDX-License-Identifier: MIT
#pragma once

#include "VelIFontPopUpProtocol.h"

#include <AppKit/NSFont.h>
#include <AppKit/NSPopUpButton.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSNotification.h>

namespace pane {

class VelIFontAttributePopupButton;
class VelIFontPopupButton;

/// Whoever is told which font the user chose.
class VelIFontPopupDelegate {
public:
    virtual ~VelIFontPopupDelegate();
    /// `button` is the family button, whichever of the two was used; the name is nil where family and face together
    /// name no font.
    virtual void selectedFontUpdatedFullFontName(const std::shared_ptr<VelIFontPopupButton>& button,
                                                 const std::optional<std::u16string>& fullFontName) = 0;
};

/// The list of font families. With its partner, the list of the chosen family's faces, it names one font, and it speaks
/// for both: every choice of the user is reported first to the block, then to the delegate, with the same full font
/// name.
///
/// While the menu is open each item shows what its face looks like; the closed button names the chosen one in the menu
/// font.
/// Selecting by title or item keeps it so; selecting by index or tag leaves the drawing as it was.
class VelIFontPopupButton : public platform::NSPopUpButton, public VelIFontPopUpProtocol {
public:
    using OnFontChanged = std::function<void(const std::optional<std::u16string>& fullFontName)>;

    ~VelIFontPopupButton() override;
    std::u16string_view className() const override;
    static platform::NSClass describeClass();

    std::shared_ptr<VelIFontAttributePopupButton> fontAttributePopUpBtn() const {
        return m_fontAttributePopUpBtn.lock();
    }
    void setFontAttributePopUpBtn(const std::shared_ptr<VelIFontAttributePopupButton>& button) {
        m_fontAttributePopUpBtn = button;
    }
    std::shared_ptr<VelIFontPopupDelegate> delegate() const { return m_delegate.lock(); }
    void setDelegate(const std::shared_ptr<VelIFontPopupDelegate>& delegate) { m_delegate = delegate; }
    /// May be empty.
    const OnFontChanged& onFontChanged() const { return m_onFontChanged; }
    void setOnFontChanged(OnFontChanged block) { m_onFontChanged = std::move(block); }
    /// Whether items are drawn in their own fonts: from waking on.
    bool useFonts() const { return m_useFonts; }
    /// The tag of the family that was selected when the menu last opened; -1 for none, 0 before the first opening.
    platform::NSInteger lastSelectedItemTag() const { return m_lastSelectedItemTag; }
    void setLastSelectedItemTag(platform::NSInteger tag) { m_lastSelectedItemTag = tag; }

    /// Takes the catalog's menu of families, for good, and becomes the target of both buttons.
    void awakeFromNib() override;

    /// The catalog's.
    virtual std::vector<std::u16string> buildFontList();

    virtual void onWillPopupNotification(const platform::NSNotification& notification);
    void dismissPopUp() override;

    void selectItemWithTitle(const std::u16string& title) override;
    void selectItem(const std::shared_ptr<platform::NSMenuItem>& item) override;
    void selectItemAtIndex(platform::NSInteger index) override;
    bool selectItemWithTag(platform::NSInteger tag) override;

    /// Shows `font` in both buttons and reports nothing. Null changes nothing; a family the catalog does not know
    /// deselects.
    virtual void updatePopupForFont(const std::shared_ptr<platform::NSFont>& font);
    virtual void updateAttributePopupForFontFamily(const std::u16string& family);
    /// nil where one of the buttons has no selection, or the pair is unknown.
    virtual std::optional<std::u16string> currentSelectedFullFontName();

    virtual void onFontSelectionChanged(const std::shared_ptr<NSObject>& sender);
    virtual void onFontAttributeChanged(const std::shared_ptr<NSObject>& sender);

private:
    std::shared_ptr<VelIFontPopupButton> self();
    void report();

    std::weak_ptr<VelIFontAttributePopupButton> m_fontAttributePopUpBtn;
    std::weak_ptr<VelIFontPopupDelegate> m_delegate;
    OnFontChanged m_onFontChanged;
    platform::NSInteger m_lastSelectedItemTag = 0;
    bool m_useFonts = false;
};

/// Draws the item in the menu font of a button of that size.
void restyleInMenuFont(platform::NSMenuItem& item, platform::NSControlSize size);

} // namespace pane
