// SPDX-License-Identifier: MIT
#include <Foundation/NSClass.h>
#include <Foundation/NSException.h>

#include <gtest/gtest.h>

#include <optional>

namespace {

using namespace platform;

class Dial : public NSObject {
public:
    std::u16string_view className() const override { return u"UnitDial"; }
    void onTurn(const std::shared_ptr<NSObject>& sender) { turnedBy = sender; }
    double angle() const { return m_angle; }
    void setAngle(double angle) { m_angle = angle; }
    double pressure() const { return 3; }
    std::shared_ptr<Dial> partner() const { return m_partner.lock(); }
    void setPartner(const std::shared_ptr<Dial>& partner) { m_partner = partner; }

    std::weak_ptr<Dial> label;
    std::shared_ptr<NSObject> held;
    std::shared_ptr<NSObject> turnedBy;

private:
    double m_angle = 0;
    std::weak_ptr<Dial> m_partner;
};

class FineDial final : public Dial {
public:
    std::u16string_view className() const override { return u"UnitFineDial"; }
    void setNilValueForKey(const std::u16string& key) override { nilKeys.push_back(key); }
    std::vector<std::u16string> nilKeys;
};

class Knob : public NSObject {};

const ClassRegistration dial{ClassTable<Dial>(u"UnitDial")
                                 .outlet(u"label", &Dial::label)
                                 .outlet(u"held", &Dial::held, false)
                                 .action(u"onTurn:", &Dial::onTurn)
                                 .key(u"angle", &Dial::angle, &Dial::setAngle)
                                 .key(u"pressure", &Dial::pressure)
                                 .key(u"partner", &Dial::partner, &Dial::setPartner)};
const ClassRegistration fineDial{ClassTable<FineDial>(u"UnitFineDial", u"UnitDial")};

/// The name of the exception that leaves `message`.
std::string raised(const std::function<void()>& message) {
    try {
        message();
    } catch (const NSException& exception) {
        return exception.name();
    }
    return "nothing";
}

TEST(ClassRegistry, FindsAClassByItsExactName) {
    ASSERT_TRUE(NSClassFromString(u"UnitDial"));
    EXPECT_EQ(NSClassFromString(u"UnitDial")->name, u"UnitDial");
    for (const auto* name : {u"", u"unitdial", u"UnitDia", u"UnitDial "})
        EXPECT_EQ(NSClassFromString(name), nullptr);
}

TEST(ClassRegistry, MakesObjectsByName) {
    const auto object = NSClassFromString(u"UnitFineDial")->make();
    EXPECT_TRUE(std::dynamic_pointer_cast<FineDial>(object));
    EXPECT_EQ(object->classTable(), NSClassFromString(u"UnitFineDial"));
}

TEST(ClassRegistry, AnswersWithTheNewestOfAName) {
    NSClass description;
    description.name = u"UnitPlugin";
    std::optional<ClassRegistration> oldest(std::in_place, description);
    const auto* first = NSClassFromString(u"UnitPlugin");
    std::optional<ClassRegistration> middle(std::in_place, description);
    std::optional<ClassRegistration> newest(std::in_place, description);
    const auto* third = NSClassFromString(u"UnitPlugin");
    EXPECT_NE(first, third);
    middle.reset();
    EXPECT_EQ(NSClassFromString(u"UnitPlugin"), third);
    newest.reset();
    EXPECT_EQ(NSClassFromString(u"UnitPlugin"), first) << "the older one is back";
    oldest.reset();
    EXPECT_EQ(NSClassFromString(u"UnitPlugin"), nullptr);
}

TEST(ClassTable, InheritsOutletsActionsAndKeys) {
    const auto* table = NSClassFromString(u"UnitFineDial");
    ASSERT_TRUE(table);
    EXPECT_EQ(table->superclass(), NSClassFromString(u"UnitDial"));
    EXPECT_TRUE(table->outlet(u"label"));
    EXPECT_TRUE(table->action(u"onTurn:"));
    EXPECT_TRUE(table->key(u"angle"));
    EXPECT_FALSE(table->outlet(u"lable"));
    EXPECT_FALSE(table->action(u"onTurn"));
    EXPECT_FALSE(table->key(u"Angle"));
}

TEST(ClassTable, OfASubclassOverridesTheInheritedEntries) {
    NSClass description;
    description.name = u"UnitOverridingDial";
    description.superclassName = u"UnitDial";
    description.keys[u"angle"].get = [](const NSObject&) -> NSValue { return u"overridden"; };
    const ClassRegistration registration(description);
    const auto* table = NSClassFromString(u"UnitOverridingDial");
    EXPECT_EQ(table->key(u"angle")->get(Knob()), NSValue(u"overridden"));
    EXPECT_TRUE(table->key(u"pressure")) << "the others are still inherited";
}

TEST(ClassTable, ConnectsOutletsOnlyToObjectsOfTheirType) {
    const auto owner = std::make_shared<FineDial>();
    const auto other = std::make_shared<FineDial>();
    const auto* outlet = owner->classTable()->outlet(u"label");
    EXPECT_FALSE(outlet->connect(*owner, std::make_shared<Knob>()));
    EXPECT_EQ(outlet->object(*owner), nullptr);
    EXPECT_TRUE(outlet->connect(*owner, other));
    EXPECT_EQ(outlet->object(*owner), other);
    EXPECT_TRUE(outlet->needed);
    EXPECT_FALSE(owner->classTable()->outlet(u"held")->needed);
}

TEST(ClassTable, SendsAnActionWithItsSender) {
    const auto target = std::make_shared<FineDial>();
    const auto sender = std::make_shared<Knob>();
    (*target->classTable()->action(u"onTurn:"))(*target, sender);
    EXPECT_EQ(target->turnedBy, sender);
}

TEST(KindOfClass, CountsInheritedClasses) {
    const FineDial fine;
    const Dial plain;
    EXPECT_TRUE(fine.isKindOfClass(NSClassFromString(u"UnitFineDial")));
    EXPECT_TRUE(fine.isKindOfClass(NSClassFromString(u"UnitDial")));
    EXPECT_FALSE(plain.isKindOfClass(NSClassFromString(u"UnitFineDial")));
    EXPECT_FALSE(plain.isKindOfClass(nullptr)) << "a class nobody registered";
    EXPECT_FALSE(Knob().isKindOfClass(NSClassFromString(u"UnitDial"))) << "an object without a table";
}

TEST(KindOfClass, IsKnownForTheClassesOfTheLayer) {
    const struct {
        const char16_t* name;
        const char16_t* inherits;
    } table[] = {
        {u"NSControl", u"NSView"},          {u"NSButton", u"NSControl"},  {u"NSTextField", u"NSControl"},
        {u"NSTokenField", u"NSTextField"},  {u"NSTokenField", u"NSView"}, {u"NSStepper", u"NSControl"},
        {u"NSMatrix", u"NSControl"},        {u"NSColorWell", u"NSView"},  {u"NSTableView", u"NSControl"},
        {u"NSSegmentedControl", u"NSView"}, {u"NSTabView", u"NSView"},    {u"NSPopUpButton", u"NSControl"},
    };
    for (const auto& row : table) {
        const auto* cls = NSClassFromString(row.name);
        ASSERT_TRUE(cls);
        ASSERT_TRUE(cls->make);
        const auto object = cls->make();
        EXPECT_EQ(object->classTable(), cls) << "its objects name another class";
        EXPECT_TRUE(object->isKindOfClass(NSClassFromString(row.inherits)));
    }
    EXPECT_FALSE(NSClassFromString(u"NSTabView")->isSubclassOf(NSClassFromString(u"NSControl")));
}

TEST(KeyValueCoding, ReadsAndWritesNumbersOfEveryKind) {
    Dial object;
    const struct {
        const char* row;
        NSValue value;
        double expected;
    } table[] = {
        {"double", 2.5, 2.5},
        {"single precision, widened", 2.7f, 2.7000000476837158},
        {"whole number", NSInteger(-12), -12},
        {"flag", true, 1},
        {"text", std::u16string(u" 12.7x"), 12.7},
        {"text without number", std::u16string(u"abc"), 0},
        {"empty text", std::u16string(), 0},
        {"object", std::shared_ptr<NSObject>(std::make_shared<Knob>()), 0},
    };
    for (const auto& row : table) {
        object.setAngle(99);
        setValueForKey(object, row.value, u"angle");
        EXPECT_EQ(object.angle(), row.expected) << row.row;
        EXPECT_EQ(valueForKey(object, u"angle"), NSValue(row.expected)) << row.row;
    }
}

TEST(KeyValueCoding, SendsSetNilValueForKeyInPlaceOfANumbersSetter) {
    FineDial object;
    object.setAngle(99);
    setValueForKey(object, NSValue(), u"angle");
    setValueForKey(object, std::shared_ptr<NSObject>(), u"angle");
    EXPECT_EQ(object.nilKeys, (std::vector<std::u16string>{u"angle", u"angle"}));
    EXPECT_EQ(object.angle(), 99);
}

TEST(KeyValueCoding, RaisesForNilWhereTheClassTakesNone) {
    Dial object;
    object.setAngle(99);
    EXPECT_THROW(setValueForKey(object, NSValue(), u"angle"), NSInvalidArgumentException);
    EXPECT_THROW(object.setNilValueForKey(u"angle"), std::invalid_argument);
    EXPECT_EQ(object.angle(), 99);
}

TEST(KeyValueCoding, GivesNilToAnObjectsSetter) {
    const auto object = std::make_shared<FineDial>();
    const auto partner = std::make_shared<Dial>();
    setValueForKey(*object, std::shared_ptr<NSObject>(partner), u"partner");
    EXPECT_EQ(object->partner(), partner);
    EXPECT_EQ(valueForKey(*object, u"partner"), NSValue(std::shared_ptr<NSObject>(partner)));
    setValueForKey(*object, NSValue(), u"partner");
    EXPECT_EQ(object->partner(), nullptr);
    EXPECT_TRUE(isNil(valueForKey(*object, u"partner")));
    EXPECT_TRUE(object->nilKeys.empty());
}

TEST(KeyValueCoding, TakesAnObjectOfAnotherTypeForNil) {
    Dial object;
    const auto partner = std::make_shared<Dial>();
    object.setPartner(partner);
    setValueForKey(object, std::shared_ptr<NSObject>(std::make_shared<Knob>()), u"partner");
    EXPECT_EQ(object.partner(), nullptr);
}

TEST(KeyValueCoding, RaisesForAKeyThatIsOnlyShown) {
    FineDial object;
    EXPECT_EQ(valueForKey(object, u"pressure"), NSValue(3.0));
    for (const auto& value : {NSValue(1.0), NSValue(), NSValue(u"1")})
        EXPECT_EQ(raised([&] { setValueForKey(object, value, u"pressure"); }), "NSUnknownKeyException");
    EXPECT_TRUE(object.nilKeys.empty()) << "nil is refused as well";
}

TEST(KeyValueCoding, RaisesForAKeyThatNoTableHas) {
    Dial object;
    Knob without;
    for (const auto* key : {u"", u"Angle", u"setAngle:", u"unknown"}) {
        EXPECT_EQ(raised([&] { valueForKey(object, key); }), "NSUnknownKeyException");
        EXPECT_EQ(raised([&] { setValueForKey(object, 1.0, key); }), "NSUnknownKeyException");
    }
    EXPECT_EQ(raised([&] { valueForKey(without, u"angle"); }), "NSUnknownKeyException");
}

TEST(MessageToAMissingObject, AnswersNothingAndEvaluatesItsArguments) {
    const std::shared_ptr<Dial> missing;
    int evaluated = 0;
    tell(missing, &Dial::setAngle, static_cast<double>(++evaluated));
    EXPECT_EQ(evaluated, 1);
    EXPECT_EQ(tell(missing, &Dial::angle), 0);
    EXPECT_EQ(tell(missing, &Dial::partner), nullptr);
    EXPECT_FALSE(tell(missing, &Dial::isKindOfClass, NSClassFromString(u"UnitDial")));
    EXPECT_EQ(tell(std::weak_ptr<Dial>(), &Dial::angle), 0);
}

TEST(MessageToAMissingObject, ReachesTheOneThatIsThere) {
    const auto object = std::make_shared<Dial>();
    tell(object, &Dial::setAngle, 4.0);
    EXPECT_EQ(tell(std::weak_ptr<Dial>(object), &Dial::angle), 4);
}

TEST(ListThatIsNil, HasNoElementsAndFindsEverythingInFront) {
    const auto knob = std::make_shared<Knob>();
    const NSArray<std::shared_ptr<Knob>> missing;
    EXPECT_EQ(count(missing), 0u);
    EXPECT_EQ(indexOfObject(missing, knob), 0u) << "as a message to nil answers";
}

TEST(IndexOfObject, IsThatOfTheVeryObject) {
    const auto first = std::make_shared<Knob>();
    const auto second = std::make_shared<Knob>();
    const auto list =
        std::make_shared<const std::vector<std::shared_ptr<Knob>>>(std::vector{first, second, second, first});
    EXPECT_EQ(count(NSArray<std::shared_ptr<Knob>>(list)), 4u);
    const NSArray<std::shared_ptr<Knob>>& array = list;
    EXPECT_EQ(indexOfObject(array, first), 0u);
    EXPECT_EQ(indexOfObject(array, second), 1u);
    EXPECT_EQ(indexOfObject(array, std::make_shared<Knob>()), NSNotFound);
    EXPECT_EQ(indexOfObject(array, std::shared_ptr<Knob>()), NSNotFound);
}

} // namespace
