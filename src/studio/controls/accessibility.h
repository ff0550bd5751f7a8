#pragma once

#include <QAccessible>
#include <QString>
#include <QWidget>

namespace brisklet {

// What assistive technology is told about widgets beyond their names.

/// Has all widgets of a class answered for by an interface made for them. To be called before anybody asks
/// for one.
template <class Widget, class Interface>
void useAccessibleInterface() {
  [[maybe_unused]] static const bool isInstalled = [] {
    QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
      auto* widget = qobject_cast<Widget*>(object);
      return widget ? new Interface(widget) : nullptr;
    });
    return true;
  }();
}

/// Gives a widget another role than that of its class. To be called before anybody asks for it.
void setAccessibleRole(QWidget* widget, QAccessible::Role role);

/// Leaves a widget out of the tree: it only decorates, or serves the pointer alone.
void hideFromAccessibility(QWidget* widget);

/// Has a text said that no widget shows.
void announce(QWidget* window, const QString& text);

}  // namespace brisklet
