#include "studio/timeline_accessible.h"

#include "studio/controls/accessibility.h"
#include "studio/editor/delay_text.h"
#include "studio/timeline_list.h"

#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// What rows and their buttons share: each stands for a part of the list, found by the ping's id.
class AccessiblePart : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  AccessiblePart(TimelineList* list, QString pingId) : list_(list), pingId_(std::move(pingId)) {}

  [[nodiscard]] const QString& pingId() const { return pingId_; }

  bool isValid() const override { return list_ && row() >= 0; }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return list_ ? list_->window()->windowHandle() : nullptr; }
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override {
    if (!isValid()) return {};
    const QRect part = area();
    return {list_->mapToGlobal(part.topLeft()), part.size()};
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }
  QStringList actionNames() const override { return {pressAction()}; }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

 protected:
  [[nodiscard]] qsizetype row() const { return list_->rowOf(pingId_); }
  [[nodiscard]] TimelineList* list() const { return list_; }
  /// Within the list.
  [[nodiscard]] virtual QRect area() const = 0;
  [[nodiscard]] QAccessible::State visibility() const {
    QAccessible::State state;
    state.offscreen = !isValid() || !list_->visibleRegion().intersects(area());
    state.invisible = !isValid() || !list_->isVisible();
    return state;
  }

 private:
  QPointer<TimelineList> list_;
  QString pingId_;
};

class AccessibleRow;

class AccessibleRemove : public AccessiblePart {
 public:
  AccessibleRemove(TimelineList* list, const QString& pingId, AccessibleRow* parent)
      : AccessiblePart(list, pingId), parent_(parent) {}

  QAccessible::Role role() const override { return QAccessible::Button; }
  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name && isValid() ? u"Remove ping %1"_s.arg(row() + 1) : QString();
  }
  QAccessible::State state() const override { return visibility(); }
  QAccessibleInterface* parent() const override;
  int childCount() const override { return 0; }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  void doAction(const QString& action) override {
    if (action == pressAction() && isValid()) list()->pressRemove(row());
  }

 protected:
  QRect area() const override { return list()->removeRect(row()); }

 private:
  AccessibleRow* parent_;
};

class AccessibleRow : public AccessiblePart {
 public:
  AccessibleRow(TimelineList* list, const QString& pingId)
      : AccessiblePart(list, pingId), removeId_(registered(new AccessibleRemove(list, pingId, this))) {}
  ~AccessibleRow() override { QAccessible::deleteAccessibleInterface(removeId_); }

  QAccessible::Role role() const override { return QAccessible::ListItem; }
  QString text(QAccessible::Text kind) const override {
    if (!isValid()) return {};
    const Ping& ping = list()->ping(row());
    if (kind == QAccessible::Name) return timelineRowName(ping, row());
    if (kind == QAccessible::Description) return u"%1, %2"_s.arg(ping.message, delayLabel(ping.delayMs));
    return {};
  }
  QAccessible::State state() const override {
    QAccessible::State state = visibility();
    if (!isValid()) return state;
    state.selectable = true;
    state.selected = list()->isSelected(row());
    state.focusable = true;
    state.focused = list()->hasFocus() && list()->currentRow() == row();
    return state;
  }
  QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(list()); }
  int childCount() const override { return 1; }
  QAccessibleInterface* child(int index) const override {
    return index == 0 ? QAccessible::accessibleInterface(removeId_) : nullptr;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    QAccessibleInterface* remove = child(0);
    return remove->rect().contains(x, y) ? remove : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* part) const override { return part == child(0) ? 0 : -1; }
  QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
  void doAction(const QString& action) override {
    if (!isValid()) return;
    if (action == pressAction()) list()->pressRow(row());
    if (action == setFocusAction()) {
      list()->setFocus();
      list()->setCurrentRow(row());
    }
  }

 protected:
  QRect area() const override { return list()->rowRect(row()); }

 private:
  static QAccessible::Id registered(QAccessibleInterface* part) {
    return QAccessible::registerAccessibleInterface(part);
  }

  QAccessible::Id removeId_;
};

QAccessibleInterface* AccessibleRemove::parent() const {
  return parent_;
}

class AccessibleTimeline : public QAccessibleWidget {
 public:
  explicit AccessibleTimeline(TimelineList* list) : QAccessibleWidget(list, QAccessible::List) {}
  ~AccessibleTimeline() override {
    for (const QAccessible::Id id : rowIds_) QAccessible::deleteAccessibleInterface(id);
  }

  int childCount() const override { return static_cast<int>(list()->rowCount()); }
  QAccessibleInterface* child(int index) const override {
    if (index < 0 || index >= childCount()) return nullptr;
    const QString& pingId = list()->ping(index).id;
    auto known = rowIds_.find(pingId);
    if (known == rowIds_.end())
      known =
          rowIds_.insert(pingId, QAccessible::registerAccessibleInterface(new AccessibleRow(list(), pingId)));
    return QAccessible::accessibleInterface(*known);
  }
  int indexOfChild(const QAccessibleInterface* part) const override {
    const auto* row = dynamic_cast<const AccessibleRow*>(part);
    return row ? static_cast<int>(list()->rowOf(row->pingId())) : -1;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    const int y0 = list()->mapFromGlobal(QPoint(x, y)).y();
    for (int i = 0; i < childCount(); ++i) {
      if (list()->rowRect(i).bottom() >= y0) return child(i)->rect().contains(x, y) ? child(i) : nullptr;
    }
    return nullptr;
  }
  QAccessibleInterface* focusChild() const override {
    return list()->hasFocus() && list()->currentRow() >= 0 ? child(static_cast<int>(list()->currentRow()))
                                                           : nullptr;
  }

  void forgetRemovedRows() {
    rowIds_.removeIf([this](const auto& row) {
      const bool isGone = list()->rowOf(row.key()) < 0;
      if (isGone) QAccessible::deleteAccessibleInterface(row.value());
      return isGone;
    });
  }

 private:
  [[nodiscard]] TimelineList* list() const { return static_cast<TimelineList*>(widget()); }

  mutable QHash<QString, QAccessible::Id> rowIds_;
};

}  // namespace

void installTimelineAccessibility() {
  useAccessibleInterface<TimelineList, AccessibleTimeline>();
}

void announceTimelineRows(TimelineList& list) {
  if (!QAccessible::isActive()) return;
  if (auto* timeline = dynamic_cast<AccessibleTimeline*>(QAccessible::queryAccessibleInterface(&list)))
    timeline->forgetRemovedRows();
  QAccessibleEvent event(&list, QAccessible::ObjectReorder);
  QAccessible::updateAccessibility(&event);
}

void announceCurrentTimelineRow(TimelineList& list) {
  if (!QAccessible::isActive() || !list.hasFocus()) return;
  QAccessibleEvent event(&list, QAccessible::Focus);
  event.setChild(static_cast<int>(list.currentRow()));
  QAccessible::updateAccessibility(&event);
}

void announceTimelineSelection(TimelineList& list, qsizetype row) {
  if (!QAccessible::isActive() || row < 0) return;
  QAccessibleEvent event(&list,
                         list.isSelected(row) ? QAccessible::SelectionAdd : QAccessible::SelectionRemove);
  event.setChild(static_cast<int>(row));
  QAccessible::updateAccessibility(&event);
}

}  // namespace brisklet
