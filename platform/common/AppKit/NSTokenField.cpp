// SPDX-License-Identifier: MIT
#include <AppKit/NSTokenField.h>

#include <AppKit/NSCell.h>
#include <Foundation/NSException.h>
#include <Foundation/NSRunLoop.h>

#include "Peers.h"

#include <algorithm>

namespace platform {

namespace {

using Objects = std::vector<RepresentedObject>;

NSArray<RepresentedObject> listOf(Objects objects) {
    return std::make_shared<const Objects>(std::move(objects));
}

/// `text` with one kind of line break, and without what would be one to the editor alone.
std::u16string withPlainLineBreaks(const std::u16string& text) {
    std::u16string plain;
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool pair = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        const bool isBreak = text[i] == u'\r' || text[i] == u'\u0085' || text[i] == u'\u2029' || text[i] == u'\uFDD0' ||
                             text[i] == u'\uFDD1';
        if (!pair)
            plain += isBreak ? u'\n' : text[i];
    }
    return plain;
}

/// What no keyboard brings and no stamp shows: control characters but tabulator and line break, and the sign that
/// stands for a token in the editor.
bool isNoText(char16_t unit) {
    return unit == u'\uFFFC' || (unit < u' ' && unit != u'\n' && unit != u'\t') ||
           (unit >= u'\u007F' && unit <= u'\u009F');
}

std::u16string plainTextOf(const TokenText& content) {
    std::u16string text;
    for (const auto& piece : content.pieces())
        if (const auto* own = std::get_if<std::u16string>(&piece.object))
            text += *own;
    return text;
}

} // namespace

NSTokenFieldDelegate::~NSTokenFieldDelegate() = default;

NSTokenStyle NSTokenFieldDelegate::tokenFieldStyleForRepresentedObject(const Field& field,
                                                                       const RepresentedObject& object) {
    return field->tokenFieldStyleForRepresentedObject(field, object);
}

std::optional<std::u16string>
NSTokenFieldDelegate::tokenFieldDisplayStringForRepresentedObject(const Field& field, const RepresentedObject& object) {
    return field->tokenFieldDisplayStringForRepresentedObject(field, object);
}

std::optional<RepresentedObject>
NSTokenFieldDelegate::tokenFieldRepresentedObjectForEditingString(const Field&, const std::u16string&) {
    return std::nullopt;
}

NSTokenFieldDelegate::Objects
NSTokenFieldDelegate::tokenFieldShouldAddObjectsAtIndex(const Field&, const Objects& objects, NSUInteger) {
    return objects;
}

bool NSTokenFieldDelegate::tokenFieldWriteRepresentedObjectsToPasteboard(const Field&, const Objects&,
                                                                         const std::shared_ptr<NSPasteboard>&) {
    return false;
}

NSTokenFieldDelegate::Objects NSTokenFieldDelegate::tokenFieldReadFromPasteboard(const Field&,
                                                                                 const std::shared_ptr<NSPasteboard>&) {
    return nullptr;
}

NSTextView::~NSTextView() = default;

NSRange NSTextView::selectedRange() const {
    const auto field = m_field.lock();
    return field ? field->selection() : NSRange();
}

void NSTextView::setSelectedRange(NSRange range) {
    const auto field = m_field.lock();
    if (auto* peer = field ? field->tokenPeer() : nullptr)
        peer->setSelectedRange(range);
}

NSTokenField::NSTokenField() = default;
NSTokenField::~NSTokenField() = default;

std::u16string_view NSTokenField::className() const {
    return u"NSTokenField";
}

std::shared_ptr<NSTokenField> NSTokenField::self() {
    return std::static_pointer_cast<NSTokenField>(shared_from_this());
}

std::shared_ptr<NSTokenFieldDelegate> NSTokenField::tokenDelegate() const {
    return std::dynamic_pointer_cast<NSTokenFieldDelegate>(delegate());
}

TokenPeer* NSTokenField::tokenPeer() const {
    return dynamic_cast<TokenPeer*>(peer());
}

NSTokenStyle NSTokenField::tokenFieldStyleForRepresentedObject(const std::shared_ptr<NSTokenField>&,
                                                               const RepresentedObject&) {
    return NSTokenStyle::defaultStyle;
}

std::optional<std::u16string>
NSTokenField::tokenFieldDisplayStringForRepresentedObject(const std::shared_ptr<NSTokenField>&,
                                                          const RepresentedObject&) {
    return std::nullopt;
}

std::shared_ptr<NSMenu> NSTokenField::insertMenu() {
    return nullptr;
}

std::shared_ptr<NSMenu> NSTokenField::contextMenu() {
    return menu();
}

NSTokenStyle NSTokenField::styleOf(const RepresentedObject& object) {
    const auto asked = tokenDelegate();
    return asked ? asked->tokenFieldStyleForRepresentedObject(self(), object)
                 : tokenFieldStyleForRepresentedObject(self(), object);
}

std::u16string NSTokenField::displayStringOf(const RepresentedObject& object) {
    const auto asked = tokenDelegate();
    const auto shown = asked ? asked->tokenFieldDisplayStringForRepresentedObject(self(), object)
                             : tokenFieldDisplayStringForRepresentedObject(self(), object);
    const auto* text = std::get_if<std::u16string>(&object);
    return shown ? *shown : text ? *text : std::u16string();
}

TokenText NSTokenField::contentOf(const NSArray<RepresentedObject>& objects) {
    TokenText content;
    for (std::size_t i = 0; i < count(objects); ++i) {
        const auto& object = (*objects)[i];
        if (styleOf(object) == NSTokenStyle::none)
            content.appendText(withPlainLineBreaks(displayStringOf(object)));
        else
            content.appendToken(object);
    }
    return content;
}

NSTokenField::Objects NSTokenField::objectsOf(const TokenText& content) {
    const auto asked = tokenDelegate();
    Objects objects;
    objects.reserve(content.pieces().size());
    for (const auto& piece : content.pieces()) {
        std::optional<RepresentedObject> made;
        if (!piece.isToken && asked)
            made = asked->tokenFieldRepresentedObjectForEditingString(self(), std::get<std::u16string>(piece.object));
        objects.push_back(made ? *std::move(made) : piece.object);
    }
    return objects;
}

const NSArray<RepresentedObject>& NSTokenField::objectValue() {
    if (!m_telling)
        validateEditing();
    return m_objects;
}

void NSTokenField::setObjectValue(const NSArray<RepresentedObject>& objects) {
    m_untaken = false;
    m_untold = false;
    m_objects = objects;
    show(contentOf(objects));
}

void NSTokenField::setAttributedStringValue(const TokenText& text) {
    const bool changed = text != m_content;
    show(text);
    const bool edited = currentEditor() || isBeingEdited();
    m_untaken = edited;
    if (edited) {
        m_untold = m_untold || changed;
    } else {
        Objects objects;
        for (const auto& piece : text.pieces())
            objects.push_back(piece.object);
        m_objects = listOf(std::move(objects));
    }
    // What is put in on the user's behalf is told of once whoever put it in is done with it, as part of the same act.
    if (const auto act = UserAct::current(); changed && act != 0)
        dispatchAsync([weak = std::weak_ptr(self()), act, edited] {
            const auto field = weak.lock();
            if (!field || (edited && !field->m_untold)) // which the next change has told of meanwhile
                return;
            const UserAct resumed(act);
            field->tellChange();
        });
}

std::shared_ptr<NSTextView> NSTokenField::currentEditor() {
    if (auto* shown = tokenPeer(); !shown || !shown->isFirstResponder())
        return nullptr;
    if (!m_editor)
        m_editor = std::make_shared<NSTextView>(self());
    return m_editor;
}

NSRange NSTokenField::selection() const {
    auto* shown = tokenPeer();
    return shown ? shown->selectedRange() : NSRange{m_content.length(), 0};
}

void NSTokenField::validateEditing() {
    if (!std::exchange(m_untaken, false))
        return;
    m_objects = listOf(objectsOf(m_content));
}

void NSTokenField::show(const TokenText& content) {
    auto* shown = tokenPeer();
    const auto act = UserAct::current();
    const bool changed = content != m_content;
    if (shown && act == 0)
        shown->forgetUndo();
    if (changed && shown) {
        const auto undoing = act == 0 ? Undoing::forgotten : act == m_lastAct ? Undoing::sameStep : Undoing::newStep;
        const auto selected = shown->selectedRange();
        const auto fromTheEnd = m_content.length() - std::min(selected.location + selected.length, m_content.length());
        const auto change = TokenText::change(m_content, content);
        shown->replaceCharacters(change.range, content.substring({change.range.location, change.length}), undoing);
        const bool inserted = act != 0 && selected.length > 0 && change.range.length == 0;
        const bool another = act == 0 && !shown->isFirstResponder(); // which nobody has put a caret into
        const auto caret = inserted  ? change.range.location + change.length
                           : another ? content.length()
                                     : content.length() - std::min(fromTheEnd, content.length());
        shown->setSelectedRange({caret, 0});
    }
    if (changed) {
        m_lastAct = act;
        m_content = content;
    }
    refreshTokenTitles();
}

void NSTokenField::change(const TokenText& content, NSUInteger caret) {
    m_untold = m_untold || content != m_content;
    m_untaken = true;
    show(content);
    if (auto* shown = tokenPeer())
        shown->setSelectedRange({caret, 0});
}

void NSTokenField::tellChange() {
    struct Telling {
        bool& flag;
        ~Telling() { flag = false; }
    } telling{m_telling};
    m_untaken = true;
    m_untold = false;
    m_telling = delegate() != nullptr;
    NSNotificationCenter::defaultCenter().postNotificationNameObject(NSControlTextDidChangeNotification, self());
    validateEditing();
    refreshTokenTitles(); // the change of one token may have given others another name
}

void NSTokenField::refreshTokenTitles() {
    if (auto* shown = tokenPeer())
        shown->retitle();
}

void NSTokenField::delegateHasHeard() {
    if (std::exchange(m_telling, false))
        validateEditing();
}

bool NSTokenField::isTooLong(NSUInteger length) const {
    return maximumLength() != 0 && length > maximumLength();
}

bool NSTokenField::takesChange(const TokenText& text) {
    const auto before = std::exchange(m_content, text);
    m_lastAct = UserAct::current();
    const bool tooLong = isTooLong(text.length()) && text.length() > before.length();
    if (!tooLong && userBeginsEditing()) {
        showRefusal(Refusal::none);
        return true;
    }
    show(before);
    showRefusal(tooLong ? Refusal::tooLong : Refusal::none);
    return false;
}

void NSTokenField::userTyped(const TokenText& text) {
    const UserAct act;
    const auto before = m_content;
    if (!takesChange(text))
        return;
    const auto change = TokenText::change(before, text);
    TokenText kept;
    std::vector<NSUInteger> ends;
    const auto typed = text.substring({change.range.location, change.length});
    for (const auto& piece : typed.pieces()) {
        if (piece.isToken) {
            kept.appendToken(piece.object);
            continue;
        }
        for (const auto unit : std::get<std::u16string>(piece.object))
            if (m_tokenizingCharacterSet.find(unit) == std::u16string::npos)
                kept.appendText({&unit, 1});
            else
                ends.push_back(change.range.location + kept.length());
    }
    if (!ends.empty()) {
        auto content = text;
        content.replaceCharacters({change.range.location, change.length}, kept);
        show(content);
    }
    if (m_content != before)
        tellChange();
    for (std::size_t i = 0; i < ends.size(); ++i) {
        const auto length = m_content.length();
        endRunBefore(ends[i]);
        for (auto later = i + 1; later < ends.size(); ++later)
            ends[later] += m_content.length() - length;
    }
}

void NSTokenField::userUndid(const TokenText& text) {
    const UserAct act;
    if (text == m_content || !takesChange(text))
        return;
    m_lastAct = 0; // nothing is added to a step that was taken back
    tellChange();
}

void NSTokenField::endRunBefore(NSUInteger position) {
    NSUInteger start = 0;
    NSUInteger index = 0;
    for (const auto& piece : m_content.pieces()) {
        if (start + piece.length() >= position)
            break;
        start += piece.length();
        ++index;
    }
    if (start >= position || index >= m_content.pieces().size() || m_content.pieces()[index].isToken)
        return;
    const auto content = m_content;
    const auto run = content.substring({start, position - start});
    const auto added = shouldAdd(listOf(objectsOf(run)), index);
    const auto replacement = contentOf(added);
    if (m_content != content || replacement == run)
        return;
    auto changed = content;
    changed.replaceCharacters({start, position - start}, replacement);
    change(changed, start + replacement.length());
    tellChange();
}

NSArray<RepresentedObject> NSTokenField::shouldAdd(const NSArray<RepresentedObject>& objects, NSUInteger index) {
    const auto asked = tokenDelegate();
    auto added = asked ? asked->tokenFieldShouldAddObjectsAtIndex(self(), objects, index) : objects;
    if (!added)
        throw NSInvalidArgumentException("the objects to add to a token field are nil");
    return added;
}

bool NSTokenField::userSelectsTokenToDelete(bool forward) {
    auto* shown = tokenPeer();
    const auto selected = selection();
    if (!shown || selected.length != 0 || (!forward && selected.location == 0))
        return false;
    const NSRange beside{forward ? selected.location : selected.location - 1, 1};
    const auto piece = m_content.substring(beside);
    if (piece.pieces().empty() || !piece.pieces().front().isToken)
        return false;
    shown->setSelectedRange(beside);
    return true;
}

std::shared_ptr<NSPasteboard> NSTokenField::write(const TokenText& selected, std::u16string& plainText) {
    auto pasteboard = std::make_shared<NSPasteboard>();
    pasteboard->clearContents();
    Objects objects;
    for (const auto& piece : selected.pieces())
        objects.push_back(piece.object);
    plainText = plainTextOf(selected);
    const auto asked = tokenDelegate();
    if (!asked ||
        !asked->tokenFieldWriteRepresentedObjectsToPasteboard(self(), listOf(std::move(objects)), pasteboard)) {
        pasteboard->clearContents();
        pasteboard->writeObjects({plainText});
    }
    m_keys.clear();
    if (const auto items = pasteboard->readObjects(); items && items->size() == selected.pieces().size())
        for (std::size_t i = 0; i < items->size(); ++i)
            if (!std::holds_alternative<std::u16string>(selected.pieces()[i].object))
                m_keys.insert((*items)[i]);
    return pasteboard;
}

NSArray<RepresentedObject> NSTokenField::read(const std::shared_ptr<NSPasteboard>& pasteboard) {
    const auto asked = tokenDelegate();
    auto objects = asked ? asked->tokenFieldReadFromPasteboard(self(), pasteboard) : nullptr;
    if (objects)
        return objects;
    Objects texts;
    if (const auto items = pasteboard->readObjects())
        for (const auto& item : *items)
            texts.emplace_back(item);
    return listOf(std::move(texts));
}

std::shared_ptr<NSPasteboard> NSTokenField::selectedTexts(std::u16string& plainText) const {
    const auto selected = m_content.substring(selection());
    plainText = plainTextOf(selected);
    std::vector<std::u16string> items;
    for (const auto& piece : selected.pieces())
        if (const auto* text = std::get_if<std::u16string>(&piece.object))
            items.push_back(*text);
    auto pasteboard = std::make_shared<NSPasteboard>();
    pasteboard->clearContents();
    pasteboard->writeObjects(items);
    return pasteboard;
}

void NSTokenField::userCopies() {
    const UserAct act;
    const auto selected = m_content.substring(selection());
    auto* shown = tokenPeer();
    if (!shown || selected.length() == 0)
        return;
    std::u16string plainText;
    const auto pasteboard = write(selected, plainText);
    shown->setClipboard(*pasteboard, plainText);
}

void NSTokenField::userCuts() {
    const UserAct act;
    const auto selected = selection();
    if (selected.length == 0 || !userBeginsEditing())
        return;
    userCopies();
    auto content = m_content;
    content.replaceCharacters(selected, {});
    change(content, selected.location);
    tellChange();
}

void NSTokenField::userPastes(const std::shared_ptr<NSPasteboard>& pasteboard) {
    takeFrom(pasteboard, selection(), std::nullopt);
}

std::shared_ptr<NSPasteboard> NSTokenField::userDrags(std::u16string& plainText) {
    const UserAct act;
    const auto selected = selection();
    if (selected.length == 0)
        return nullptr;
    m_dragged = selected;
    return write(m_content.substring(selected), plainText);
}

bool NSTokenField::userDrops(const std::shared_ptr<NSPasteboard>& pasteboard, NSUInteger position) {
    const auto moved = std::exchange(m_dragged, std::nullopt);
    const bool staysWhereItIs = moved && position >= moved->location && position <= moved->location + moved->length;
    return !staysWhereItIs && takeFrom(pasteboard, {position, 0}, moved);
}

bool NSTokenField::takeFrom(const std::shared_ptr<NSPasteboard>& pasteboard, NSRange replaced,
                            const std::optional<NSRange>& moved) {
    const UserAct act;
    NSUInteger units = 0;
    NSUInteger length = m_content.length() - (moved ? moved->length : replaced.length);
    if (const auto items = tell(pasteboard, &NSPasteboard::readObjects))
        for (const auto& item : *items) {
            units += item.size();
            length += m_keys.contains(item) ? 1 : contentOf(listOf({item})).length();
        }
    // Before the delegate hears of it, which may already do what belongs to a paste.
    if (units > 0 && isTooLong(length) && length > m_content.length()) {
        showRefusal(Refusal::tooLong);
        return false;
    }
    if (units == 0 || !userBeginsEditing())
        return false;
    const auto objects = read(pasteboard);
    if (count(objects) == 0)
        return false;
    const auto before = m_content.substring({0, replaced.location});
    auto inserted = contentOf(shouldAdd(objects, before.pieces().size()));
    inserted.removeCharacters(isNoText);
    if (inserted.length() == 0)
        return false;

    auto content = m_content;
    auto place = replaced;
    if (moved) {
        TokenText left;
        const auto dragged = content.substring(*moved);
        for (const auto& piece : dragged.pieces())
            if (piece.isToken && !std::holds_alternative<std::u16string>(piece.object))
                left.appendToken(piece.object);
        content.replaceCharacters(*moved, left);
        if (place.location > moved->location)
            place.location -= moved->length - left.length();
    }
    content.replaceCharacters(place, inserted);
    if (isTooLong(content.length()) && content.length() > m_content.length()) {
        showRefusal(Refusal::tooLong);
        return false;
    }
    showRefusal(Refusal::none);
    change(content, place.location + inserted.length());
    tellChange();
    return true;
}

void NSTokenField::userChoosesMenuItem(const std::shared_ptr<NSMenuItem>& item) {
    const UserAct act;
    NSMenu::userChooses(item);
}

bool NSTokenField::userEndsEditing(Ending ending) {
    const UserAct act;
    if (m_untold)
        tellChange();
    if (isBeingEdited() && ending != Ending::focusLost)
        endRunBefore(selection().location);
    if (!NSTextField::userEndsEditing(ending))
        return false;
    showRefusal(Refusal::none);
    return true;
}

bool NSTokenField::takesDraggedTypes(const std::vector<std::u16string>& types) const {
    const auto takes = [&](const std::vector<std::u16string>& registered) {
        return std::any_of(types.begin(), types.end(), [&](const auto& type) {
            // Two names of one type.
            const auto& known = type == NSStringPboardType ? NSPasteboardTypeString : type;
            return std::any_of(registered.begin(), registered.end(), [&](const auto& wanted) {
                return (wanted == NSStringPboardType ? NSPasteboardTypeString : wanted) == known;
            });
        });
    };
    return isEnabled() && isEditable() &&
           (takes(registeredDraggedTypes()) || (m_editor && takes(m_editor->registeredDraggedTypes())));
}

void NSTokenField::cut(const std::shared_ptr<NSObject>&) {
    userCuts();
}

void NSTokenField::copy(const std::shared_ptr<NSObject>&) {
    userCopies();
}

void NSTokenField::paste(const std::shared_ptr<NSObject>&) {
    if (auto* shown = tokenPeer())
        userPastes(shown->clipboard());
}

void NSTokenField::selectAll(const std::shared_ptr<NSObject>&) {
    if (auto* shown = tokenPeer())
        shown->setSelectedRange({0, m_content.length()});
}

void NSTokenField::undo(const std::shared_ptr<NSObject>&) {
    if (auto* shown = tokenPeer())
        shown->undo(false);
}

void NSTokenField::redo(const std::shared_ptr<NSObject>&) {
    if (auto* shown = tokenPeer())
        shown->undo(true);
}

bool NSTokenField::validateUserInterfaceItem(const NSValidatedUserInterfaceItem& item) {
    auto* shown = tokenPeer();
    const auto& action = item.action();
    const bool selected = selection().length != 0;
    if (!shown)
        return false;
    if (action == u"copy:")
        return selected;
    if (action == u"selectAll:")
        return m_content.length() != 0;
    if (!isEnabled() || !isEditable())
        return false;
    if (action == u"cut:")
        return selected;
    if (action == u"paste:")
        return tell(shown->clipboard(), &NSPasteboard::readObjects) != nullptr;
    if (action == u"undo:" || action == u"redo:")
        return shown->canUndo(action == u"redo:");
    return true;
}

void NSTokenField::setValue(NSValue value) {
    const auto text = textOfValue(value);
    NSTextField::setValue(std::move(value));
    setObjectValue(text.empty() ? nullptr : listOf({text}));
}

void NSTokenField::abandonEditing() {
    validateEditing();
    NSTextField::abandonEditing();
}

void NSTokenField::showValue() {}

std::u16string NSTokenField::shownText() const {
    return plainTextOf(m_content);
}

void NSTokenField::cellChanged() {
    if (auto* shown = dynamic_cast<TextPeer*>(peer()))
        shown->setWraps(cell()->wraps());
}

void NSTokenField::showAll() {
    NSTextField::showAll();
    cellChanged();
    if (auto* shown = tokenPeer())
        shown->replaceCharacters({0, 0}, m_content, Undoing::forgotten);
}

} // namespace platform
