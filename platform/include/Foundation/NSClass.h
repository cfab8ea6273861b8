// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSKeyValueCoding.h>
#include <Foundation/NSObject.h>

#include <functional>
#include <map>
#include <optional>
#include <set>

namespace platform {

class NSBundle;

/// The one table of a class that an interface file or another module finds by name. The interface loader, key-value
/// coding, the is-kind-of-class test and the look-up by name all read it; nothing else dispatches by text.
class NSClass {
public:
    struct Outlet {
        /// Answers NO where the object is not of the outlet's type.
        std::function<bool(NSObject& owner, const std::shared_ptr<NSObject>& object)> connect;
        std::function<std::shared_ptr<NSObject>(const NSObject& owner)> object;
        /// Whether behaviour reads it, so that an interface file that leaves it unconnected is reported.
        bool needed = true;
    };
    using Action = std::function<void(NSObject& target, const std::shared_ptr<NSObject>& sender)>;
    struct Key {
        std::function<NSValue(const NSObject&)> get;
        std::function<void(NSObject&, const NSValue&)> set; // empty: display only
        bool isNumber = false;                              // nil then goes to setNilValueForKey
        std::set<std::u16string> affectedBy = {};           // keys whose setters change this value too
    };

    std::u16string name;
    /// Empty for a root class.
    std::u16string superclassName;
    /// Empty for a class of which no objects are made by name.
    std::function<std::shared_ptr<NSObject>()> make;
    /// Answers the messages to the class itself, or null.
    std::shared_ptr<NSObject> classObject;
    std::map<std::u16string, Outlet, std::less<>> outlets;
    std::map<std::u16string, Action, std::less<>> actions;
    std::map<std::u16string, Key, std::less<>> keys;
    /// The bundle that was being loaded when the class was registered; null for classes of the program.
    std::weak_ptr<NSBundle> bundle;

    const NSClass* superclass() const;
    /// These look in the class and then in those it inherits from; null where there is none.
    const Outlet* outlet(std::u16string_view outletName) const;
    const Action* action(std::u16string_view selector) const;
    const Key* key(std::u16string_view keyName) const;
    bool isSubclassOf(const NSClass* other) const;
};

/// The class registered under `name`, or null.
const NSClass* NSClassFromString(std::u16string_view name);

/// The number a control holds; 0 for what is no control.
double numberOfSender(const std::shared_ptr<NSObject>& sender);

/// Keeps a class registered as long as it lives; where a name is registered twice the newest stands.
class ClassRegistration {
public:
    explicit ClassRegistration(NSClass description);
    ~ClassRegistration();
    ClassRegistration(const ClassRegistration&) = delete;
    ClassRegistration& operator=(const ClassRegistration&) = delete;

private:
    std::shared_ptr<NSClass> m_class;
};

/// Writes a class's table from its members:
///
///     const ClassRegistration registration{ClassTable<Stamp>(u"Stamp").outlet(u"field", &Stamp::m_field)
///                                              .action(u"onPress:", &Stamp::onPress)};
template <class T>
class ClassTable {
public:
    explicit ClassTable(std::u16string name, std::u16string superclassName = {}) {
        m_class.name = std::move(name);
        m_class.superclassName = std::move(superclassName);
        if constexpr (std::is_default_constructible_v<T> && !std::is_abstract_v<T>)
            m_class.make = [] { return std::make_shared<T>(); };
    }

    template <class Object>
    ClassTable& outlet(std::u16string name, std::weak_ptr<Object> T::*member, bool needed = true) {
        m_class.outlets[std::move(name)] = {connector<Object>(member),
                                            [member](const NSObject& owner) -> std::shared_ptr<NSObject> {
                                                return (dynamic_cast<const T&>(owner).*member).lock();
                                            },
                                            needed};
        return *this;
    }
    template <class Object>
    ClassTable& outlet(std::u16string name, std::shared_ptr<Object> T::*member, bool needed = true) {
        m_class.outlets[std::move(name)] = {connector<Object>(member),
                                            [member](const NSObject& owner) -> std::shared_ptr<NSObject> {
                                                return dynamic_cast<const T&>(owner).*member;
                                            },
                                            needed};
        return *this;
    }
    ClassTable& action(std::u16string selector, void (T::*method)(const std::shared_ptr<NSObject>&)) {
        m_class.actions[std::move(selector)] = [method](NSObject& target, const std::shared_ptr<NSObject>& sender) {
            (dynamic_cast<T&>(target).*method)(sender);
        };
        return *this;
    }
    /// A message that takes a number gets the sender's.
    ClassTable& action(std::u16string selector, void (T::*method)(double)) {
        m_class.actions[std::move(selector)] = [method](NSObject& target, const std::shared_ptr<NSObject>& sender) {
            (dynamic_cast<T&>(target).*method)(numberOfSender(sender));
        };
        return *this;
    }
    /// A number held as double.
    ClassTable& key(std::u16string name, double (T::*getter)() const, void (T::*setter)(double) = nullptr) {
        NSClass::Key entry;
        entry.get = [getter](const NSObject& object) -> NSValue { return (dynamic_cast<const T&>(object).*getter)(); };
        if (setter)
            entry.set = [setter](NSObject& object, const NSValue& value) {
                (dynamic_cast<T&>(object).*setter)(doubleValue(value));
            };
        entry.isNumber = true;
        m_class.keys[std::move(name)] = std::move(entry);
        return *this;
    }
    /// An object; nil is a null pointer, and an object of another type is nil too.
    template <class Object>
    ClassTable& key(std::u16string name, std::shared_ptr<Object> (T::*getter)() const,
                    void (T::*setter)(const std::shared_ptr<Object>&)) {
        NSClass::Key entry;
        entry.get = [getter](const NSObject& object) -> NSValue {
            return std::shared_ptr<NSObject>((dynamic_cast<const T&>(object).*getter)());
        };
        entry.set = [setter](NSObject& object, const NSValue& value) {
            const auto* held = std::get_if<std::shared_ptr<NSObject>>(&value);
            (dynamic_cast<T&>(object).*setter)(held ? std::dynamic_pointer_cast<Object>(*held) : nullptr);
        };
        m_class.keys[std::move(name)] = std::move(entry);
        return *this;
    }
    /// The setters of `keys` change the value under `name` too.
    ClassTable& keyPathsForValuesAffecting(const std::u16string& name, std::set<std::u16string> keys) {
        m_class.keys[name].affectedBy = std::move(keys);
        return *this;
    }
    ClassTable& classObject(std::shared_ptr<NSObject> object) {
        m_class.classObject = std::move(object);
        return *this;
    }

    operator NSClass() && { return std::move(m_class); } // NOLINT(google-explicit-constructor)
    operator NSClass() & { return m_class; }             // NOLINT(google-explicit-constructor)

private:
    template <class Object, class Member>
    static auto connector(Member member) {
        return [member](NSObject& owner, const std::shared_ptr<NSObject>& object) {
            auto typed = std::dynamic_pointer_cast<Object>(object);
            if (typed)
                dynamic_cast<T&>(owner).*member = typed;
            return typed != nullptr;
        };
    }

    NSClass m_class;
};

} // namespace platform
