// SPDX-License-Identifier: MIT
// Whatever is on the pasteboard, a title edited with it keeps its rules. The input is a list of acts, a byte each with
// what it needs behind it: pasting texts, typing, copying, cutting, dragging, selecting, undoing, waiting.

#include "Require.h"

#include "../tests/support/FakeQueue.h"
#include "../tests/support/PlainConfiguration.h"
#include "../tests/unit/token_editor.h"

#include <PasteboardItems.h>
#include <TitleTokens.h>
#include <VelImprinterPrefPane.h>

namespace {

using namespace platform;

/// Texts are plain and placeholders tokens, as hosts show them.
class Field final : public host::PlaceholderTokenField {
public:
    NSTokenStyle tokenFieldStyleForRepresentedObject(const std::shared_ptr<NSTokenField>&,
                                                     const RepresentedObject& object) override {
        const auto* text = std::get_if<std::u16string>(&object);
        return text && !(text->size() > 2 && pane::isTokenString(*text)) ? NSTokenStyle::none : NSTokenStyle::rounded;
    }
};

/// Reads the input piece by piece; noughts behind its end.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}
    bool isEmpty() const { return m_at >= m_size; }
    std::uint8_t byte() { return isEmpty() ? 0 : m_data[m_at++]; }
    std::u16string text() {
        std::u16string text;
        for (auto length = byte() % 16; length > 0; --length) {
            const auto unit = byte();
            // Mostly characters that mean something here, and any other with two bytes behind it.
            text += unit < 250 ? u"%abc \n\r%\u2029\uFFFC\U0001F600%"[unit % 13]
                               : static_cast<char16_t>(byte() | byte() << 8);
        }
        return text;
    }
    std::shared_ptr<NSPasteboard> pasteboard() {
        auto pasteboard = std::make_shared<NSPasteboard>();
        for (auto items = byte() % 4; items > 0; --items)
            pasteboard->writeObjects({text()});
        return pasteboard;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_at = 0;
};

class Editing {
public:
    Editing() {
        const NSClass* described = m_pane->classTable();
        described->outlet(u"titleTokenField")->connect(*m_pane, m_field);
        m_pane->initAppearance();
        auto peer = std::make_unique<platform_test::FakeEditor>(*m_field);
        m_editor = peer.get();
        m_field->setPeer(std::move(peer));
        m_pane->setCurrentConfiguration(m_configuration);
        m_pane->insertTokenInRange(std::shared_ptr<NSObject>(m_configuration->createFontToken()), {});
        m_pane->insertTokenInRange(u"%pageNumber%", {1, 0});
        m_pane->insertTokenInRange(u"text", {2, 0});
    }

    void act(Input& input) {
        const auto length = m_field->attributedStringValue().length();
        switch (input.byte() % 8) {
        case 0:
            m_field->userPastes(input.pasteboard());
            break;
        case 1:
            m_editor->type(input.text());
            break;
        case 2:
            m_mayKeepSigns = true; // the next paste ends in the reorder, not in the clean-up
            input.byte() % 2 ? m_field->userCopies() : m_field->userCuts();
            break;
        case 3:
            m_field->userPastes(m_editor->copied);
            break;
        case 4: {
            m_mayKeepSigns = true;
            std::u16string plainText;
            if (const auto dragged = m_field->userDrags(plainText))
                m_field->userDrops(dragged, input.byte() % (length + 1));
            m_field->userEndedDrag();
            break;
        }
        case 5: {
            const auto start = input.byte() % (length + 1);
            m_editor->selected = {start, input.byte() % (length - start + 1)};
            break;
        }
        case 6:
            // What was pasted comes back as it was for a moment, if the user was quicker than the clean-up.
            m_mayKeepSigns = true;
            if (m_editor->canUndo(false))
                m_editor->undo(false);
            break;
        default:
            m_queue->advance(0.02);
        }
        m_editor->selected.location = std::min(m_editor->selected.location, m_editor->text.length());
        m_editor->selected.length =
            std::min(m_editor->selected.length, m_editor->text.length() - m_editor->selected.location);
        require(m_editor->text == m_field->attributedStringValue(), "the editor shows what the field holds");
    }

    void end() {
        m_queue->advance(1);
        m_field->userEndsEditing(NSTextField::Ending::focusLost);
        m_queue->advance(1);
        const auto title = m_field->objectValue();
        require(*title == *pane::fieldTitle(m_configuration->titleTokens()), "field and model hold the same title");
        require(m_queue->waiting() == 0, "nothing is left to be done");
        for (const auto& token : *title)
            if (const auto* text = std::get_if<std::u16string>(&token); text && !m_mayKeepSigns)
                require(text->find(u'%') == std::u16string::npos || pane::isTokenString(*text),
                        "no percent sign of foreign text stays outside of tokens");
    }

private:
    const std::shared_ptr<testing_support::FakeQueue> m_queue = [] {
        auto queue = std::make_shared<testing_support::FakeQueue>();
        setMainQueue(queue);
        return queue;
    }();
    const std::shared_ptr<Field> m_field = std::make_shared<Field>();
    const std::shared_ptr<pane::VelImprinterPrefPane> m_pane = std::make_shared<pane::VelImprinterPrefPane>();
    const std::shared_ptr<support::PlainConfiguration> m_configuration =
        std::make_shared<support::PlainConfiguration>();
    platform_test::FakeEditor* m_editor = nullptr;
    bool m_mayKeepSigns = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // What another program may put on the clipboard under the name of this one's items.
    auto items = platform::encodedItems({});
    items.insert(items.end(), data, data + size);
    if (const auto decoded = platform::decodedItems(items))
        require(platform::encodedItems(*decoded) == items, "items that can be read are written the same");

    Input input(data, size);
    Editing editing;
    while (!input.isEmpty())
        editing.act(input);
    editing.end();
    platform::setMainQueue(nullptr);
    return 0;
}
