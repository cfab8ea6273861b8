// SPDX-License-Identifier: MIT
#pragma once

#include "VelIFontPopUpProtocol.h"

#include <AppKit/NSPopUpButton.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSNotification.h>

namespace pane {

class VelIFontPopupButton;

/// The list of the faces of the family chosen in its partner, which it asks for everything it knows. The list is empty
/// until the partner makes it.
class VelIFontAttributePopupButton : public platform::NSPopUpButton, public VelIFontPopUpProtocol {
public:
    ~VelIFontAttributePopupButton() override;
    std::u16string_view className() const override;
    static platform::NSClass describeClass();

    std::shared_ptr<VelIFontPopupButton> fontPopUpBtn() const { return m_fontPopUpBtn.lock(); }
    void setFontPopUpBtn(const std::shared_ptr<VelIFontPopupButton>& button) { m_fontPopUpBtn = button; }

    void awakeFromNib() override;
    virtual void onWillPopupNotification(const platform::NSNotification& notification);
    void dismissPopUp() override;

    /// Where the new menu has a face of the name that was selected, that one stays selected.
    void setMenu(const std::shared_ptr<platform::NSMenu>& menu) override;

    void selectItemWithTitle(const std::u16string& title) override;
    void selectItem(const std::shared_ptr<platform::NSMenuItem>& item) override;
    void selectItemAtIndex(platform::NSInteger index) override;
    bool selectItemWithTag(platform::NSInteger tag) override;

private:
    bool useFonts() const;
    std::optional<std::u16string> currentFullFontName() const;

    std::weak_ptr<VelIFontPopupButton> m_fontPopUpBtn;
};

} // namespace pane
