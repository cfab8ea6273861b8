// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSCell.h>
#include <AppKit/NSView.h>
#include <Foundation/NSKeyValueCoding.h>

#include <optional>

namespace platform {

class ValueBinding;

/// The number as single precision has it: the nearest one, and the largest for what lies beyond.
float inSinglePrecision(double number);

/// A view with a value and an action.
///
/// The action is sent for user input only, never by a setter. A number set and not edited since is read back exactly,
/// not through its text.
class NSControl : public NSView {
public:
    NSControl();
    ~NSControl() override;
    std::u16string_view className() const override;

    NSInteger tag() const override { return m_tag; }
    void setTag(NSInteger tag) { m_tag = tag; }

    bool isEnabled() const { return m_enabled; }
    /// NO also ends an edit in progress.
    void setEnabled(bool enabled);
    bool acceptsFirstResponder() const override { return m_enabled && !isHidden(); }

    /// For whoever chooses a font for the control; it changes nothing by itself.
    NSControlSize controlSize() const { return m_controlSize; }
    void setControlSize(NSControlSize size) { m_controlSize = size; }

    /// The object that gets the action; null gets none.
    std::shared_ptr<NSObject> target() const { return m_target.lock(); }
    void setTarget(const std::shared_ptr<NSObject>& target) { m_target = target; }
    /// A selector of the target's class table, such as "onPreview:"; empty sends nothing.
    const std::u16string& action() const { return m_action; }
    void setAction(const std::u16string& selector) { m_action = selector; }

    /// Getters take over the text being edited; setters abandon it.
    std::u16string stringValue();
    NSInteger integerValue();
    float floatValue();
    double doubleValue();
    void setStringValue(const std::u16string& text);
    void setIntegerValue(NSInteger number);
    void setFloatValue(float number);
    void setDoubleValue(double number);

    void setObjectValue(NSValue value) { setValue(std::move(value)); }

    /// Binds the value to `key` of `object`'s class table, which is looked on weakly, and shows it at once.
    ///
    /// What the user chooses is written under the key, an emptied field as nil, and then the action is sent. A value
    /// set by program is never written. When a setter of the key was run, the control shows the getter, unless it is
    /// the one that writes. A key without setter is only shown.
    void bindValueToObjectWithKey(const std::shared_ptr<NSObject>& object, const std::u16string& key);

    /// Takes over the text being edited, if any.
    virtual void validateEditing() {}

    const std::shared_ptr<NSCell>& cell() const { return m_cell; }
    /// Raises NSInvalidArgumentException for null, and for a cell of a kind the control cannot have.
    virtual void setCell(const std::shared_ptr<NSCell>& cell);

    /// Sends the action to the target, with this control as sender.
    void sendAction();

protected:
    const NSValue& value() const { return m_value; }
    /// Sets without sending anything, and shows it.
    virtual void setValue(NSValue value);
    /// The text for the value.
    virtual std::u16string shownText() const;
    /// The user chose `value`, where anything changed: writes it under the bound key, then sends the action if `sends`.
    void userChose(const std::optional<NSValue>& value, bool sends);
    /// Forgets the text being edited and shows the value instead.
    virtual void abandonEditing() {}
    /// Shows the value in the peer.
    virtual void showValue() {}
    virtual void cellChanged() {}
    void showAll() override;

private:
    NSValue m_value;
    std::weak_ptr<NSObject> m_target;
    std::u16string m_action;
    std::shared_ptr<NSCell> m_cell;
    std::shared_ptr<ValueBinding> m_binding;
    NSInteger m_tag = 0;
    NSControlSize m_controlSize = NSControlSize::regular;
    bool m_enabled = true;
};

/// A number as a field without formatter shows it: whole numbers plain, single precision with seven significant digits,
/// double with sixteen, "." as separator, no grouping.
std::u16string textOfValue(const NSValue& value);

} // namespace platform
