#include "studio/timeline_accessible.h"

#include "studio/controls/accessibility.h"
#include "studio/editor/delay_text.h"
#include "studio/timeline_list.h"

#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>
#include <utility>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// A row, or the button that removes it: a part of the list, found by the ping's id.
class AccessiblePart : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  /// A button names its row; a row has none.
  AccessiblePart(TimelineList* list, QString pingId, AccessiblePart* ofRow = nullptr)
      : list_(list), pingId_(std::move(pingId)), ofRow_(ofRow) {
    if (!ofRow) remove_ = QAccessible::registerAccessibleInterface(new AccessiblePart(list, pingId_, this));
  }
  ~AccessiblePart() override {
    if (!ofRow_) QAccessible::deleteAccessibleInterface(remove_);
  }

  [[nodiscard]] const QString& pingId() const { return pingId_; }

  bool isValid() const override { return list_ && row() >= 0; }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return list_ ? list_->window()->windowHandle() : nullptr; }
  QAccessible::Role role() const override { return ofRow_ ? QAccessible::Button : QAccessible::ListItem; }
  void setText(QAccessible::Text, const QString&) override {}
  QString text(QAccessible::Text kind) const override {
    if (!isValid()) return {};
    const Ping& ping = list_->ping(row());
    if (kind == QAccessible::Name)
      return ofRow_ ? u"Remove ping %1"_s.arg(row() + 1) : timelineRowName(ping, row());
    if (kind == QAccessible::Description && !ofRow_)
      return u"%1, %2"_s.arg(ping.message, delayLabel(ping.delayMs));
    return {};
  }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.offscreen = !isValid() || !list_->visibleRegion().intersects(area());
    state.invisible = !isValid() || !list_->isVisible();
    if (ofRow_ || !isValid()) return state;
    state.selectable = state.focusable = true;
    state.selected = list_->isSelected(row());
    state.focused = list_->hasFocus() && list_->currentRow() == row();
    return state;
  }
  QRect rect() const override {
    return isValid() ? QRect(list_->mapToGlobal(area().topLeft()), area().size()) : QRect();
  }
  QAccessibleInterface* parent() const override {
    return ofRow_ ? ofRow_ : QAccessible::queryAccessibleInterface(list_.data());
  }
  int childCount() const override { return ofRow_ ? 0 : 1; }
  QAccessibleInterface* child(int index) const override {
    return index == 0 && !ofRow_ ? QAccessible::accessibleInterface(remove_) : nullptr;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    return !ofRow_ && child(0)->rect().contains(x, y) ? child(0) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* part) const override {
    return part && part == child(0) ? 0 : -1;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }
  QStringList actionNames() const override {
    return ofRow_ ? QStringList{pressAction()} : QStringList{pressAction(), setFocusAction()};
  }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }
  void doAction(const QString& action) override {
    if (!isValid()) return;
    if (action == setFocusAction() && !ofRow_) {
      list_->setFocus();
      list_->setCurrentRow(row());
    }
    if (action == pressAction()) ofRow_ ? list_->pressRemove(row()) : list_->pressRow(row());
  }

 private:
  [[nodiscard]] qsizetype row() const { return list_->rowOf(pingId_); }
  /// Within the list.
  [[nodiscard]] QRect area() const { return ofRow_ ? list_->removeRect(row()) : list_->rowRect(row()); }

  QPointer<TimelineList> list_;
  QString pingId_;
  AccessiblePart* ofRow_;
  QAccessible::Id remove_ = 0;
};

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
      known = rowIds_.insert(pingId,
                             QAccessible::registerAccessibleInterface(new AccessiblePart(list(), pingId)));
    return QAccessible::accessibleInterface(*known);
  }
  int indexOfChild(const QAccessibleInterface* part) const override {
    const auto* row = dynamic_cast<const AccessiblePart*>(part);
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
