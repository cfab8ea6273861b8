// SPDX-License-Identifier: MIT
#include "../support/MadeUpFonts.h"

#include <VelIFontAttributePopupButton.h>
#include <VelIFontPopupButton.h>
#include <VelIFontPopupButtonCell.h>
#include <VelIFonts.h>

#include <Foundation/NSString.h>

#include <gtest/gtest.h>

using namespace platform;
using namespace testing_support;
using pane::VelIFontAttributePopupButton;
using pane::VelIFontPopupButton;
using pane::VelIFontPopupButtonCell;
using pane::VelIFonts;

namespace {

using Log = std::vector<std::string>;
using Name = std::optional<std::u16string>;

std::string textOf(const Name& name) {
    return name ? toUtf8(*name) : "nil";
}

/// How an item is drawn: the name of its font and the size; "plain" without one.
std::string drawing(const std::shared_ptr<NSMenuItem>& item) {
    if (!item)
        return "no item";
    if (!item->attributedTitle())
        return "plain";
    EXPECT_EQ(item->attributedTitle()->string(), item->title());
    const auto font = item->attributedTitle()->font();
    const auto size = std::to_string(static_cast<int>(font->pointSize()));
    return (font->isMenuFont() ? "menu font" : toUtf8(font->fontName())) + " " + size;
}

class Delegate final : public pane::VelIFontPopupDelegate {
public:
    explicit Delegate(Log& log) : m_log(log) {}
    void selectedFontUpdatedFullFontName(const std::shared_ptr<VelIFontPopupButton>& button,
                                         const Name& fullFontName) override {
        sender = button;
        m_log.push_back("delegate " + textOf(fullFontName));
    }
    std::shared_ptr<NSObject> sender;

private:
    Log& m_log;
};

/// The base class's messages as a subclass of the button's class sees them called.
class WatchedFamilies final : public VelIFontPopupButton {
public:
    void selectItem(const std::shared_ptr<NSMenuItem>& item) override {
        calls.push_back("item");
        VelIFontPopupButton::selectItem(item);
    }
    void selectItemAtIndex(NSInteger index) override {
        calls.push_back("index");
        VelIFontPopupButton::selectItemAtIndex(index);
    }
    bool selectItemWithTag(NSInteger tag) override {
        calls.push_back("tag");
        return VelIFontPopupButton::selectItemWithTag(tag);
    }
    void selectItemWithTitle(const std::u16string& title) override {
        calls.push_back("title");
        VelIFontPopupButton::selectItemWithTitle(title);
    }
    Log calls;
};

class WatchedFaces final : public VelIFontAttributePopupButton {
public:
    void selectItem(const std::shared_ptr<NSMenuItem>& item) override {
        calls.push_back("item");
        VelIFontAttributePopupButton::selectItem(item);
    }
    void selectItemAtIndex(NSInteger index) override {
        calls.push_back("index");
        VelIFontAttributePopupButton::selectItemAtIndex(index);
    }
    bool selectItemWithTag(NSInteger tag) override {
        calls.push_back("tag");
        return VelIFontAttributePopupButton::selectItemWithTag(tag);
    }
    void selectItemWithTitle(const std::u16string& title) override {
        calls.push_back("title");
        VelIFontAttributePopupButton::selectItemWithTitle(title);
    }
    Log calls;
};

/// Two linked buttons on a catalog of three families:
///   Arial: Regular, Bold, Italic; Optima: Regular, Bold; Zapfino: Swash. Empty has no faces.
class FontPopups : public ::testing::Test {
protected:
    FontPopups() {
        for (const auto& row : std::vector<MadeUpFonts::Row>{{u"Arial", u"Arial", u"Arial"},
                                                             {u"Arial-Bold", u"Arial", u"Arial Bold"},
                                                             {u"Arial-Italic", u"Arial", u"Arial Italic"},
                                                             {u"Empty", u"Empty", u"E"},
                                                             {u"Optima", u"Optima", u"Optima"},
                                                             {u"Optima-Bold", u"Optima", u"Optima Bold"},
                                                             {u"Zapfino-S", u"Zapfino", u"Zapfino Swash"}})
            fonts->add(row);
        VelIFonts::sharedVelIFonts()->init();
        make<VelIFontPopupButton, VelIFontAttributePopupButton>();
    }

    template <class Families, class Faces>
    void make(bool facesFirst = false) {
        families = std::make_shared<Families>();
        faces = std::make_shared<Faces>();
        families->setCell(std::make_shared<VelIFontPopupButtonCell>());
        faces->setCell(std::make_shared<VelIFontPopupButtonCell>());
        families->setFontAttributePopUpBtn(faces);
        faces->setFontPopUpBtn(families);
        families->addItemWithTitle(u"From the file");
        faces->addItemWithTitle(u"From the file");
        if (facesFirst)
            faces->awakeFromNib();
        families->awakeFromNib();
        if (!facesFirst)
            faces->awakeFromNib();
        families->setOnFontChanged([this](const Name& name) { log.push_back("block " + textOf(name)); });
        families->setDelegate(delegate);
    }

    /// The user opens the menu and chooses that item, or none.
    void choose(NSPopUpButton& button, const std::u16string& title) {
        const auto menu = button.userOpens();
        ASSERT_TRUE(menu);
        button.userChose(title.empty() ? nullptr : menu->itemWithTitle(title));
    }
    void show(const std::u16string& fullFontName) {
        families->updatePopupForFont(NSFont::fontWithNameSize(fullFontName, 20));
    }
    std::string shown() { return textOf(families->titleOfSelectedItem()) + " " + textOf(faces->titleOfSelectedItem()); }
    std::string family(const std::u16string& title) { return drawing(families->itemWithTitle(title)); }
    std::string face(const std::u16string& title) { return drawing(faces->itemWithTitle(title)); }
    Log taken() { return std::exchange(log, {}); }

    Log log;
    std::shared_ptr<Delegate> delegate = std::make_shared<Delegate>(log);
    std::shared_ptr<MadeUpFonts> fonts = std::make_shared<MadeUpFonts>();
    WithFonts with{fonts};
    std::shared_ptr<VelIFontPopupButton> families;
    std::shared_ptr<VelIFontAttributePopupButton> faces;
};

// Waking

TEST_F(FontPopups, WakingInstallsTheCatalogsMenuOfFamilies) {
    EXPECT_TRUE(families->useFonts());
    EXPECT_EQ(families->numberOfItems(), 4);
    EXPECT_EQ(families->itemAtIndex(3)->tag(), 3);
    EXPECT_EQ(family(u"Optima"), "Optima 13");
    EXPECT_EQ(family(u"Empty"), "plain");
    EXPECT_EQ(families->lastSelectedItemTag(), 0);
}

TEST_F(FontPopups, BeforeWakingNoFontsAreUsed) {
    EXPECT_FALSE(VelIFontPopupButton().useFonts());
}

TEST_F(FontPopups, TheFamilyFirstSelectedKeepsItsOwnFaceUntilTheFirstChange) {
    EXPECT_EQ(shown(), "Arial nil");
    EXPECT_EQ(family(u"Arial"), "Arial 13");
    families->selectItemWithTitle(u"Optima");
    EXPECT_EQ(family(u"Arial"), "Arial 13");
    EXPECT_EQ(family(u"Optima"), "menu font 13");
}

TEST_F(FontPopups, TheFacesStayEmptyUntilAFamilyIsChosen) {
    EXPECT_EQ(faces->numberOfItems(), 0);
    EXPECT_EQ(families->currentSelectedFullFontName(), std::nullopt);
}

TEST_F(FontPopups, TheFamilyButtonIsTheTargetOfBoth) {
    for (const bool facesFirst : {false, true}) {
        make<VelIFontPopupButton, VelIFontAttributePopupButton>(facesFirst);
        EXPECT_EQ(families->target(), families);
        EXPECT_EQ(families->action(), u"onFontSelectionChanged:");
        EXPECT_EQ(faces->target(), families);
        EXPECT_EQ(faces->action(), u"onFontAttributeChanged:");
        EXPECT_EQ(faces->numberOfItems(), 0);
    }
}

TEST_F(FontPopups, TheFamilyButtonListsWhatTheCatalogLists) {
    EXPECT_EQ(families->buildFontList(), VelIFonts::sharedVelIFonts()->buildFontList());
}

TEST_F(FontPopups, EitherPartnerMayGoFirst) {
    show(u"Optima-Bold");
    auto menu = faces->menu();
    faces.reset();
    EXPECT_EQ(families->currentSelectedFullFontName(), std::nullopt);
    choose(*families, u"Arial");
    EXPECT_EQ(taken(), (Log{"block nil", "delegate nil"}));
    show(u"Optima");

    make<VelIFontPopupButton, VelIFontAttributePopupButton>();
    show(u"Optima-Bold");
    families.reset();
    choose(*faces, u"Regular");
    faces->selectItemWithTitle(u"Bold");
    EXPECT_EQ(taken(), Log());
}

TEST_F(FontPopups, AButtonThatIsGoneIsNotTold) {
    const auto observed = std::static_pointer_cast<NSObject>(faces);
    std::weak_ptr<VelIFontPopupButton> gone = families;
    families.reset();
    EXPECT_TRUE(gone.expired());
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSPopUpButtonWillPopUpNotification, observed);
}

// Opening and closing

TEST_F(FontPopups, OpeningRecordsTheTagAndShowsTheFamilyInItsOwnFace) {
    families->selectItemWithTitle(u"Zapfino");
    EXPECT_EQ(families->lastSelectedItemTag(), 0);
    EXPECT_EQ(family(u"Zapfino"), "menu font 13");
    families->userOpens();
    EXPECT_EQ(families->lastSelectedItemTag(), 3);
    EXPECT_EQ(family(u"Zapfino"), "Zapfino-S 13");
    families->userChose(nullptr);
    EXPECT_EQ(family(u"Zapfino"), "menu font 13");
    EXPECT_EQ(taken(), Log());
}

TEST_F(FontPopups, OpeningWithoutASelectionRecordsMinusOne) {
    families->selectItemWithTitle(u"No such family");
    families->userOpens();
    EXPECT_EQ(families->lastSelectedItemTag(), -1);
    families->userChose(nullptr);
}

TEST_F(FontPopups, TheTagIsWrittenOnOpeningOnly) {
    choose(*families, u"Optima");
    EXPECT_EQ(families->lastSelectedItemTag(), 0);
    show(u"Zapfino-S");
    families->selectItemWithTag(1);
    families->onFontSelectionChanged(families);
    EXPECT_EQ(families->lastSelectedItemTag(), 0);
    choose(*families, u"");
    EXPECT_EQ(families->lastSelectedItemTag(), 1);
}

TEST_F(FontPopups, AFamilyWithoutFacesIsOpenedAndClosedToo) {
    families->selectItemWithTitle(u"Empty");
    choose(*families, u"");
    EXPECT_EQ(family(u"Empty"), "menu font 13");
    choose(*families, u"Arial");
    EXPECT_EQ(family(u"Arial"), "menu font 13");
}

TEST_F(FontPopups, AnOpenListOfFacesShowsEachInItsOwnFace) {
    show(u"Arial-Bold");
    EXPECT_EQ(face(u"Regular"), "Arial 13");
    EXPECT_EQ(face(u"Bold"), "menu font 13");
    faces->userOpens();
    EXPECT_EQ(face(u"Regular"), "Arial 13");
    EXPECT_EQ(face(u"Bold"), "Arial-Bold 13");
    EXPECT_EQ(face(u"Italic"), "Arial-Italic 13");
    faces->userChose(faces->itemWithTitle(u"Italic"));
    EXPECT_EQ(face(u"Bold"), "Arial-Bold 13");
    EXPECT_EQ(face(u"Italic"), "menu font 13");
}

TEST_F(FontPopups, TheMenuFontHasTheSizeOfTheControl) {
    families->setControlSize(NSControlSize::small);
    faces->setControlSize(NSControlSize::mini);
    show(u"Optima-Bold");
    EXPECT_EQ(family(u"Optima"), "menu font 11");
    EXPECT_EQ(face(u"Bold"), "menu font 9");
}

TEST_F(FontPopups, OnlyTheButtonItselfHearsThatItOpens) {
    show(u"Arial-Bold");
    faces->userOpens();
    EXPECT_EQ(family(u"Arial"), "Arial 13"); // as the catalog made it: it was selected all the time
    EXPECT_EQ(families->lastSelectedItemTag(), 0);
    faces->userChose(nullptr);
}

TEST_F(FontPopups, ADisabledButtonRecordsNothing) {
    families->selectItemWithTitle(u"Optima");
    families->setEnabled(false);
    EXPECT_EQ(families->userOpens(), nullptr);
    EXPECT_EQ(families->lastSelectedItemTag(), 0);
    EXPECT_EQ(family(u"Optima"), "menu font 13");
}

// The cell

class PlainView final : public NSView {};

TEST_F(FontPopups, TheCellTellsAButtonThatWantsToKnow) {
    families->selectItemAtIndex(1);
    EXPECT_EQ(family(u"Empty"), "plain");
    std::static_pointer_cast<NSPopUpButtonCell>(families->cell())->dismissPopUp();
    EXPECT_EQ(family(u"Empty"), "menu font 13");
}

TEST_F(FontPopups, TheCellOfAnyOtherViewTellsNobody) {
    VelIFontPopupButtonCell().dismissPopUp();
    const auto plain = std::make_shared<NSPopUpButton>();
    plain->setCell(std::make_shared<VelIFontPopupButtonCell>());
    plain->addItemWithTitle(u"One");
    std::static_pointer_cast<NSPopUpButtonCell>(plain->cell())->dismissPopUp();
    EXPECT_EQ(plain->itemAtIndex(0)->attributedTitle(), nullptr);
}

TEST_F(FontPopups, ClosingWithoutASelectionRestylesNothing) {
    families->selectItemAtIndex(-1);
    families->dismissPopUp();
    faces->dismissPopUp();
    EXPECT_EQ(family(u"Arial"), "Arial 13");
}

// Selecting by program

TEST_F(FontPopups, SelectingByTitleRestylesTheOldAndTheNew) {
    families->selectItemWithTitle(u"Optima");
    families->selectItemWithTitle(u"Zapfino");
    EXPECT_EQ(family(u"Optima"), "Optima 13");
    EXPECT_EQ(family(u"Zapfino"), "menu font 13");

    show(u"Arial-Bold");
    faces->selectItemWithTitle(u"Italic");
    EXPECT_EQ(face(u"Bold"), "Arial-Bold 13");
    EXPECT_EQ(face(u"Italic"), "menu font 13");
}

TEST_F(FontPopups, SelectingByItemRestylesTheOldAndTheNew) {
    families->selectItem(families->itemWithTitle(u"Optima"));
    families->selectItem(families->itemWithTitle(u"Zapfino"));
    EXPECT_EQ(shown(), "Zapfino nil");
    EXPECT_EQ(family(u"Optima"), "Optima 13");
    EXPECT_EQ(family(u"Zapfino"), "menu font 13");

    show(u"Arial-Bold");
    faces->selectItem(faces->itemWithTitle(u"Italic"));
    EXPECT_EQ(shown(), "Arial Italic");
    EXPECT_EQ(face(u"Bold"), "Arial-Bold 13");
    EXPECT_EQ(face(u"Italic"), "menu font 13");
}

TEST_F(FontPopups, SelectingTheSelectedOneRestylesNothing) {
    families->selectItemWithTitle(u"Arial");
    families->selectItem(families->itemWithTitle(u"Arial"));
    EXPECT_EQ(family(u"Arial"), "Arial 13");
    show(u"Arial-Bold");
    faces->selectItemAtIndex(0);
    faces->selectItemWithTitle(u"Regular");
    faces->selectItem(faces->itemWithTitle(u"Regular"));
    EXPECT_EQ(face(u"Regular"), "Arial 13");
    EXPECT_EQ(face(u"Bold"), "menu font 13");
}

TEST_F(FontPopups, SelectingByIndexOrTagRestylesNothing) {
    families->selectItemWithTitle(u"Optima");
    families->selectItemAtIndex(3);
    EXPECT_EQ(family(u"Optima"), "menu font 13");
    EXPECT_EQ(family(u"Zapfino"), "Zapfino-S 13");
    EXPECT_TRUE(families->selectItemWithTag(0));
    EXPECT_FALSE(families->selectItemWithTag(99));
    EXPECT_EQ(shown(), "Arial nil");
    EXPECT_EQ(family(u"Optima"), "menu font 13");
    EXPECT_EQ(family(u"Arial"), "Arial 13");

    show(u"Arial-Bold");
    faces->selectItemAtIndex(2);
    EXPECT_TRUE(faces->selectItemWithTag(1)); // Italic by sorted place
    EXPECT_FALSE(faces->selectItemWithTag(99));
    EXPECT_EQ(shown(), "Arial Italic");
    EXPECT_EQ(face(u"Bold"), "menu font 13");
    EXPECT_EQ(face(u"Italic"), "Arial-Italic 13");
}

/// Where in the selection the restyling happens shows in the face that an old item gets back: by title the base has
/// selected already, by item not yet.
TEST_F(FontPopups, ByTitleTheRestylingFollowsTheSelectionAndByItemItPrecedesIt) {
    Log order;
    const auto watch = [&](NSPopUpButton& button, const char* what) {
        button.menu()->setOnChange([&order, &button, what] {
            order.push_back(std::string(what) + " while " + textOf(button.titleOfSelectedItem()));
        });
    };
    families->selectItemWithTitle(u"Optima");
    watch(*families, "restyled");
    families->selectItemWithTitle(u"Zapfino");
    EXPECT_EQ(std::exchange(order, {}), (Log{"restyled while Zapfino", "restyled while Zapfino"}));
    families->selectItem(families->itemWithTitle(u"Optima"));
    EXPECT_EQ(std::exchange(order, {}), (Log{"restyled while Zapfino", "restyled while Zapfino"}));

    show(u"Arial-Bold");
    order.clear();
    watch(*faces, "restyled");
    faces->selectItemWithTitle(u"Italic");
    EXPECT_EQ(std::exchange(order, {}), (Log{"restyled while Italic", "restyled while Italic"}));
    faces->selectItem(faces->itemWithTitle(u"Bold"));
    EXPECT_EQ(std::exchange(order, {}), (Log{"restyled while Italic", "restyled while Italic"}));
    EXPECT_EQ(face(u"Italic"), "Arial-Italic 13");
}

TEST_F(FontPopups, DeselectingGivesTheOldOneItsOwnFace) {
    families->selectItemWithTitle(u"Optima");
    families->selectItemWithTitle(u"No such family");
    EXPECT_EQ(shown(), "nil nil");
    EXPECT_EQ(family(u"Optima"), "Optima 13");
    families->selectItemWithTitle(u"Optima");
    families->selectItem(nullptr);
    EXPECT_EQ(shown(), "nil nil");
    EXPECT_EQ(family(u"Optima"), "Optima 13");
}

TEST_F(FontPopups, NoneOfTheFourEndsInAnotherThroughAnOverride) {
    make<WatchedFamilies, WatchedFaces>();
    const auto watchedFamilies = std::static_pointer_cast<WatchedFamilies>(families);
    const auto watchedFaces = std::static_pointer_cast<WatchedFaces>(faces);
    watchedFamilies->calls.clear();
    families->selectItemWithTitle(u"Optima");
    families->selectItemWithTag(3);
    families->selectItemAtIndex(0);
    families->selectItem(families->itemAtIndex(3));
    EXPECT_EQ(watchedFamilies->calls, (Log{"title", "tag", "index", "item"}));
    show(u"Arial-Bold");
    watchedFaces->calls.clear();
    faces->selectItemWithTitle(u"Italic");
    faces->selectItemWithTag(2);
    faces->selectItemAtIndex(1);
    faces->selectItem(faces->itemAtIndex(2));
    EXPECT_EQ(watchedFaces->calls, (Log{"title", "tag", "index", "item"}));
    watchedFaces->calls.clear();
    watchedFamilies->calls.clear();
    families->updateAttributePopupForFontFamily(u"Optima");
    choose(*families, u"Zapfino");
    choose(*faces, u"Swash");
    EXPECT_EQ(watchedFamilies->calls, Log());
    EXPECT_EQ(watchedFaces->calls, Log());
}

TEST_F(FontPopups, SelectingByProgramReportsNothing) {
    families->selectItemWithTitle(u"Optima");
    families->selectItemAtIndex(0);
    families->selectItemWithTag(3);
    families->selectItem(families->itemAtIndex(0));
    show(u"Arial-Bold");
    faces->selectItemWithTitle(u"Italic");
    faces->selectItemAtIndex(0);
    faces->selectItemWithTag(0);
    faces->selectItem(faces->itemAtIndex(0));
    families->updateAttributePopupForFontFamily(u"Optima");
    EXPECT_EQ(taken(), Log());
}

// A new list of faces

TEST_F(FontPopups, AFaceStaysChosenWhereTheNewFamilyHasIt) {
    show(u"Arial-Bold");
    families->updateAttributePopupForFontFamily(u"Optima");
    EXPECT_EQ(shown(), "Arial Bold");
    EXPECT_EQ(face(u"Bold"), "menu font 13");
    EXPECT_EQ(face(u"Regular"), "Optima 13");
}

TEST_F(FontPopups, WhereTheNewFamilyHasNotTheFaceTheFirstOneIsSelected) {
    show(u"Arial-Italic");
    families->updateAttributePopupForFontFamily(u"Optima");
    EXPECT_EQ(shown(), "Arial Regular");
    EXPECT_EQ(face(u"Regular"), "menu font 13");
    families->updateAttributePopupForFontFamily(u"Unknown");
    EXPECT_EQ(shown(), "Arial nil");
    EXPECT_EQ(faces->numberOfItems(), 0);
}

// Showing a font

TEST_F(FontPopups, AFontIsShownInBothButtonsAndNothingIsReported) {
    for (const auto& [name, both] :
         std::vector<std::pair<std::u16string, std::string>>{{u"Optima-Bold", "Optima Bold"},
                                                             {u"Zapfino-S", "Zapfino Swash"},
                                                             {u"Arial", "Arial Regular"},
                                                             {u"Arial-Italic", "Arial Italic"}}) {
        show(name);
        EXPECT_EQ(shown(), both);
        EXPECT_EQ(families->currentSelectedFullFontName(), name);
        EXPECT_EQ(drawing(faces->selectedItem()), "menu font 13");
    }
    EXPECT_EQ(taken(), Log());
}

TEST_F(FontPopups, TheFamilyIsComparedWithoutRegardToCase) {
    families->selectItemWithTitle(u"Optima");
    families->updatePopupForFont(
        std::make_shared<NSFont>(std::make_shared<FontNames>(FontNames{u"x", u"OPTIMA", u"OPTIMA"}), 12));
    EXPECT_EQ(textOf(families->titleOfSelectedItem()), "Optima");
}

TEST_F(FontPopups, TheFaceIsSelectedAgainNearlyAlways) {
    make<WatchedFamilies, WatchedFaces>();
    auto& calls = std::static_pointer_cast<WatchedFaces>(faces)->calls;
    show(u"Arial-Bold");
    calls.clear();
    show(u"Arial-Bold"); // its display name "Arial Bold" is not its full font name
    EXPECT_EQ(calls, Log{"title"});
    calls.clear();
    show(u"Arial"); // display name and full font name are the same, but another face is selected
    EXPECT_EQ(calls, Log{"title"});
    calls.clear();
    show(u"Arial"); // now the same one
    EXPECT_EQ(calls, Log());
}

TEST_F(FontPopups, AnUnknownFamilyDeselectsAndEmptiesTheFaces) {
    show(u"Arial-Bold");
    fonts->add({u"New", u"Newly Installed", u"Newly Installed"});
    show(u"New");
    EXPECT_EQ(shown(), "nil nil");
    EXPECT_EQ(families->currentSelectedFullFontName(), std::nullopt);
    EXPECT_EQ(taken(), Log());
}

TEST_F(FontPopups, AnUnknownFaceOfAKnownFamilyLeavesWhatTheBaseSelects) {
    show(u"Arial-Italic");
    fonts->add({u"Optima-New", u"Optima", u"Optima New"});
    show(u"Optima-New");
    EXPECT_EQ(shown(), "Optima Regular");
}

TEST_F(FontPopups, AMissingFontChangesNothing) {
    show(u"Optima-Bold");
    families->updatePopupForFont(nullptr);
    EXPECT_EQ(shown(), "Optima Bold");
    make<VelIFontPopupButton, VelIFontAttributePopupButton>();
    families->updatePopupForFont(nullptr);
    EXPECT_EQ(shown(), "Arial nil");
}

// Choices and what is reported

TEST_F(FontPopups, AFamilyChosenIsReportedFirstToTheBlockThenToTheDelegate) {
    show(u"Arial");
    choose(*families, u"Optima");
    EXPECT_EQ(taken(), (Log{"block Optima", "delegate Optima"}));
    EXPECT_EQ(delegate->sender, families);
    EXPECT_EQ(family(u"Arial"), "Arial 13");
    EXPECT_EQ(family(u"Optima"), "menu font 13");
}

TEST_F(FontPopups, ChoosingTheSameFamilyReportsNothing) {
    show(u"Optima-Bold");
    choose(*families, u"Optima");
    EXPECT_EQ(taken(), Log());
    EXPECT_EQ(shown(), "Optima Bold");
    EXPECT_EQ(family(u"Optima"), "menu font 13");
}

TEST_F(FontPopups, ChoosingTheSameFaceReportsAgain) {
    show(u"Optima-Bold");
    choose(*faces, u"Bold");
    choose(*faces, u"Bold");
    EXPECT_EQ(taken(), (Log{"block Optima-Bold", "delegate Optima-Bold", "block Optima-Bold", "delegate Optima-Bold"}));
}

TEST_F(FontPopups, TheFamilyButtonIsTheDelegatesArgumentForAFaceToo) {
    show(u"Optima-Bold");
    choose(*faces, u"Regular");
    EXPECT_EQ(taken(), (Log{"block Optima", "delegate Optima"}));
    EXPECT_EQ(delegate->sender, families);
}

TEST_F(FontPopups, AFamilyThatHasTheFaceKeepsItAndReportsItsFont) {
    show(u"Arial-Bold");
    choose(*families, u"Optima");
    EXPECT_EQ(taken(), (Log{"block Optima-Bold", "delegate Optima-Bold"}));
    choose(*families, u"Zapfino");
    EXPECT_EQ(taken(), (Log{"block Zapfino-S", "delegate Zapfino-S"}));
}

TEST_F(FontPopups, AFamilyWithoutFacesReportsNil) {
    show(u"Arial-Bold");
    choose(*families, u"Empty");
    EXPECT_EQ(taken(), (Log{"block nil", "delegate nil"}));
    EXPECT_EQ(shown(), "Empty nil");
}

TEST_F(FontPopups, TheFirstFamilyIsNotReportedIfNobodyOpenedTheMenu) {
    // The tag is 0 then, as that family's.
    families->onFontSelectionChanged(families);
    EXPECT_EQ(taken(), Log());
    families->selectItemAtIndex(2);
    families->onFontSelectionChanged(families);
    EXPECT_EQ(taken(), (Log{"block Optima", "delegate Optima"}));
}

TEST_F(FontPopups, CancellingReportsNothing) {
    show(u"Optima-Bold");
    choose(*families, u"");
    choose(*faces, u"");
    EXPECT_EQ(taken(), Log());
}

TEST_F(FontPopups, BlockAndDelegateMayBeMissing) {
    families->setOnFontChanged({});
    show(u"Optima");
    choose(*faces, u"Bold");
    EXPECT_EQ(taken(), Log{"delegate Optima-Bold"});
    delegate.reset(); // looked on weakly
    EXPECT_EQ(families->delegate(), nullptr);
    choose(*faces, u"Regular");
    EXPECT_EQ(taken(), Log());
}

TEST_F(FontPopups, ABlockMayTakeItselfAway) {
    families->setOnFontChanged([this](const Name&) {
        log.push_back("once");
        families->setOnFontChanged({});
    });
    show(u"Optima");
    choose(*faces, u"Bold");
    EXPECT_EQ(taken(), (Log{"once", "delegate Optima-Bold"}));
}

TEST_F(FontPopups, AFaceThatDisappearedRaisesWhereItIsStyled) {
    show(u"Arial-Bold");
    fonts->known.erase(u"Arial-Bold");
    EXPECT_THROW(faces->selectItemWithTitle(u"Italic"), NSInvalidArgumentException);
    EXPECT_EQ(shown(), "Arial Italic"); // the base selection came first
}

TEST_F(FontPopups, AFaceOfNoKnownFontKeepsItsDrawing) {
    show(u"Arial-Bold");
    families->selectItemAtIndex(-1);
    choose(*faces, u"Italic");
    EXPECT_EQ(taken(), (Log{"block nil", "delegate nil"}));
    EXPECT_EQ(face(u"Bold"), "menu font 13");
}

// Buttons that have not woken draw nothing in fonts by themselves.

class PlainFontPopups : public FontPopups {
protected:
    PlainFontPopups() {
        families = std::make_shared<VelIFontPopupButton>();
        faces = std::make_shared<VelIFontAttributePopupButton>();
        families->setFontAttributePopUpBtn(faces);
        faces->setFontPopUpBtn(families);
        families->setMenu(VelIFonts::sharedVelIFonts()->fontMenu(true));
        faces->setMenu(VelIFonts::sharedVelIFonts()->fontAttributeMenuForFontUseFont(u"Arial", true));
    }
};

TEST_F(PlainFontPopups, OpeningRecordsNoTagAndDrawsNothingAnew) {
    families->selectItemAtIndex(2);
    families->selectedItem()->setAttributedTitle(nullptr);
    faces->selectedItem()->setAttributedTitle(nullptr);
    families->onWillPopupNotification({});
    faces->onWillPopupNotification({});
    EXPECT_EQ(families->lastSelectedItemTag(), 0);
    EXPECT_EQ(drawing(families->selectedItem()), "plain");
    EXPECT_EQ(drawing(faces->selectedItem()), "plain");
}

TEST_F(PlainFontPopups, ClosingLeavesTheFacesAsTheyAre) {
    families->selectItemAtIndex(2);
    faces->selectItemAtIndex(1);
    families->dismissPopUp();
    faces->dismissPopUp();
    EXPECT_EQ(drawing(families->selectedItem()), "Optima 13");
    EXPECT_EQ(drawing(faces->selectedItem()), "Arial-Bold 13");
}

TEST_F(PlainFontPopups, SelectingDrawsTheOldItemInItsFaceAndLeavesTheNewOne) {
    families->selectedItem()->setAttributedTitle(nullptr);
    families->selectItemWithTitle(u"Optima");
    EXPECT_EQ(family(u"Optima"), "Optima 13") << "not in the menu font";
    faces->selectItemWithTitle(u"Bold");
    EXPECT_EQ(drawing(faces->selectedItem()), "Arial-Bold 13");
    families->selectItem(families->itemAtIndex(0));
    EXPECT_EQ(drawing(families->selectedItem()), "Arial 13");
    faces->setMenu(VelIFonts::sharedVelIFonts()->fontAttributeMenuForFontUseFont(u"Optima", true));
    EXPECT_EQ(faces->selectedItem()->title(), u"Bold") << "the face chosen before is kept";
    EXPECT_EQ(drawing(faces->selectedItem()), "Optima-Bold 13");
}

TEST_F(FontPopups, BlockAndDelegateGetOneNameWhateverTheBlockDoes) {
    show(u"Arial");
    families->setOnFontChanged([this](const Name& name) {
        log.push_back("block " + textOf(name));
        faces->selectItemWithTitle(u"Bold");
    });
    choose(*faces, u"Italic");
    EXPECT_EQ(taken(), (Log{"block Arial-Italic", "delegate Arial-Italic"}));
}

TEST_F(FontPopups, SelectingNoItemByIndexLeavesTheOldOneInTheMenuFont) {
    families->selectItemWithTitle(u"Optima");
    families->selectItemAtIndex(-1);
    EXPECT_EQ(families->selectedItem(), nullptr);
    EXPECT_EQ(family(u"Optima"), "menu font 13");
}

} // namespace
