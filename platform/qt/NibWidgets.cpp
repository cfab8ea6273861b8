// SPDX-License-Identifier: MIT
#include "NibWidgets.h"

#include "Accessibility.h"
#include "ButtonGroupKeys.h"
#include "ButtonPeer.h"
#include "ColorWellPeer.h"
#include "ImagePeer.h"
#include "MatrixPeer.h"
#include "PopUpPeer.h"
#include "ScrollPeer.h"
#include "SegmentedPeer.h"
#include "StepperPeer.h"
#include "TabPeer.h"
#include "TablePeer.h"
#include "TextFieldPeer.h"
#include "TokenFieldPeer.h"

#include <AppKit/NSImageView.h>
#include <AppKit/NSPopUpButton.h>
#include <AppKit/NSTokenField.h>
#include <Foundation/NSClass.h>
#include <Foundation/NSString.h>

#include <QCheckBox>
#include <QFile>
#include <QHeaderView>
#include <QLocale>
#include <QPushButton>
#include <QXmlStreamReader>

#include <limits>

namespace platform::qt {

namespace {

template <class Widget>
QWidget* make(QWidget* parent) {
    return new Widget(parent);
}

/// A kind's `show` from a function for its own types.
template <class View, class Widget, auto function>
void show(const std::shared_ptr<NSView>& view, QWidget& widget, NibText& text) {
    function(std::static_pointer_cast<View>(view), dynamic_cast<Widget&>(widget), text);
}

QString withoutMarks(QString text) {
    const QString pair(QChar(1));
    return text.replace(QLatin1String("&&"), pair).remove(QLatin1Char('&')).replace(pair, QLatin1String("&"));
}

/// A number of the file, or `otherwise` where it has none.
double numberOf(const QWidget& widget, const char* property, double otherwise) {
    const auto value = widget.property(property);
    return value.isValid() ? value.toDouble() : otherwise;
}

void showPlain(const std::shared_ptr<NSView>& view, QWidget& widget, NibText&) {
    if (widget.property("keyboardGroup").toBool())
        new ButtonGroupKeys(widget);
    view->setPeer(std::make_unique<WidgetPeer>(widget));
}

void showLabel(const std::shared_ptr<NSTextField>& view, QLabel& label, NibText& text) {
    view->setEditable(false);
    view->setStringValue(text.localized(label.buddy() ? withoutMarks(label.text()) : label.text()));
    view->setPeer(makeLabelPeer(label));
}

std::shared_ptr<const NSNumberFormatter> formatterOf(const QWidget& widget, NibText& text) {
    const auto name = widget.property("formatter").toString();
    if (name.isEmpty())
        return nullptr;
    if (name != QLatin1String("decimal") && name != QLatin1String("percent"))
        text.report(widget.objectName().toStdString() + ": there is no formatter " + name.toStdString());
    const auto formatter = std::make_shared<NSNumberFormatter>(
        name == QLatin1String("percent") ? NSNumberFormatterStyle::percent : NSNumberFormatterStyle::decimal);
    formatter->setRange(numberOf(widget, "minValue", formatter->minimum()),
                        numberOf(widget, "maxValue", formatter->maximum()));
    return formatter;
}

/// What the field says where it refuses.
void giveReasons(const NSTextField& view, LineEdit& edit, NibText& text) {
    const auto& formatter = view.formatter();
    const bool ranged = formatter && edit.property("minValue").isValid() && edit.property("maxValue").isValid();
    const auto number = ranged ? stringWithFormat(text.localized(QStringLiteral("Enter a number from %@ to %@.")),
                                                  {formatter->stringFromNumber(formatter->minimum()),
                                                   formatter->stringFromNumber(formatter->maximum())})
                               : text.localized(QStringLiteral("Enter a number."));
    const auto length = stringWithFormat(text.localized(QStringLiteral("No more than %@ characters fit in here.")),
                                         {fromQt(QLocale().toString(static_cast<qulonglong>(view.maximumLength())))});
    edit.setReasons(toQt(number), toQt(length));
}

void showField(const std::shared_ptr<NSTextField>& view, LineEdit& edit, NibText& text) {
    view->setFormatter(formatterOf(edit, text));
    // Numbers stand at the end of the line whichever way their own letters run.
    if (edit.alignment() & Qt::AlignRight)
        edit.setAlignment((edit.isLeftToRight() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute |
                          Qt::AlignVCenter);
    if (const int limit = edit.maxLength(); limit != std::numeric_limits<int>::max())
        view->setMaximumLength(static_cast<std::size_t>(limit));
    edit.setMaxLength(std::numeric_limits<int>::max());
    giveReasons(*view, edit, text);
    view->setEditable(!edit.isReadOnly());
    view->setSendsActionOnEndEditing(edit.property("sendsActionOnEndEditing").toBool());
    view->setStringValue(fromQt(edit.text()));
    view->setPeer(makeTextFieldPeer(view, edit));
}

void showTokens(const std::shared_ptr<NSTokenField>& view, TokenEdit& edit, NibText& text) {
    view->setStringValue(fromQt(edit.toPlainText()));
    view->setEditable(!edit.isReadOnly());
    if (const auto limit = edit.property("maximumLength"); limit.isValid())
        view->setMaximumLength(static_cast<std::size_t>(limit.toUInt()));
    edit.setTooLongReason(
        toQt(stringWithFormat(text.localized(QStringLiteral("No more than %@ characters fit in here.")),
                              {fromQt(QLocale().toString(static_cast<qulonglong>(view->maximumLength())))})));
    view->setPeer(makeTokenFieldPeer(view, edit));
}

void showButton(const std::shared_ptr<NSButton>& view, QAbstractButton& button, NibText& text) {
    view->setTitle(text.localized(withoutMarks(button.text())));
    view->setToggles(button.isCheckable());
    view->setState(button.isChecked() ? NSControlStateValueOn : NSControlStateValueOff);
    view->setPeer(makeButtonPeer(view, button));
}

void showStepper(const std::shared_ptr<NSStepper>& view, StepperWidget& widget, NibText&) {
    view->setRange(numberOf(widget, "minValue", view->minValue()), numberOf(widget, "maxValue", view->maxValue()));
    view->setIncrement(numberOf(widget, "increment", view->increment()));
    view->setPeer(makeStepperPeer(view, widget));
}

void showMatrix(const std::shared_ptr<NSMatrix>& view, QWidget& widget, NibText& text) {
    std::vector<ChoiceButton*> choices;
    for (auto* button : widget.findChildren<QRadioButton*>()) {
        auto* choice = dynamic_cast<ChoiceButton*>(button);
        if (!choice)
            continue;
        const auto tag = choice->property("tag").toLongLong();
        view->addCell(text.localized(withoutMarks(choice->text())), tag);
        choices.push_back(choice);
        if (choice->isChecked())
            view->selectCellWithTag(tag);
    }
    view->setPeer(makeMatrixPeer(view, widget, choices));
}

void showSegments(const std::shared_ptr<NSSegmentedControl>& view, QWidget& widget, NibText& text) {
    std::vector<QToolButton*> buttons;
    for (auto* button : widget.findChildren<QToolButton*>()) {
        button->setText(withoutShortcut(text.localized(withoutMarks(button->text()))));
        button->setToolTip(toQt(text.localized(button->toolTip())));
        button->setAccessibleName(toQt(text.localized(button->accessibleName())));
        button->setCheckable(true);
        buttons.push_back(button);
    }
    view->setSegmentCount(static_cast<NSInteger>(buttons.size()));
    for (std::size_t i = 0; i < buttons.size(); ++i)
        view->setSelectedForSegment(buttons[i]->isChecked(), static_cast<NSInteger>(i));
    view->setPeer(makeSegmentedPeer(view, widget, buttons));
}

void showColorWell(const std::shared_ptr<NSColorWell>& view, ColorWellWidget& widget, NibText&) {
    view->setPeer(makeColorWellPeer(view, widget));
}

void showImage(const std::shared_ptr<NSImageView>& view, ImageWidget& widget, NibText&) {
    view->setPeer(makeImagePeer(widget));
}

void showScroll(const std::shared_ptr<NSScrollView>& view, ScrollWidget& widget, NibText&) {
    view->setAllowsMagnification(widget.property("allowsMagnification").toBool());
    view->setPeer(makeScrollPeer(view, widget));
}

std::string nameOf(const QWidget& widget) {
    return widget.objectName().toStdString();
}

void showPopUp(const std::shared_ptr<NSPopUpButton>& view, PopUpWidget& widget, NibText& text) {
    if (const auto cellClass = widget.property("cellClass").toString(); !cellClass.isEmpty()) {
        const auto* cls = NSClassFromString(fromQt(cellClass));
        const auto cell = cls && cls->make ? std::dynamic_pointer_cast<NSPopUpButtonCell>(cls->make()) : nullptr;
        if (cell)
            view->setCell(cell);
        else if (cls)
            text.report(nameOf(widget) + ": " + cellClass.toStdString() + " cannot be its cell");
    }
    view->setPullsDown(widget.property("pullsDown").toBool());
    const auto images = widget.property("images").toStringList();
    const auto tags = widget.property("tags").toStringList();
    if (!tags.isEmpty() && tags.size() != widget.count())
        text.report(nameOf(widget) + ": there are not as many tags as items");
    for (int i = 0; i < widget.count(); ++i) {
        const auto item = view->menu()->addItemWithTitleActionKeyEquivalent(text.localized(widget.itemText(i)), {}, {});
        item->setTag(i < tags.size() ? tags[i].toLongLong() : 0);
        if (i < images.size() && !images[i].isEmpty())
            item->setImageNamed(text.fileOf(images[i]));
    }
    if (widget.currentIndex() >= 0)
        view->selectItemAtIndex(widget.currentIndex());
    view->setPeer(makePopUpPeer(view, widget));
}

template <class Pages>
void addPages(const std::shared_ptr<NSTabView>& view, const Pages& pages, NibText& text) {
    for (int i = 0; i < pages.count(); ++i) {
        const auto* page = pages.widget(i);
        const auto identifier = page->property("identifier").toString();
        if (identifier.isEmpty())
            text.report(nameOf(*page) + ": the page has no identifier");
        auto item = std::make_shared<NSTabViewItem>(fromQt(identifier), text.viewOf(page));
        if constexpr (std::is_base_of_v<QTabWidget, Pages>)
            item->setLabel(text.localized(withoutMarks(pages.tabText(i))));
        view->addTabViewItem(item);
    }
}

void showTabs(const std::shared_ptr<NSTabView>& view, AskingTabWidget& tabs, NibText& text) {
    addPages(view, tabs, text);
    view->setPeer(makeTabPeer(view, tabs));
}

void showStack(const std::shared_ptr<NSTabView>& view, QStackedWidget& stack, NibText& text) {
    addPages(view, stack, text);
    view->setPeer(makeStackPeer(stack));
}

void showTable(const std::shared_ptr<NSTableView>& view, TableWidget& table, NibText& text) {
    for (const auto& identifier : table.property("columns").toStringList())
        view->addTableColumn(std::make_shared<NSTableColumn>(fromQt(identifier)));
    if (view->tableColumns().empty())
        text.report(nameOf(table) + ": the table has no columns");
    for (const auto& cell : table.property("cells").toStringList())
        view->registerCell(fromQt(cell.section(QLatin1Char(' '), 0, 0)),
                           fromQt(cell.section(QLatin1Char(' '), 1).trimmed()));
    view->setAllowsMultipleSelection(table.property("multipleSelection").toBool());
    if (!table.horizontalHeader()->isHidden())
        view->setHeaderView(std::make_shared<NSTableHeaderView>());
    view->setPeer(makeTablePeer(view, table));
}

using Role = NibKind::Role;

const QHash<QString, NibKind>& kinds() {
    static const auto table = [] {
        const NibKind plain{u"NSView", Role::container, nullptr, showPlain};
        const NibKind label{u"NSTextField", Role::label, nullptr, show<NSTextField, QLabel, showLabel>};
        const NibKind field{u"NSTextField", Role::control, make<LineEdit>, show<NSTextField, LineEdit, showField>};
        const NibKind tokens{u"NSTokenField", Role::control, make<TokenEdit>,
                             show<NSTokenField, TokenEdit, showTokens>};
        const auto button = [](QWidget* (*makeWidget)(QWidget*)) {
            return NibKind{u"NSButton", Role::control, makeWidget, show<NSButton, QAbstractButton, showButton>};
        };
        const NibKind popUp{u"NSPopUpButton", Role::control, make<PopUpWidget>,
                            show<NSPopUpButton, PopUpWidget, showPopUp>};
        const NibKind rows{u"NSTableView", Role::control, make<TableWidget>, show<NSTableView, TableWidget, showTable>};
        return QHash<QString, NibKind>{
            {"QWidget", plain},
            {"QFrame", plain},
            {"Line", plain},
            {"QGroupBox", plain},
            {"QScrollArea", plain},
            {"QSplitter", plain},
            {"NSView", {u"NSView", Role::container, make<QWidget>, showPlain}},
            {"QLabel", label},
            {"QLineEdit", field},
            {"NSTextField", field},
            {"QTextEdit", tokens},
            {"NSTokenField", tokens},
            {"QPushButton", button(make<ToldButton<QPushButton>>)},
            {"NSButton", button(make<ToldButton<QPushButton>>)},
            {"QToolButton", button(make<ToldButton<QToolButton>>)},
            {"QCheckBox", button(make<ToldButton<QCheckBox>>)},
            {"QRadioButton", {nullptr, Role::cell, make<ChoiceButton>, nullptr}},
            {"QComboBox", popUp},
            {"NSPopUpButton", popUp},
            {"QTableView", rows},
            {"NSTableView", rows},
            {"NSStepper",
             {u"NSStepper", Role::control, make<StepperWidget>, show<NSStepper, StepperWidget, showStepper>}},
            {"NSMatrix", {u"NSMatrix", Role::control, make<QWidget>, show<NSMatrix, QWidget, showMatrix>}},
            {"NSSegmentedControl",
             {u"NSSegmentedControl", Role::control, make<QWidget>, show<NSSegmentedControl, QWidget, showSegments>}},
            {"NSColorWell",
             {u"NSColorWell", Role::control, make<ColorWellWidget>, show<NSColorWell, ColorWellWidget, showColorWell>}},
            {"NSImageView",
             {u"NSImageView", Role::control, make<ImageWidget>, show<NSImageView, ImageWidget, showImage>}},
            {"NSScrollView",
             {u"NSScrollView", Role::container, make<ScrollWidget>, show<NSScrollView, ScrollWidget, showScroll>}},
            {"QTabWidget",
             {u"NSTabView", Role::container, make<AskingTabWidget>, show<NSTabView, AskingTabWidget, showTabs>}},
            {"QStackedWidget", {u"NSTabView", Role::container, nullptr, show<NSTabView, QStackedWidget, showStack>}},
        };
    }();
    return table;
}

} // namespace

const NibKind* NibWidgetLoader::kindOf(const QString& className) const {
    auto name = className;
    for (int ancestors = 0; ancestors < 16 && !name.isEmpty(); ++ancestors) {
        if (const auto known = kinds().constFind(name); known != kinds().constEnd())
            return &*known;
        const auto* cls = NSClassFromString(fromQt(name));
        name = cls && !cls->superclassName.empty() ? toQt(cls->superclassName) : m_extends.value(name);
    }
    return nullptr;
}

QWidget* NibWidgetLoader::createWidget(const QString& className, QWidget* parent, const QString& name) {
    const auto* kind = kindOf(className);
    QWidget* widget = nullptr;
    if (kind && kind->makeWidget) {
        widget = kind->makeWidget(parent);
        widget->setObjectName(name);
    } else {
        widget = QUiLoader::createWidget(className, parent, name);
    }
    if (widget)
        m_classes.insert(widget, className);
    else
        m_unknown.push_back(className);
    return widget;
}

QLayout* NibWidgetLoader::createLayout(const QString& className, QObject* parent, const QString& name) {
    if (auto* layout = QUiLoader::createLayout(className, parent, name))
        return layout;
    m_unknown.push_back(className);
    return QUiLoader::createLayout(QStringLiteral("QVBoxLayout"), parent, name);
}

void NibWidgetLoader::readCustomClasses(QIODevice& file) {
    QXmlStreamReader xml(&file);
    QString className;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("customwidget"))
            className.clear();
        else if (xml.name() == QLatin1String("class"))
            className = xml.readElementText();
        else if (xml.name() == QLatin1String("extends"))
            m_extends.insert(className, xml.readElementText());
    }
}

QWidget* NibWidgetLoader::loadFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    installAccessibility();
    readCustomClasses(file);
    file.seek(0);
    clearPluginPaths();
    setTranslationEnabled(false);
    return load(&file);
}

} // namespace platform::qt
