// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSCell.h>
#include <AppKit/NSTokenField.h>

#include <QTextEdit>

using namespace platform;
using namespace testing_support;

namespace {

class TokenFieldTest : public InterfaceTest {
protected:
    void SetUp() override {
        show({"field"}, column({widget("NSTokenField", "field")}), customClass("NSTokenField", "QTextEdit"));
        field = view<NSTokenField>("field");
        text = shown<QTextEdit>("field");
        ASSERT_TRUE(field && text);
    }
    void setObjects(std::vector<RepresentedObject> objects) {
        field->setObjectValue(std::make_shared<const std::vector<RepresentedObject>>(std::move(objects)));
    }

    std::shared_ptr<NSTokenField> field;
    QTextEdit* text = nullptr;
};

TEST_F(TokenFieldTest, ShowsATokenAsOneCharacter) {
    setObjects({u"Received ", u"%pageNumber%"});
    EXPECT_EQ(text->toPlainText(), QString(2, QChar::ObjectReplacementCharacter));
}

TEST_F(TokenFieldTest, NilClearsWhatIsShown) {
    setObjects({u"Received"});
    field->setObjectValue(nullptr);
    EXPECT_EQ(text->toPlainText(), "");
}

TEST_F(TokenFieldTest, TypingPutsTextBesideTheTokens) {
    setObjects({u"Received"});
    QTest::keyClicks(text, "x");
    EXPECT_EQ(*field->objectValue(), (std::vector<RepresentedObject>{u"Received", u"x"}));
}

TEST_F(TokenFieldTest, WrapsWhenItsCellIsToldTo) {
    field->cell()->setWraps(false);
    EXPECT_EQ(text->lineWrapMode(), QTextEdit::NoWrap);
    field->cell()->setWraps(true);
    EXPECT_EQ(text->lineWrapMode(), QTextEdit::WidgetWidth);
}

} // namespace
