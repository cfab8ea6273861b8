// SPDX-License-Identifier: MIT
#include "TitleTest.h"

#include <AppKit/NSImage.h>
#include <Foundation/NSException.h>

using namespace platform;
using namespace testing_support;

namespace {

class TitleInsertion : public TitleTest {};
class TitleFonts : public TitleTest {};
class TitleDelegate : public TitleTest {};
class TitlePasteboard : public TitleTest {};
class TitleFollowUps : public TitleTest {};
class TitleMenus : public TitleTest {};

std::shared_ptr<NSMenuItem> itemFor(const NSValue& represented) {
    auto item = std::make_shared<NSMenuItem>();
    item->setRepresentedObject(represented);
    return item;
}

// Insertion

TEST_F(TitleInsertion, GoesToTheFieldAndTheModelAndRefreshesThePreview) {
    startWith({u"abc"});
    pane->insertTokenInRange(page, {1, 1});
    EXPECT_EQ(titleNow(), (Title{u"a", page, u"c"}));
    EXPECT_EQ(taken(), (MessageLog{"a setTitleTokens", "imprinter imprintFileAtURLWithIndex Preview.jpg a 0"}));
}

TEST_F(TitleInsertion, NeitherNormalisesNorRenumbers) {
    startWith({u"%abc", F1});
    f1->setFontNumber(7);
    pane->insertTokenInRange(page, {9, 0});
    EXPECT_EQ(stored(), (Title{u"%abc", F1, page}));
    EXPECT_EQ(f1->fontNumber(), 7U);
}

TEST_F(TitleInsertion, OfAFontWhileTheFieldIsNotEditedGoesToTheFront) {
    startWith({u"abc"});
    pane->addTokenItem(itemFor(u"%changeFont%"));
    EXPECT_EQ(titleNow(), (Title{object(made), u"abc"}));
    EXPECT_EQ(taken(), (MessageLog{"a createFontToken", "a setTitleTokens",
                                   "imprinter imprintFileAtURLWithIndex Preview.jpg a 0", "a titleTokens"}));
}

TEST_F(TitleInsertion, OfAFontRebuildsTheMenuOfRunsAndSelectsItsFirst) {
    startWith({u"abc", F1});
    f1->setFontNumber(3);
    pane->setCurrentFont(f1);
    focusAt(4);
    pane->addTokenItem(itemFor(u"%changeFont%"));
    EXPECT_EQ(fontTitles(), (std::vector<std::u16string>{u"Font 4", u"Font 1"}));
    EXPECT_EQ(outlet<NSPopUpButton>(u"fontTokensPopup")->selectedTag(), 0);
    EXPECT_EQ(pane->currentFont(), f1);
    EXPECT_EQ(f1->fontNumber(), 3U);
}

TEST_F(TitleInsertion, OfAPlaceholderGoesWhereTheSelectionIs) {
    startWith({u"abcd"});
    focusAt(1, 2);
    pane->addTokenItem(itemFor(u"%pageNumber%"));
    EXPECT_EQ(titleNow(), (Title{u"a", page, u"d"}));
}

TEST_F(TitleInsertion, InMidTitleLeavesTheCaretBehindWhatWasInserted) {
    startWith({u"abcd"});
    focusAt(2);
    pane->addTokenItem(itemFor(u"%pageNumber%"));
    EXPECT_EQ(editor->textCursor().position(), 3);
    EXPECT_FALSE(editor->textCursor().hasSelection());
    QTest::keyClicks(editor, "x");
    EXPECT_EQ(titleNow(), (Title{u"ab", page, u"xcd"}));
}

TEST_F(TitleInsertion, OfAnItemWithoutRepresentedObjectIsThatOfAFont) {
    startWith({u"abc"});
    pane->addTokenItem(std::make_shared<NSMenuItem>());
    EXPECT_EQ(titleNow(), (Title{object(made), u"abc"}));
}

TEST_F(TitleInsertion, OfAFontWithoutConfigurationPutsTheLiteralTextIn) {
    startWith({u"abc"});
    pane->setCurrentConfiguration(nullptr);
    field->setObjectValue(listOf({u"abc"}));
    pane->addTokenItem(itemFor(u"%changeFont%"));
    EXPECT_EQ(shown(), (Title{u"%changeFont%", u"abc"}));
    EXPECT_THROW(pane->addTokenItem(std::make_shared<NSMenuItem>()), NSInvalidArgumentException);
}

// Font runs

TEST_F(TitleFonts, AreThoseOfTheFieldAndThoseOfTheMenuAreTheModels) {
    startWith({F1, u"a", F2});
    field->setObjectValue(listOf({F3}));
    EXPECT_EQ(pane->getFontTokenArray(), (std::vector<std::shared_ptr<host::ImprinterFont>>{f3}));
    const auto menu = pane->createFontTokensMenu();
    ASSERT_EQ(menu->numberOfItems(), 2);
    EXPECT_EQ(menu->itemAtIndex(1)->representedObject(), NSValue(std::shared_ptr<NSObject>(f2)));
}

TEST_F(TitleFonts, AreNumberedFromNoughtAndTheAnswerIsTheCountPlusOne) {
    load();
    f1->setFontNumber(9);
    EXPECT_EQ(pane->renumberFonts({f3, f1, f2}), 4U);
    EXPECT_EQ(f3->fontNumber(), 0U);
    EXPECT_EQ(f1->fontNumber(), 1U);
    EXPECT_EQ(f2->fontNumber(), 2U);
    EXPECT_EQ(pane->renumberFonts({}), 1U);
}

TEST_F(TitleFonts, InTheMenuAreTaggedAndTheCurrentOneIsMarked) {
    startWith({u"x", F1, page, F2});
    f1->setFontNumber(0);
    f2->setFontNumber(1);
    pane->setCurrentFont(f2);
    const auto menu = pane->createFontTokensMenu();
    EXPECT_EQ(menu->title(), u"");
    ASSERT_EQ(menu->numberOfItems(), 2);
    const auto first = menu->itemAtIndex(0);
    const auto second = menu->itemAtIndex(1);
    EXPECT_EQ(first->title(), u"Font 1");
    EXPECT_EQ(second->title(), u"Font 2");
    EXPECT_EQ(first->tag(), 0);
    EXPECT_EQ(second->tag(), 1);
    EXPECT_EQ(first->state(), 0);
    EXPECT_EQ(second->state(), 1);
    EXPECT_EQ(second->action(), u"onSelectFont:");
    EXPECT_EQ(second->target(), pane);
    EXPECT_EQ(second->keyEquivalent(), u"");
}

TEST_F(TitleFonts, FillTheirMenuAfreshWhenItOpensAndNothingIsSelectedByThat) {
    startWith({F1});
    pane->setCurrentFont(f1);
    edited->values.titleTokens = modelTitle({F2, F1});
    f1->setFontNumber(1);
    const auto popup = outlet<NSPopUpButton>(u"fontTokensPopup");
    popup->userChose((popup->userOpens(), nullptr));
    EXPECT_EQ(fontTitles(), (std::vector<std::u16string>{u"Font 1", u"Font 2"}));
    EXPECT_EQ(pane->currentFont(), f1);
}

TEST_F(TitleFonts, ThatWereDeletedAreRepairedInNumberMenuAndCurrentFont) {
    startWith({F2, u"a", F3});
    f2->setFontNumber(1);
    f3->setFontNumber(2);
    pane->setCurrentFont(f1);
    pane->fontTokensWereDeletedCurrentFonts({f1, f2, f3}, {f2, f3});
    EXPECT_EQ(f2->fontNumber(), 0U);
    EXPECT_EQ(f3->fontNumber(), 1U);
    EXPECT_EQ(fontTitles(), (std::vector<std::u16string>{u"Font 1", u"Font 2"}));
    EXPECT_EQ(pane->currentFont(), f2);
    EXPECT_EQ(outlet<NSPopUpButton>(u"fontTokensPopup")->selectedTag(), 0);
    EXPECT_EQ(taken().back(), "imprinter imprintFileAtURLWithIndex Preview.jpg a 0");
}

TEST_F(TitleFonts, ThatWereDeletedLeaveACurrentFontThatIsStillThere) {
    startWith({F2, u"a", F3});
    pane->setCurrentFont(f3);
    pane->fontTokensWereDeletedCurrentFonts({f1, f2, f3}, {f2, f3});
    EXPECT_EQ(pane->currentFont(), f3);
}

TEST_F(TitleFonts, ThatWereDeletedToTheLastLeaveTheCurrentFont) {
    startWith({u"a"});
    pane->setCurrentFont(f1);
    pane->fontTokensWereDeletedCurrentFonts({f1}, {});
    EXPECT_EQ(pane->currentFont(), f1);
    EXPECT_EQ(fontTitles(), std::vector<std::u16string>());
}

TEST_F(TitleFonts, SelectedShowTheFirstOnesSize) {
    startWith({F1, F2});
    f2->setFontSize(31);
    pane->updateFontSelections({f2, f1});
    EXPECT_EQ(pane->currentFont(), f2);
    EXPECT_EQ(outlet<NSControl>(u"fontSizeField")->floatValue(), 31);
    EXPECT_EQ(outlet<NSControl>(u"fontSizeStepper")->floatValue(), 31);
    pane->updateFontSelections({});
    EXPECT_EQ(pane->currentFont(), f2);
}

TEST_F(TitleFonts, TakeTheNameThePopUpReports) {
    startWith({F1});
    pane->setCurrentFont(f1);
    taken();
    pane->selectedFontUpdatedFullFontName(nullptr, u"Serif-Bold");
    EXPECT_EQ(f1->fullFontName(), u"Serif-Bold");
    EXPECT_EQ(taken(), MessageLog{"imprinter imprintFileAtURLWithIndex Preview.jpg a 0"});
}

// Delegate

TEST_F(TitleDelegate, IsThePaneForTheFieldAndItsMenu) {
    load();
    const auto own = outlet<HostTokenField>(u"titleTokenField");
    EXPECT_EQ(own->delegate(), std::static_pointer_cast<NSControlTextEditingDelegate>(pane));
    EXPECT_EQ(own->menuDelegate(), std::static_pointer_cast<host::PlaceholderMenuDelegate>(pane));
    EXPECT_EQ(own->tokenizingCharacterSet(), u"%");
    EXPECT_EQ(own->registeredDraggedTypes(), std::vector<std::u16string>{NSPasteboardTypeString});
}

TEST_F(TitleDelegate, StylesFontRunsAndLeavesEverythingElseToTheField) {
    startWith({});
    EXPECT_EQ(pane->tokenFieldStyleForRepresentedObject(field, F1), NSTokenStyle::rounded);
    EXPECT_EQ(pane->tokenFieldStyleForRepresentedObject(field, page), NSTokenStyle::squared);
    EXPECT_EQ(pane->tokenFieldStyleForRepresentedObject(field, u"text"), NSTokenStyle::none);
}

TEST_F(TitleDelegate, ShowsFontRunsByNameAndLeavesEverythingElseToTheField) {
    startWith({});
    f1->setFontNumber(4);
    EXPECT_EQ(pane->tokenFieldDisplayStringForRepresentedObject(field, F1), u"Font 5");
    EXPECT_EQ(pane->tokenFieldDisplayStringForRepresentedObject(field, page), u"Page");
    EXPECT_EQ(pane->tokenFieldDisplayStringForRepresentedObject(field, u"text"), std::nullopt);
}

TEST_F(TitleDelegate, TakesThePercentSignOffTheStartOfARun) {
    startWith({});
    EXPECT_EQ(pane->tokenFieldRepresentedObjectForEditingString(field, u"%abc"), RepresentedObject(u"abc"));
    EXPECT_EQ(pane->tokenFieldRepresentedObjectForEditingString(field, u"%pageNumber%"), page);
}

TEST_F(TitleDelegate, HandsTheTitleFromBeforeAnAdditionToTheModel) {
    startWith({u"abc"});
    edited->values.titleTokens = nullptr;
    const auto added = pane->tokenFieldShouldAddObjectsAtIndex(field, listOf({u"%x", F1}), 0);
    EXPECT_EQ(stored(), Title{u"abc"});
    EXPECT_EQ(*added, (Title{u"x", F1}));
}

TEST_F(TitleDelegate, AddsWhatComesFromItselfUnchanged) {
    startWith({u"abc"});
    pane->setIsDraggingFromSelf(true);
    const auto objects = listOf({u"%x", F1});
    EXPECT_EQ(pane->tokenFieldShouldAddObjectsAtIndex(field, objects, 0), objects);
}

TEST_F(TitleDelegate, LetsAnEditBeginAndOpensItsEditorForText) {
    startWith({u"abc"});
    focusAt(3);
    QTest::keyClicks(editor, "d");
    EXPECT_EQ(field->currentEditor()->registeredDraggedTypes(),
              (std::vector<std::u16string>{NSPasteboardTypeString, NSStringPboardType}));
    EXPECT_TRUE(pane->controlTextShouldBeginEditing(outlet<NSTextField>(u"customOccurance")));
    EXPECT_TRUE(pane->controlTextShouldBeginEditing(nullptr));
}

TEST_F(TitleDelegate, EndsAnEditByShowingTheStoredTitle) {
    startWith({u"abc"});
    edited->values.titleTokens = modelTitle({u"stored", F1});
    EXPECT_TRUE(pane->controlTextShouldEndEditing(field));
    EXPECT_EQ(shown(), (Title{u"stored", F1}));
}

TEST_F(TitleDelegate, ShowsTheStoredTitleWhicheverEditEnds) {
    startWith({u"abc"});
    for (const auto& other :
         {std::static_pointer_cast<NSControl>(outlet<NSTextField>(u"customOccurance")), std::shared_ptr<NSControl>()}) {
        field->setObjectValue(listOf({u"shown"}));
        EXPECT_TRUE(pane->controlTextShouldEndEditing(other));
        EXPECT_EQ(shown(), Title{u"abc"});
    }
}

TEST_F(TitleDelegate, LeavesEverythingWhenTheSelectionChanges) {
    startWith({F1, u"abc", F2});
    pane->setCurrentFont(f2);
    taken();
    pane->textViewDidChangeSelection({u"", field});
    EXPECT_EQ(shown(), (Title{F1, u"abc", F2}));
    EXPECT_EQ(pane->currentFont(), f2);
    EXPECT_EQ(taken(), MessageLog());
}

TEST_F(TitleDelegate, ReadsAChangeAndNormalisesIt) {
    startWith({u"%abc", page});
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidChangeNotification, field);
    EXPECT_EQ(titleNow(), (Title{u"abc", page}));
    EXPECT_EQ(taken(), (MessageLog{"a setTitleTokens", "imprinter imprintFileAtURLWithIndex Preview.jpg a 0"}));
}

TEST_F(TitleDelegate, KeepsTheVeryListWhereThereIsNothingToNormalise) {
    startWith({u"abc", page});
    const auto before = field->objectValue();
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidChangeNotification, field);
    EXPECT_EQ(field->objectValue(), before);
}

TEST_F(TitleDelegate, LeavesAChangeOfThePageListToThePageList) {
    startWith({u"%abc"});
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidChangeNotification,
                                                                     outlet<NSTextField>(u"customOccurance"));
    EXPECT_EQ(taken(), MessageLog{"a setCustomOccurance "});
}

// Pasteboard

TEST_F(TitlePasteboard, GetsOneItemForEachTokenAndAKeyForAFontRun) {
    startWith({});
    const auto written = std::make_shared<NSPasteboard>();
    EXPECT_TRUE(pane->tokenFieldWriteRepresentedObjectsToPasteboard(field, listOf({u"a", F1, page, F1, u""}), written));
    const auto items = written->readObjects();
    ASSERT_EQ(count(items), 5U);
    EXPECT_EQ((*items)[0], u"a");
    EXPECT_EQ((*items)[2], u"%pageNumber%");
    EXPECT_EQ((*items)[4], u"");
    EXPECT_NE((*items)[1], (*items)[3]);
    ASSERT_EQ(pane->fontLookup().size(), 2U);
    EXPECT_EQ(pane->fontLookup().at((*items)[1]), f1);
    EXPECT_EQ(pane->fontLookup().at((*items)[3]), f1);
    EXPECT_EQ((*items)[1].find(u'%'), std::u16string::npos);
}

TEST_F(TitlePasteboard, GetsNothingForAnObjectThatIsNoFontRun) {
    startWith({});
    const auto written = std::make_shared<NSPasteboard>();
    EXPECT_TRUE(pane->tokenFieldWriteRepresentedObjectsToPasteboard(
        field, listOf({object(std::make_shared<ForeignObject>())}), written));
    EXPECT_EQ(written->readObjects(), nullptr);
    EXPECT_TRUE(pane->isDraggingFromSelf());
}

TEST_F(TitlePasteboard, IsNotClearedByAWrite) {
    startWith({});
    const auto written = pasteboard({u"before"});
    pane->tokenFieldWriteRepresentedObjectsToPasteboard(field, listOf({u"a"}), written);
    EXPECT_EQ(*written->readObjects(), (std::vector<std::u16string>{u"before", u"a"}));
}

TEST_F(TitlePasteboard, HasNewKeysAtEachWriteAndKeepsThemThroughReads) {
    startWith({});
    const auto first = std::make_shared<NSPasteboard>();
    pane->tokenFieldWriteRepresentedObjectsToPasteboard(field, listOf({F1}), first);
    EXPECT_EQ(*pane->tokenFieldReadFromPasteboard(field, first), Title{F1});
    EXPECT_EQ(*pane->tokenFieldReadFromPasteboard(field, first), Title{F1});
    const auto second = std::make_shared<NSPasteboard>();
    pane->tokenFieldWriteRepresentedObjectsToPasteboard(field, listOf({F2}), second);
    EXPECT_EQ(pane->fontLookup().size(), 1U);
    EXPECT_EQ(*pane->tokenFieldReadFromPasteboard(field, first), Title{first->readObjects()->front()});
    EXPECT_EQ(*pane->tokenFieldReadFromPasteboard(field, second), Title{F2});
}

TEST_F(TitlePasteboard, IsReadAsNormalisedTextsAndTheVeryFontRuns) {
    startWith({});
    const auto written = std::make_shared<NSPasteboard>();
    pane->tokenFieldWriteRepresentedObjectsToPasteboard(field, listOf({u"%ab", F1, page}), written);
    EXPECT_EQ(*pane->tokenFieldReadFromPasteboard(field, written), (Title{u"ab", F1, page}));
    EXPECT_EQ(*pane->tokenFieldReadFromPasteboard(field, std::make_shared<NSPasteboard>()), Title());
}

// What follows a paste

TEST_F(TitleFollowUps, OfForeignTextTakesEveryPercentSignOutOfTheText) {
    startWith({u"5% of %", page, u"100%", F1});
    pane->sanitizeTextAfterPaste();
    EXPECT_EQ(shown(), (Title{u"5 of ", page, u"100", F1}));
}

TEST_F(TitleFollowUps, OfForeignTextLeavesATitleWithoutPercentSignAlone) {
    startWith({u"a", u"b", page});
    const auto before = field->objectValue();
    pane->sanitizeTextAfterPaste();
    EXPECT_EQ(field->objectValue(), before);
}

TEST_F(TitleFollowUps, ComeAHundredthOfASecondAfterTheRead) {
    startWith({u"a%b"});
    pane->tokenFieldReadFromPasteboard(field, pasteboard({u"x"}));
    queue->advance(0.009);
    EXPECT_EQ(shown(), Title{u"a%b"});
    queue->advance(0.002);
    EXPECT_EQ(shown(), Title{u"ab"});
}

TEST_F(TitleFollowUps, OfAReadWhileTheFieldWroteLastIsTheReorder) {
    startWith({u"a%b", F1, F1});
    pane->tokenFieldWriteRepresentedObjectsToPasteboard(field, listOf({F1}), std::make_shared<NSPasteboard>());
    pane->tokenFieldReadFromPasteboard(field, pasteboard({u"x"}));
    queue->advance(0.02);
    EXPECT_EQ(titleNow(), (Title{u"a%b", F1}));
    EXPECT_FALSE(pane->isDraggingFromSelf());
    EXPECT_EQ(pane->draggedTokenObjects(), nullptr);
}

TEST_F(TitleFollowUps, TheReorderNormalisesStoresRenumbersAndRefreshes) {
    startWith({F1, u"%a", F2, F1});
    f1->setFontNumber(0);
    f2->setFontNumber(1);
    pane->setIsDraggingFromSelf(true);
    pane->setDraggedTokenObjects(listOf({F1}));
    pane->finalizeDragReorder();
    EXPECT_EQ(titleNow(), (Title{u"a", F2, F1}));
    EXPECT_EQ(f2->fontNumber(), 0U);
    EXPECT_EQ(f1->fontNumber(), 1U);
    EXPECT_EQ(fontTitles(), (std::vector<std::u16string>{u"Font 1", u"Font 2"}));
    EXPECT_EQ(taken().back(), "imprinter imprintFileAtURLWithIndex Preview.jpg a 0");
}

TEST_F(TitleFollowUps, TheReorderDoesNothingWhereNothingWasDragged) {
    startWith({F1, F1});
    pane->setDraggedTokenObjects(listOf({F1}));
    pane->finalizeDragReorder();
    EXPECT_EQ(shown(), (Title{F1, F1}));
    EXPECT_EQ(pane->draggedTokenObjects(), nullptr);
    pane->setIsDraggingFromSelf(true);
    pane->finalizeDragReorder();
    EXPECT_FALSE(pane->isDraggingFromSelf());
    EXPECT_EQ(taken(), MessageLog());
}

// Menus

TEST_F(TitleMenus, ForInsertingBeginWithFontAndHavePageNumberBeforeTheCount) {
    load();
    const auto menu = outlet<HostTokenField>(u"titleTokenField")->insertMenu();
    ASSERT_EQ(menu->numberOfItems(), 4);
    EXPECT_EQ(menu->itemAtIndex(0)->representedObject(), NSValue(u"%changeFont%"));
    EXPECT_TRUE(menu->itemAtIndex(1)->isSeparatorItem());
    EXPECT_EQ(menu->itemAtIndex(2)->representedObject(), NSValue(u"%pageNumber%"));
    EXPECT_EQ(menu->itemAtIndex(3)->representedObject(), NSValue(u"%recordPageCount%"));
    for (const auto index : {0, 2, 3}) {
        EXPECT_EQ(menu->itemAtIndex(index)->target(), pane);
        EXPECT_EQ(menu->itemAtIndex(index)->action(), u"addTokenItem:");
        EXPECT_EQ(menu->itemAtIndex(index)->keyEquivalent(), u"");
    }
}

TEST_F(TitleMenus, ShowThePanesOwnItemsAsPicturesWithoutTitle) {
    load();
    const auto menu = outlet<HostTokenField>(u"titleTokenField")->insertMenu();
    for (const auto index : {0, 2}) {
        const auto item = menu->itemAtIndex(index);
        EXPECT_EQ(item->title(), u"");
        ASSERT_TRUE(item->image());
        EXPECT_GT(item->image()->size().width, 10);
        EXPECT_GT(item->image()->size().height, 8);
    }
    EXPECT_GT(menu->itemAtIndex(2)->image()->size().width, menu->itemAtIndex(0)->image()->size().width);
}

TEST_F(TitleMenus, ReachIntoSubmenusAtEveryDepth) {
    load();
    const auto menu = std::make_shared<NSMenu>();
    const auto inner = std::make_shared<NSMenu>();
    const auto innermost = std::make_shared<NSMenu>();
    const auto leaf = innermost->addItemWithTitleActionKeyEquivalent(u"leaf", u"", u"");
    const auto middle = inner->addItemWithTitleActionKeyEquivalent(u"middle", u"former:", u"");
    middle->setSubmenu(innermost);
    menu->addItemWithTitleActionKeyEquivalent(u"outer", u"", u"")->setSubmenu(inner);
    const auto plain = menu->addItemWithTitleActionKeyEquivalent(u"plain", u"", u"");
    pane->updateSubmenuWithTargetAction(menu, f1, u"act:");
    EXPECT_EQ(leaf->target(), f1);
    EXPECT_EQ(leaf->action(), u"act:");
    EXPECT_EQ(plain->action(), u"act:");
    EXPECT_EQ(middle->action(), u"former:");
    EXPECT_EQ(middle->target(), nullptr);
}

TEST_F(TitleMenus, WithoutTheCountFailAsInsertingAtNoPlaceDoes) {
    load();
    const auto menu = std::make_shared<NSMenu>();
    EXPECT_THROW(pane->tokenFieldWillPopUpMenuWithPlaceholderMenu(nullptr, menu, menu), NSRangeException);
}

} // namespace
