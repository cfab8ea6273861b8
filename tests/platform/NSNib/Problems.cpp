// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSTokenField.h>
#include <Foundation/NSBundle.h>

using namespace platform;
using namespace testing_support;

namespace {

class NibProblems : public InterfaceTest {
protected:
    void onlyProblem(const std::string& part) {
        EXPECT_EQ(contents.problems.size(), 1U);
        EXPECT_TRUE(hasProblem(part)) << ::testing::PrintToString(contents.problems);
    }
};

TEST_F(NibProblems, AFileThatIsNotThereIsReported) {
    const auto bundle = NSBundle::bundleWithPath(folder.path().toStdString());
    contents = loadNibNamedOwner(*bundle, u"Missing", owner);
    EXPECT_FALSE(contents.window);
    onlyProblem("Missing.ui cannot be read");
}

TEST_F(NibProblems, AFileThatIsNoInterfaceIsReported) {
    write("Broken.ui", "<ui><widget class=");
    const auto bundle = NSBundle::bundleWithPath(folder.path().toStdString());
    contents = loadNibNamedOwner(*bundle, u"Broken", owner);
    EXPECT_FALSE(contents.window);
    onlyProblem("Broken.ui cannot be read");
}

TEST_F(NibProblems, AFileWhoseOutermostWidgetIsNoViewIsReported) {
    write("Slider.ui", R"(<ui version="4.0"><class>view</class><widget class="QSlider" name="view">
        <widget class="QPushButton" name="saveBtn"/></widget></ui>)");
    const auto bundle = NSBundle::bundleWithPath(folder.path().toStdString());
    contents = loadNibNamedOwner(*bundle, u"Slider", owner);
    EXPECT_FALSE(contents.window);
    EXPECT_TRUE(hasProblem("Slider.ui cannot be read: its outermost widget is no view"))
        << ::testing::PrintToString(contents.problems);
}

TEST_F(NibProblems, ALayoutThatIsNotKnownIsReported) {
    write("Odd.ui", R"(<ui version="4.0"><class>view</class><widget class="QWidget" name="view">
        <layout class="QCircleLayout" name="layout"><item><widget class="QStackedWidget" name="qt_pages"/></item></layout>
        </widget></ui>)");
    const auto bundle = NSBundle::bundleWithPath(folder.path().toStdString());
    contents = loadNibNamedOwner(*bundle, u"Odd", owner);
    EXPECT_TRUE(contents.window);
    EXPECT_TRUE(hasProblem("QCircleLayout")) << ::testing::PrintToString(contents.problems);
}

TEST_F(NibProblems, AControlThatNobodyReachesIsReported) {
    loadFile({}, column({widget("QPushButton", "saveBtn")}));
    onlyProblem("saveBtn: Owner has no outlet saveBtn");
}

TEST_F(NibProblems, AControlOfTheToolkitsOwnIsNot) {
    loadFile({}, column({widget("QPushButton", "qt_saveBtn")}));
    EXPECT_EQ(contents.problems, std::vector<std::string>());
}

TEST_F(NibProblems, AFurtherOutletThatIsNotThereIsReported) {
    loadFile({"saveBtn"}, column({widget("QPushButton", "saveBtn",
                                         property("outlets", std::vector<std::string>{"storeBtn", "nobody.x"}))}));
    EXPECT_EQ(contents.problems.size(), 2U);
    EXPECT_TRUE(hasProblem("saveBtn: Owner has no outlet storeBtn"));
    EXPECT_TRUE(hasProblem("saveBtn: there is no object nobody"));
}

TEST_F(NibProblems, AnOutletOfAnotherTypeIsReported) {
    loadFile({"theWindow?"}, column({widget("QPushButton", "theWindow")}));
    onlyProblem("theWindow: the outlet theWindow of Owner is of another type than NSButton");
}

TEST_F(NibProblems, AnActionThatIsNotThereIsReported) {
    loadFile({"saveBtn"}, column({widget("QPushButton", "saveBtn", property("action", "save:"))}));
    onlyProblem("saveBtn: Owner has no action save:");
}

TEST_F(NibProblems, ACellsActionThatIsNotThereIsReported) {
    loadFile({"table"}, column({widget("QTableView", "table",
                                       property("columns", std::vector<std::string>{"name"}) +
                                           property("cells", std::vector<std::string>{"Name save:", "Kind"}))}));
    onlyProblem("table: Owner has no action save:");
}

TEST_F(NibProblems, ATableWithoutColumnsIsReported) {
    loadFile({"table"}, column({widget("QTableView", "table")}));
    onlyProblem("table: the table has no columns");
}

TEST_F(NibProblems, AKeyThatIsNotThereIsReported) {
    loadFile({"field"}, column({widget("QLineEdit", "field", property("value", "numbr"))}));
    onlyProblem("field: Owner has no key numbr");
    loadFile({"field"}, column({widget("QLineEdit", "field", property("value", "number"))}));
    EXPECT_EQ(contents.problems, std::vector<std::string>());
}

TEST_F(NibProblems, ANeededOutletThatIsLeftOpenIsReported) {
    loadFile({"saveBtn", "spareBtn?"}, "");
    onlyProblem("the outlet saveBtn of Owner is not connected");
}

TEST_F(NibProblems, ANeededOutletOfAControllerThatIsLeftOpenIsReported) {
    const ClassRegistration registration(Controller::describe());
    loadFile({}, column({widget("QWidget", "aPage", property("controller", "PageController"))}));
    onlyProblem("the outlet button of PageController is not connected");
}

TEST_F(NibProblems, AControllerClassThatIsNotRegisteredIsReportedOnce) {
    loadFile({}, column({widget("QWidget", "aPage",
                                property("controller", "NoController") +
                                    column({widget("QPushButton", "button", property("action", "act:"))}))}));
    onlyProblem("aPage: no view controller class NoController is registered");
}

TEST_F(NibProblems, AControllersOutletThatIsNotThereIsReported) {
    const ClassRegistration registration(Controller::describe());
    loadFile({}, column({widget("QWidget", "aPage",
                                property("controller", "PageController") + property("controllerOutlet", "pageVC") +
                                    column({widget("QPushButton", "button")}))}));
    onlyProblem("aPage: Owner has no outlet pageVC");
}

TEST_F(NibProblems, AClassThatIsNotRegisteredIsReportedAndItsBaseStandsIn) {
    loadFile({"field"}, column({widget("PlaceholderTokenField", "field")}),
             customClass("PlaceholderTokenField", "QTextEdit"));
    onlyProblem("the class PlaceholderTokenField is not registered; a NSTokenField stands in its place");
    EXPECT_TRUE(view<NSTokenField>("field"));
}

TEST_F(NibProblems, AWidgetWithoutCounterpartIsReported) {
    loadFile({}, column({widget("QSlider", "slider")}));
    onlyProblem("slider: the class QSlider is not known here");
}

TEST_F(NibProblems, AClassThatNobodyKnowsIsReported) {
    loadFile({}, column({widget("Mystery", "thing")}));
    onlyProblem("Mystery");
}

TEST_F(NibProblems, ACellClassThatIsNotRegisteredIsReported) {
    loadFile({"popUp"}, column({widget("QComboBox", "popUp", property("cellClass", "NoCell"))}));
    onlyProblem("popUp: the class NoCell is not registered");
}

TEST_F(NibProblems, AChoiceOutsideAMatrixIsReported) {
    loadFile({}, column({widget("QRadioButton", "choice")}));
    onlyProblem("choice: a choice stands in no NSMatrix");
}

TEST_F(NibProblems, APageWithoutIdentifierIsReported) {
    loadFile({"tabs"}, column({widget("QTabWidget", "tabs", widget("QWidget", "first"))}));
    onlyProblem("first: the page has no identifier");
}

TEST_F(NibProblems, AMisspeltPropertyIsReported) {
    loadFile({"saveBtn"}, column({widget("QPushButton", "saveBtn", property("acton", "act:"))}));
    onlyProblem("saveBtn: the property acton means nothing here");
}

TEST_F(NibProblems, ADelegateThatCannotBeOneIsReported) {
    loadFile({"table", "saveBtn"},
             column({widget("QPushButton", "saveBtn"),
                     widget("QTableView", "table",
                            property("columns", std::vector<std::string>{"name"}) + property("delegate", "saveBtn"))}));
    onlyProblem("table: saveBtn cannot be its delegate");
}

TEST_F(NibProblems, TwoObjectsOfOneNameAreReported) {
    loadFile({"saveBtn"}, column({widget("QPushButton", "saveBtn"), widget("QPushButton", "saveBtn")}));
    onlyProblem("saveBtn: two objects have this name");
}

} // namespace
