// SPDX-License-Identifier: MIT
#include <AppKit/NSNib.h>

#include "Alert.h"
#include "NibWidgets.h"
#include "QtToolkit.h"
#include "Text.h"
#include "Window.h"

#include <AppKit/NSTabView.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSViewController.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSClass.h>

#include <QApplication>
#include <QLayout>

#include <set>

namespace platform {

namespace {

using qt::fromQt;
using qt::NibKind;

std::string plain(const QString& text) {
    return text.toStdString();
}

/// The dynamic properties that mean something here.
const std::set<QString>& knownProperties() {
    static const std::set<QString> names{"action",
                                         "allowsMagnification",
                                         "cellClass",
                                         "cells",
                                         "columns",
                                         "controller",
                                         "controllerOutlet",
                                         "delegate",
                                         "dataSource",
                                         "formatter",
                                         "maximumLength",
                                         "identifier",
                                         "increment",
                                         "keyboardGroup",
                                         "maxValue",
                                         "minValue",
                                         "multipleSelection",
                                         "images",
                                         "outlets",
                                         "pullsDown",
                                         "sendsActionOnEndEditing",
                                         "tag",
                                         "tags",
                                         "value"};
    return names;
}

class InterfaceReader final : private qt::NibText {
public:
    InterfaceReader(const NSBundle& bundle, const std::shared_ptr<NSObject>& owner)
        : m_bundle(bundle), m_owner(owner) {}

    NibContents read(const std::u16string& name) {
        const auto url = m_bundle.URLForResourceWithExtension(name, u"ui");
        const auto refuse = [&](const std::string& reason) {
            report(toUtf8(name) + ".ui cannot be read: " + reason);
            return std::move(m_contents);
        };
        if (!url)
            return refuse("the bundle does not have it");
        if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
            return refuse("there is no QApplication, which widgets need");
        auto* root = m_loader.loadFile(QString::fromStdString(url->path().string()));
        if (!root)
            return refuse(plain(m_loader.errorString()));
        qt::noteCancelTitle(m_bundle.localizedStringForKeyValueTable(u"Cancel", u"", u""));
        for (const auto& className : m_loader.unknownClasses())
            report("the class " + plain(className) + " is not known here; its views are left out");
        const auto* kind = m_loader.kindOf(m_loader.classOf(root));
        if (!kind || kind->role == NibKind::Role::cell) {
            delete root;
            return refuse("its outermost widget is no view");
        }
        root->setWindowTitle(qt::toQt(localized(root->windowTitle())));
        m_named["owner"] = m_owner;
        const auto view = build(*root, nullptr, {m_owner, true});
        m_contents.window = std::make_shared<NSWindow>(view);
        qt::frameRoot(*root, m_contents.window);
        m_placed.back().window = m_contents.window; // the root is finished last
        for (const auto& placed : m_placed)
            connect(placed);
        reportUnconnected();
        awake();
        return std::move(m_contents);
    }

private:
    /// Whose outlets and actions a part of the file speaks of.
    struct Scope {
        std::shared_ptr<NSObject> owner; // null inside a controller that could not be made
        bool ofFile = false;
    };
    struct Placed {
        std::shared_ptr<NSView> view;
        std::shared_ptr<NSWindow> window; // of the root
        QWidget* widget = nullptr;
        NibKind::Role role{};
        Scope scope;
    };
    enum class Connected { yes, no, wrongType };

    std::u16string localized(const QString& text) const override {
        return text.isEmpty() ? std::u16string() : m_bundle.localizedStringForKeyValueTable(fromQt(text), u"", u"");
    }
    std::shared_ptr<NSView> viewOf(const QWidget* widget) const override { return m_views.value(widget); }
    std::u16string fileOf(const QString& name) override {
        const auto path = m_bundle.bundlePath() / name.toStdString();
        std::error_code error;
        if (std::filesystem::is_regular_file(path, error))
            return fromUtf8(std::filesystem::absolute(path, error).string());
        report(plain(name) + ": the bundle does not have it");
        return {};
    }
    void report(const std::string& problem) override { m_contents.problems.push_back(problem); }
    void report(const QWidget& widget, const std::string& problem) {
        report(plain(widget.objectName()) + ": " + problem);
    }

    // 1. Views, from the inside out.

    std::shared_ptr<NSView> build(QWidget& widget, const std::shared_ptr<NSView>& parent, const Scope& scope) {
        const auto className = m_loader.classOf(&widget);
        const auto* kind = m_loader.kindOf(className);
        if (!className.isEmpty() && !kind)
            report(widget, "the class " + plain(className) + " is not known here");
        if (!kind || kind->role == NibKind::Role::cell || isSegment(widget)) {
            if (kind && kind->role == NibKind::Role::cell && !isInside(widget, u"NSMatrix"))
                report(widget, "a choice stands in no NSMatrix");
            for (auto* child : childWidgets(widget))
                build(*child, parent, scope);
            return nullptr;
        }
        auto view = makeView(widget, className, *kind);
        view->setToolTip(localized(widget.toolTip()));
        view->setAccessibilityLabel(localized(widget.accessibleName()));
        if (const auto control = std::dynamic_pointer_cast<NSControl>(view)) {
            control->setTag(widget.property("tag").toLongLong());
            control->setEnabled(!widget.testAttribute(Qt::WA_ForceDisabled));
        }
        if (parent)
            parent->addSubview(view);
        m_views.insert(&widget, view);
        name(widget.objectName(), view);
        const auto inside = scopeInside(widget, view, scope);
        for (auto* child : childWidgets(widget))
            build(*child, view, inside);
        kind->show(view, widget, *this);
        m_placed.push_back({view, nullptr, &widget, kind->role, scope});
        return view;
    }

    static std::vector<QWidget*> childWidgets(const QWidget& widget) {
        std::vector<QWidget*> found;
        for (auto* child : widget.children())
            if (child->isWidgetType())
                found.push_back(static_cast<QWidget*>(child));
        return found;
    }

    bool isInside(const QWidget& widget, std::u16string_view viewClass) const {
        for (const auto* outer = widget.parentWidget(); outer; outer = outer->parentWidget())
            if (const auto* kind = m_loader.kindOf(m_loader.classOf(outer)); kind && kind->viewClass == viewClass)
                return true;
        return false;
    }
    bool isSegment(const QWidget& widget) const {
        return m_loader.classOf(&widget) == QLatin1String("QToolButton") && isInside(widget, u"NSSegmentedControl");
    }

    std::shared_ptr<NSView> makeView(const QWidget& widget, const QString& className, const NibKind& kind) {
        const auto* usual = NSClassFromString(kind.viewClass);
        const auto* own = NSClassFromString(fromQt(className));
        if (!own && !className.startsWith(QLatin1Char('Q')) && className != QLatin1String("Line"))
            report(widget, "the class " + plain(className) + " is not registered; a " + toUtf8(usual->name) +
                               " stands in its place");
        if (own && own->make && own->isSubclassOf(usual))
            return std::dynamic_pointer_cast<NSView>(own->make());
        return std::dynamic_pointer_cast<NSView>(usual->make());
    }

    void name(const QString& objectName, const std::shared_ptr<NSObject>& object) {
        if (!objectName.isEmpty() && !m_named.emplace(objectName, object).second)
            report(plain(objectName) + ": two objects have this name");
    }

    Scope scopeInside(const QWidget& page, const std::shared_ptr<NSView>& view, const Scope& outer) {
        const auto className = page.property("controller").toString();
        if (className.isEmpty())
            return outer;
        const auto* cls = NSClassFromString(fromQt(className));
        const auto controller = cls && cls->make ? std::dynamic_pointer_cast<NSViewController>(cls->make()) : nullptr;
        if (!controller) {
            report(page, "no view controller class " + plain(className) + " is registered");
            return {};
        }
        controller->setView(view);
        m_contents.objects.push_back(controller);
        if (const auto outlet = page.property("controllerOutlet").toString(); !outlet.isEmpty()) {
            name(outlet, controller);
            connectOrReport(page, outer.owner, outlet, controller);
        }
        return {controller, false};
    }

    // 2. Connections, when all objects stand.

    static Connected connectOutlet(const std::shared_ptr<NSObject>& owner, const QString& outletName,
                                   const std::shared_ptr<NSObject>& object) {
        const auto* table = owner ? owner->classTable() : nullptr;
        const auto* outlet = table ? table->outlet(fromQt(outletName)) : nullptr;
        if (!outlet)
            return Connected::no;
        return outlet->connect(*owner, object) ? Connected::yes : Connected::wrongType;
    }

    void connectOrReport(const QWidget& widget, const std::shared_ptr<NSObject>& owner, const QString& outletName,
                         const std::shared_ptr<NSObject>& object) {
        if (!owner)
            return;
        const auto ownerName = toUtf8(owner->className());
        switch (connectOutlet(owner, outletName, object)) {
        case Connected::no:
            report(widget, ownerName + " has no outlet " + plain(outletName));
            break;
        case Connected::wrongType:
            report(widget, "the outlet " + plain(outletName) + " of " + ownerName + " is of another type than " +
                               toUtf8(object->className()));
            break;
        case Connected::yes:
            break;
        }
    }

    void connect(const Placed& placed) {
        const auto& widget = *placed.widget;
        const auto object = placed.window ? std::shared_ptr<NSObject>(placed.window) : placed.view;
        if (!placed.scope.owner)
            return;
        connectName(placed);
        for (const auto& outlet : widget.property("outlets").toStringList()) {
            const auto dot = outlet.indexOf(QLatin1Char('.'));
            if (dot < 0)
                connectOrReport(widget, placed.scope.owner, outlet, object);
            else if (const auto owner = objectNamed(widget, outlet.left(dot)))
                connectOrReport(widget, owner, outlet.mid(dot + 1), object);
        }
        connectAction(placed);
        bindKey(placed);
        connectDelegates(placed);
        checkProperties(widget);
    }

    /// A name is an outlet of the scope's owner, inside a controller's page or else of the file's.
    void connectName(const Placed& placed) {
        const auto& widget = *placed.widget;
        const auto name = widget.objectName();
        if (placed.window) {
            // The frame or, for a controller with a file of its own, the view itself.
            if (connectOutlet(m_owner, name, placed.window) != Connected::yes)
                connectOutlet(m_owner, name, placed.view);
            return;
        }
        auto outletOwner = placed.scope.owner;
        if (!placed.scope.ofFile && !hasOutlet(outletOwner, name))
            outletOwner = m_owner;
        if (hasOutlet(outletOwner, name)) {
            connectOrReport(widget, outletOwner, name, placed.view);
            return;
        }
        const bool reached = widget.property("action").isValid() || widget.property("value").isValid() ||
                             widget.property("outlets").isValid() || name.startsWith(QLatin1String("qt_"));
        if (placed.role == NibKind::Role::control && !reached)
            connectOrReport(widget, placed.scope.owner, name, placed.view);
    }

    static bool hasOutlet(const std::shared_ptr<NSObject>& owner, const QString& name) {
        const auto* table = owner ? owner->classTable() : nullptr;
        return table && table->outlet(fromQt(name));
    }

    std::shared_ptr<NSObject> objectNamed(const QWidget& widget, const QString& name) {
        const auto found = m_named.find(name);
        if (found != m_named.end())
            return found->second;
        report(widget, "there is no object " + plain(name));
        return nullptr;
    }

    void connectAction(const Placed& placed) {
        const auto selector = placed.widget->property("action").toString();
        const auto control = std::dynamic_pointer_cast<NSControl>(placed.view);
        if (control && !selector.isEmpty()) {
            control->setTarget(placed.scope.owner);
            control->setAction(fromQt(selector));
        }
        checkAction(placed, selector);
        for (const auto& cell : placed.widget->property("cells").toStringList())
            checkAction(placed, cell.section(QLatin1Char(' '), 1).trimmed());
    }

    void checkAction(const Placed& placed, const QString& selector) {
        const auto* table = placed.scope.owner->classTable();
        if (!selector.isEmpty() && !(table && table->action(fromQt(selector))))
            report(*placed.widget, toUtf8(placed.scope.owner->className()) + " has no action " + plain(selector));
    }

    void bindKey(const Placed& placed) {
        const auto& owner = placed.scope.owner;
        const auto key = placed.widget->property("value").toString();
        if (key.isEmpty())
            return;
        const auto* table = owner->classTable();
        const auto* entry = table ? table->key(fromQt(key)) : nullptr;
        const auto control = std::dynamic_pointer_cast<NSControl>(placed.view);
        if (!entry)
            report(*placed.widget, toUtf8(owner->className()) + " has no key " + plain(key));
        else if (!control)
            report(*placed.widget, "only a control shows the value of a key");
        else
            control->bindValueToObjectWithKey(owner, fromQt(key));
    }

    /// Gives `view` the named object as delegate or data source, if it can be one.
    template <class Told, class View>
    void give(const QWidget& widget, const char* property, const std::shared_ptr<View>& view,
              void (View::*setter)(const std::shared_ptr<Told>&)) {
        const auto name = widget.property(property).toString();
        if (name.isEmpty() || !view)
            return;
        const auto object = objectNamed(widget, name);
        const auto told = std::dynamic_pointer_cast<Told>(object);
        if (told)
            ((*view).*setter)(told);
        else if (object)
            report(widget, plain(name) + " cannot be its " + property);
    }

    void connectDelegates(const Placed& placed) {
        const auto table = std::dynamic_pointer_cast<NSTableView>(placed.view);
        give(*placed.widget, "dataSource", table, &NSTableView::setDataSource);
        give(*placed.widget, "delegate", table, &NSTableView::setDelegate);
        give(*placed.widget, "delegate", std::dynamic_pointer_cast<NSTabView>(placed.view), &NSTabView::setDelegate);
        give(*placed.widget, "delegate", std::dynamic_pointer_cast<NSTextField>(placed.view),
             &NSTextField::setDelegate);
    }

    void checkProperties(const QWidget& widget) {
        for (const auto& property : widget.dynamicPropertyNames())
            if (!property.startsWith("_q_") && !property.startsWith("qt_") &&
                !knownProperties().contains(QString::fromUtf8(property)))
                report(widget, "the property " + property.toStdString() + " means nothing here");
        const auto cellClass = widget.property("cellClass").toString();
        if (!cellClass.isEmpty() && !NSClassFromString(fromQt(cellClass)))
            report(widget, "the class " + plain(cellClass) + " is not registered");
    }

    // 3. When all is connected.

    void reportUnconnected() {
        reportUnconnected(*m_owner);
        for (const auto& controller : m_contents.objects)
            reportUnconnected(*controller);
        for (const auto& placed : m_placed)
            reportUnconnected(*placed.view);
    }

    void reportUnconnected(const NSObject& owner) {
        for (const auto* cls = owner.classTable(); cls; cls = cls->superclass())
            for (const auto& [outletName, outlet] : cls->outlets)
                if (outlet.needed && !outlet.object(owner))
                    report("the outlet " + toUtf8(outletName) + " of " + toUtf8(owner.className()) +
                           " is not connected");
    }

    void awake() {
        for (const auto& placed : m_placed)
            placed.view->awakeFromNib();
        for (const auto& controller : m_contents.objects)
            controller->awakeFromNib();
        m_owner->awakeFromNib();
        for (const auto& object : m_contents.objects)
            std::static_pointer_cast<NSViewController>(object)->viewDidLoad();
    }

    const NSBundle& m_bundle;
    std::shared_ptr<NSObject> m_owner;
    qt::NibWidgetLoader m_loader;
    NibContents m_contents;
    QHash<const QWidget*, std::shared_ptr<NSView>> m_views;
    std::map<QString, std::shared_ptr<NSObject>> m_named;
    std::vector<Placed> m_placed;
};

} // namespace

NibContents qt::loadNib(const NSBundle& bundle, const std::u16string& name, const std::shared_ptr<NSObject>& owner) {
    return InterfaceReader(bundle, owner).read(name);
}

} // namespace platform
