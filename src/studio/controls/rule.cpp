#include "studio/controls/rule.h"

#include "studio/controls/accessibility.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QAccessibleWidget>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

class AccessibleProgress : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
  explicit AccessibleProgress(Rule* rule) : QAccessibleWidget(rule, QAccessible::ProgressBar) {}

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                               : QAccessibleWidget::interface_cast(type);
  }
  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.readOnly = true;
    if (!rule().showsProgress()) state.invisible = true;
    return state;
  }
  QVariant currentValue() const override { return rule().percentage(); }
  void setCurrentValue(const QVariant&) override {}
  QVariant minimumValue() const override { return 0; }
  QVariant maximumValue() const override { return 100; }
  QVariant minimumStepSize() const override { return 1; }

 private:
  [[nodiscard]] const Rule& rule() const { return *static_cast<const Rule*>(widget()); }
};

}  // namespace

Rule::Rule(QWidget* parent) : QWidget(parent) {
  useAccessibleInterface<Rule, AccessibleProgress>();
  setFixedHeight(thickness);
  setAccessibleName(u"Export"_s);
}

void Rule::setProgress(std::optional<double> progress) {
  if (progress == progress_) return;
  const bool wasShown = showsProgress();
  const int former = percentage();
  progress_ = progress;
  update();
  if (wasShown != showsProgress()) {
    QAccessibleEvent event(this, showsProgress() ? QAccessible::ObjectShow : QAccessible::ObjectHide);
    QAccessible::updateAccessibility(&event);
  } else if (percentage() != former) {
    QAccessibleValueChangeEvent event(this, percentage());
    QAccessible::updateAccessibility(&event);
  }
}

void Rule::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  paintRule(painter, rect(), Studio::line);
  if (progress_) paintRule(painter, QRectF(0, 0, width() * *progress_, height()), Studio::ink);
}

}  // namespace brisklet
