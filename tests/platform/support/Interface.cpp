// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <Foundation/NSBundle.h>
#include <Foundation/dispatch.h>

#include <QApplication>
#include <QFile>

using namespace platform;

namespace testing_support {

std::string property(const std::string& name, const std::string& value) {
    return "<property name='" + name + "' stdset='0'><string>" + value + "</string></property>";
}

std::string property(const std::string& name, const std::vector<std::string>& values) {
    std::string list;
    for (const auto& value : values)
        list += "<string>" + value + "</string>";
    return "<property name='" + name + "' stdset='0'><stringlist>" + list + "</stringlist></property>";
}

std::string setting(const std::string& name, const std::string& type, const std::string& value) {
    return "<property name='" + name + "'><" + type + ">" + value + "</" + type + "></property>";
}

std::string widget(const std::string& className, const std::string& name, const std::string& inside) {
    return "<widget class='" + className + "' name='" + name + "'>" + inside + "</widget>";
}

std::string column(const std::vector<std::string>& widgets) {
    std::string items;
    for (const auto& each : widgets)
        items += "<item>" + each + "</item>";
    return "<layout class='QVBoxLayout'>" + items + "</layout>";
}

std::string customClass(const std::string& name, const std::string& extends) {
    return "<customwidget><class>" + name + "</class><extends>" + extends +
           "</extends><header>x.h</header></customwidget>";
}

InterfaceTest::InterfaceTest() {
    setMainQueue(queue);
    write("Info.plist", "<?xml version='1.0'?><plist version='1.0'><dict><key>CFBundleName</key><string>Test</string>"
                        "</dict></plist>");
}

InterfaceTest::~InterfaceTest() {
    setMainQueue(nullptr);
}

void InterfaceTest::write(const std::string& name, const std::string& text) {
    QFile file(folder.filePath(QString::fromStdString(name)));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray::fromStdString(text));
}

void InterfaceTest::loadFile(const std::vector<std::string>& outlets, const std::string& inside,
                             const std::string& customClasses) {
    write("Main.ui", "<?xml version='1.0' encoding='UTF-8'?><ui version='4.0'><class>_window</class>" +
                         widget("QWidget", "_window", inside) + "<customwidgets>" + customClasses +
                         "</customwidgets></ui>");
    ownerClass = std::make_unique<ClassRegistration>(Owner::describe(outlets));
    const auto bundle = NSBundle::bundleWithPath(folder.path().toStdString());
    ASSERT_TRUE(bundle);
    contents = loadNibNamedOwner(*bundle, u"Main", owner);
}

void InterfaceTest::show(const std::vector<std::string>& outlets, const std::string& inside,
                         const std::string& customClasses) {
    loadFile(outlets, inside, customClasses);
    ASSERT_TRUE(contents.window);
    EXPECT_EQ(contents.problems, std::vector<std::string>());
    window = std::make_unique<QMainWindow>();
    window->setCentralWidget(widgetOf(*contents.window->contentView()));
    window->resize(400, 300);
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    if (auto* focused = window->focusWidget())
        focused->clearFocus();
    owner->taken();
}

bool InterfaceTest::hasProblem(const std::string& part) const {
    for (const auto& problem : contents.problems)
        if (problem.find(part) != std::string::npos)
            return true;
    return false;
}

} // namespace testing_support
