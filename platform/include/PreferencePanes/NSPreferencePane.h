// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSWindow.h>
#include <Foundation/NSBundle.h>

namespace platform {

enum class NSPreferencePaneUnselectReply { cancel = 0, now = 1, later = 2 };

/// A page of settings that a host loads from a bundle.
///
/// A host sends, in this order: `setBundle`, `loadMainView` once; then each time the pane is shown `willSelect`, puts
/// the view into its window, `didSelect`; and when it is left, after the edit in progress was committed,
/// `shouldUnselect`, `willUnselect`, takes the view out, `didUnselect`.
class NSPreferencePane : public NSObject {
public:
    ~NSPreferencePane() override;
    std::u16string_view className() const override;

    const std::shared_ptr<NSBundle>& bundle() const { return m_bundle; }
    void setBundle(const std::shared_ptr<NSBundle>& bundle) { m_bundle = bundle; }

    /// The bundle's "NSMainNibFile"; "Main" where it names none.
    std::u16string mainNibName() const;
    /// Loads the interface file, takes its content as main view and sends `mainViewDidLoad`. Answers the main view,
    /// null where the file could not be read. Throws `std::runtime_error` where the toolkit's library is missing or
    /// broken, and whatever `mainViewDidLoad` does.
    std::shared_ptr<NSView> loadMainView();
    const std::shared_ptr<NSView>& mainView() const { return m_mainView; }
    /// What was wrong with the interface file; empty where all is connected.
    const std::vector<std::string>& interfaceProblems() const { return m_problems; }

    /// YES from the inherited `didSelect` to the inherited `didUnselect`.
    bool isSelected() const { return m_selected; }

    virtual void mainViewDidLoad();
    virtual void willSelect();
    virtual void didSelect();
    virtual NSPreferencePaneUnselectReply shouldUnselect();
    virtual void willUnselect();
    virtual void didUnselect();

private:
    std::shared_ptr<NSBundle> m_bundle;
    std::shared_ptr<NSWindow> m_window;
    std::shared_ptr<NSView> m_mainView;
    std::vector<std::string> m_problems;
    bool m_selected = false;
};

} // namespace platform
