// SPDX-License-Identifier: MIT
#pragma once

#include "platform_peers.h"

#include <AppKit/NSTokenField.h>

namespace platform_test {

/// An editor without a screen, and the user in front of it: it holds a flat text, a selection and what can be undone,
/// and tells the field of what is typed as a toolkit's editor does.
class FakeEditor final : public FakePeer, public platform::TokenPeer {
public:
    explicit FakeEditor(platform::NSTokenField& edited) : field(edited) {}

    // What the field tells it.
    void setText(const std::u16string&) override {}
    void showRefusal(platform::Refusal refusal) override { refused = refusal; }
    void replaceCharacters(platform::NSRange range, const platform::TokenText& replacement,
                           platform::Undoing undoing) override {
        if (undoing == platform::Undoing::newStep)
            former.push_back(text);
        if (undoing == platform::Undoing::forgotten)
            former.clear();
        text.replaceCharacters(range, replacement);
        replaced.push_back(undoing);
    }
    platform::NSRange selectedRange() override { return selected; }
    void setSelectedRange(platform::NSRange range) override { selected = range; }
    bool isFirstResponder() override { return focused; }
    void forgetUndo() override { former.clear(); }
    bool canUndo(bool again) override { return !again && !former.empty(); }
    void undo(bool) override {
        text = former.back();
        former.pop_back();
        field.userUndid(text);
    }
    void retitle() override { ++retitled; }
    std::shared_ptr<platform::NSPasteboard> clipboard() override { return copied; }
    void setClipboard(const platform::NSPasteboard& pasteboard, const std::u16string& plainText) override {
        copied = std::make_shared<platform::NSPasteboard>();
        if (const auto items = pasteboard.readObjects())
            copied->writeObjects(*items);
        copiedText = plainText;
    }

    // What the user does.
    void type(const std::u16string& typed) {
        former.push_back(text);
        platform::TokenText put;
        put.appendText(typed);
        text.replaceCharacters(selected, put);
        selected = {selected.location + typed.size(), 0};
        field.userTyped(text);
    }
    void deleteSelection() {
        former.push_back(text);
        text.replaceCharacters(selected, {});
        selected.length = 0;
        field.userTyped(text);
    }

    platform::NSTokenField& field;
    platform::TokenText text;
    platform::NSRange selected;
    std::vector<platform::TokenText> former;
    std::vector<platform::Undoing> replaced;
    std::shared_ptr<platform::NSPasteboard> copied = std::make_shared<platform::NSPasteboard>();
    std::u16string copiedText;
    platform::Refusal refused = platform::Refusal::none;
    int retitled = 0;
    bool focused = true;
};

} // namespace platform_test
