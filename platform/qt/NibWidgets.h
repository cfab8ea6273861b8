// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <QHash>
#include <QUiLoader>

namespace platform::qt {

/// What the showing of a view asks of the file it comes from.
class NibText {
public:
    virtual ~NibText() = default;
    /// A text of the file in the bundle's language.
    virtual std::u16string localized(const QString& text) const = 0;
    /// The view made for a widget of the file, or null.
    virtual std::shared_ptr<NSView> viewOf(const QWidget* widget) const = 0;
    /// The path of a file beside the file being read; reported and empty where there is none of that name.
    virtual std::u16string fileOf(const QString& name) = 0;
    virtual void report(const std::string& problem) = 0;
};

/// One kind of widget an interface file can hold, and the view that goes with it.
struct NibKind {
    enum class Role { container, label, control, cell };
    /// The view's class, unless the file names one of its own.
    const char16_t* viewClass;
    Role role;
    /// Null leaves it to the toolkit's loader.
    QWidget* (*makeWidget)(QWidget* parent);
    /// Gives the view what the file says, and then its peer. The views of what is in it stand already.
    void (*show)(const std::shared_ptr<NSView>& view, QWidget& widget, NibText& text);
};

/// Reads interface files and remembers what each widget is called in them.
class NibWidgetLoader final : public QUiLoader {
public:
    /// Null where the file cannot be read.
    QWidget* loadFile(const QString& path);

    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override;
    /// A vertical one for a class that is not known; the builder of the toolkit would go on with none.
    QLayout* createLayout(const QString& className, QObject* parent, const QString& name) override;

    /// The name of the widget's class in the file; empty for what the toolkit made for itself.
    QString classOf(const QWidget* widget) const { return m_classes.value(widget); }
    /// The kind of the class itself, or else of the nearest class it inherits from; null for one the layer does not
    /// know.
    const NibKind* kindOf(const QString& className) const;
    /// Classes of which no widget could be made; the file's parts of these classes are left out.
    const QStringList& unknownClasses() const { return m_unknown; }

private:
    void readCustomClasses(QIODevice& file);

    QHash<const QWidget*, QString> m_classes;
    QHash<QString, QString> m_extends;
    QStringList m_unknown;
};

} // namespace platform::qt
