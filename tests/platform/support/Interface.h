// SPDX-License-Identifier: MIT
#pragma once

#include "Owner.h"

#include "../../support/FakeQueue.h"

#include <AppKit/NSNib.h>
#include <PlatformQt/Bridge.h>

#include <QMainWindow>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace testing_support {

/// A dynamic property of an interface file.
std::string property(const std::string& name, const std::string& value);
std::string property(const std::string& name, const std::vector<std::string>& values);
/// A property that the widget's class has, with its type: "bool", "string", "number".
std::string setting(const std::string& name, const std::string& type, const std::string& value);
std::string widget(const std::string& className, const std::string& name, const std::string& inside = {});
/// Widgets one below the other.
std::string column(const std::vector<std::string>& widgets);
std::string customClass(const std::string& name, const std::string& extends);

/// Loads interface files from a bundle of its own and shows them in a window, with a clock that stands still.
class InterfaceTest : public ::testing::Test {
protected:
    InterfaceTest();
    ~InterfaceTest() override;

    /// Loads a file whose root holds `inside`, for an owner with these outlets. Problems are the test's to look at.
    void loadFile(const std::vector<std::string>& outlets, const std::string& inside,
                  const std::string& customClasses = {});
    /// The same, where nothing may be wrong; then shows the root in a window.
    void show(const std::vector<std::string>& outlets, const std::string& inside,
              const std::string& customClasses = {});
    void write(const std::string& name, const std::string& text);

    template <class T>
    std::shared_ptr<T> view(const std::string& outlet) const {
        return owner->outlet<T>(outlet);
    }
    template <class Widget = QWidget>
    Widget* shown(const std::string& outlet) const {
        const auto found = view<platform::NSView>(outlet);
        return found ? dynamic_cast<Widget*>(platform::widgetOf(*found)) : nullptr;
    }
    bool hasProblem(const std::string& part) const;

    QTemporaryDir folder;
    std::shared_ptr<FakeQueue> queue = std::make_shared<FakeQueue>();
    std::shared_ptr<Owner> owner = std::make_shared<Owner>();
    std::unique_ptr<platform::ClassRegistration> ownerClass;
    platform::NibContents contents;
    std::unique_ptr<QMainWindow> window;
};

} // namespace testing_support
