// SPDX-License-Identifier: MIT
#include "TokenFieldPeer.h"

namespace platform::qt {

namespace {

class TokensPeer final : public WidgetPeer, public TextPeer {
public:
    using WidgetPeer::WidgetPeer;

    void setText(const std::u16string& text) override {
        auto* shown = as<QTextEdit>();
        if (shown && shown->toPlainText() != toQt(text))
            shown->setPlainText(toQt(text));
    }
    void setWraps(bool wraps) override {
        if (auto* shown = as<QTextEdit>())
            shown->setLineWrapMode(wraps ? QTextEdit::WidgetWidth : QTextEdit::NoWrap);
    }
};

} // namespace

std::unique_ptr<ViewPeer> makeTokenFieldPeer(QTextEdit& widget) {
    widget.setReadOnly(true);
    widget.setTabChangesFocus(true);
    return std::make_unique<TokensPeer>(widget);
}

} // namespace platform::qt
