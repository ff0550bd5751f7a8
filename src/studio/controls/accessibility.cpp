#include "studio/controls/accessibility.h"

#include <QAccessibleWidget>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr const char* roleProperty = "accessibleRole";

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  const QVariant role = object && object->isWidgetType() ? object->property(roleProperty) : QVariant();
  return role.isValid() ? new QAccessibleWidget(static_cast<QWidget*>(object),
                                                static_cast<QAccessible::Role>(role.toInt()))
                        : nullptr;
}

}  // namespace

void setAccessibleRole(QWidget* widget, QAccessible::Role role) {
  [[maybe_unused]] static const bool installed = [] {
    QAccessible::installFactory(makeInterface);
    return true;
  }();
  widget->setProperty(roleProperty, static_cast<int>(role));
}

void hideFromAccessibility(QWidget* widget) {
  // Qt leaves widgets of this name out, and has no other way to say it.
  widget->setObjectName(u"qt_rubberband"_s);
}

void announce(QWidget* window, const QString& text) {
  // A notification that comes up is read out, by screen readers that know no announcements, too.
  const QString name = u"announcement"_s;
  auto* announcement = window->findChild<QWidget*>(name, Qt::FindDirectChildrenOnly);
  if (!announcement) {
    announcement = new QWidget(window);
    announcement->setObjectName(name);
    setAccessibleRole(announcement, QAccessible::Notification);
    announcement->setAttribute(Qt::WA_TransparentForMouseEvents);
    announcement->resize(0, 0);
  }
  announcement->hide();
  announcement->setAccessibleName(text);
  announcement->show();
}

}  // namespace brisklet
