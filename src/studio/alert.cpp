#include "studio/alert.h"

#include "drawing/continuous_corners.h"
#include "drawing/float_plane.h"
#include "studio/controls/accessibility.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"
#include "studio/controls/studio_button.h"
#include "studio/top_bar.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr TextStyle titleStyle{15, FontWeight::Semibold}, messageStyle{13, FontWeight::Regular},
    headingStyle{13, FontWeight::Medium};
constexpr int cardWidth = 340, wideCardWidth = 600, headingWidth = 150, lineSpacing = 5, margin = 22,
              titleSpacing = 6, buttonTop = 20, buttonSpacing = 8;  // pt
constexpr int mostLines = 12;
constexpr double cardRadius = 16, shadowSigma = 20, shadowOffset = 12, shadowOpacity = 0.28;
constexpr QColor scrim = Studio::srgb(0.067, 0.067, 0.071, 0.32);

class AccessibleAlert : public QAccessibleWidget {
 public:
  explicit AccessibleAlert(QWidget* alert) : QAccessibleWidget(alert, QAccessible::AlertMessage) {}

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.modal = true;
    return state;
  }
};

void paintShadow(QPainter& painter, const QRectF& card) {
  const double reach = 3 * shadowSigma;
  const QRectF area = card.adjusted(-reach, -reach, reach, reach);
  // Soft enough to be made at half size.
  constexpr double scale = 0.5;
  QImage shape((area.size() * scale).toSize(), QImage::Format_Alpha8);
  shape.fill(Qt::transparent);
  QPainter shapePainter(&shape);
  shapePainter.setRenderHint(QPainter::Antialiasing);
  shapePainter.scale(scale, scale);
  shapePainter.translate(-area.topLeft());
  shapePainter.fillPath(continuousRoundedRect(card, cardRadius), Studio::srgb(0, 0, 0, shadowOpacity));
  shapePainter.end();

  FloatPlane plane(shape.width(), shape.height());
  for (int y = 0; y < plane.height; ++y) std::copy_n(shape.constScanLine(y), plane.width, plane.row(y));
  plane = blurred(plane, shadowSigma * scale);
  for (int y = 0; y < plane.height; ++y)
    std::transform(plane.row(y), plane.row(y) + plane.width, shape.scanLine(y),
                   [](float alpha) { return static_cast<uchar>(alpha + 0.5F); });
  painter.drawImage(area.translated(0, shadowOffset), shape);
}

}  // namespace

Alert::Alert(QWidget* parent)
    : QWidget(parent),
      confirm_(new StudioButton({}, {}, ButtonLook::Flat, this)),
      cancel_(new StudioButton({}, {}, ButtonLook::Solid, this)) {
  useAccessibleInterface<Alert, AccessibleAlert>();
  setFocusPolicy(Qt::ClickFocus);
  hide();
  parent->installEventFilter(this);
  // The window's edges are still within reach, and assistive technology reaches every control.
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, const QWidget* now) {
    if (isOpen() && now && now->window() == window() && !isAncestorOf(now))
      cancel_->setFocus(Qt::OtherFocusReason);
  });
  connect(confirm_, &QAbstractButton::clicked, this, [this] {
    dismiss();
    Q_EMIT confirmed();
  });
  connect(cancel_, &QAbstractButton::clicked, this, [this] {
    dismiss();
    Q_EMIT cancelled();
  });
}

void Alert::open(const Content& content) {
  if (isOpen() && content == content_) return;
  if (!isOpen()) formerFocus_ = window()->focusWidget();
  content_ = content;
  layOut();
  confirm_->setTitle(content.confirm);
  confirm_->setVisible(!content.confirm.isEmpty());
  cancel_->setTitle(content.cancel);
  place();
  raise();
  show();
  // Taken as a menu takes it, so that a field keeps its caret. Not marked: nobody has touched the keyboard
  // yet.
  cancel_->setFocus(Qt::PopupFocusReason);
  QAccessibleEvent event(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

void Alert::layOut() {
  cardWidth_ = content_.lines.isEmpty() ? cardWidth : wideCardWidth;
  const int width = cardWidth_ - 2 * margin;
  title_ = TextLine(content_.title, titleStyle, width);
  parts_.clear();
  partsHeight_ = 0;
  QStringList told;
  const auto add = [&](const QString& heading, const QString& text) {
    const int left = heading.isEmpty() ? 0 : headingWidth;
    const ClampedText lines(text, messageStyle, width - left, mostLines);
    parts_.append({TextLine(heading, headingStyle, headingWidth), lines, left, partsHeight_});
    partsHeight_ += lines.height() + lineSpacing;
    told += heading.isEmpty() ? text : u"%1: %2"_s.arg(heading, text);
  };
  if (!content_.message.isEmpty()) add({}, content_.message);
  for (const auto& [heading, text] : content_.lines) add(heading, text);
  partsHeight_ -= lineSpacing;
  setAccessibleName(content_.title);
  setAccessibleDescription(told.join(u'\n'));
}

void Alert::dismiss() {
  if (!isOpen()) return;
  content_ = {};
  // Before it hides: Qt would ask the alert itself for the next widget to have the focus.
  const bool canHaveIt = formerFocus_ && formerFocus_->isVisible() && formerFocus_->isEnabled();
  (canHaveIt ? formerFocus_.data() : window())->setFocus(Qt::PopupFocusReason);
  hide();
}

QRect Alert::cardRect() const {
  int height = 2 * margin + rowHeight(titleStyle) + buttonTop + StudioButton::buttonHeight;
  if (!parts_.isEmpty()) height += titleSpacing + partsHeight_;
  QRect card(0, 0, cardWidth_, height);
  card.moveCenter(rect().center());
  return card;
}

void Alert::place() {
  setGeometry(parentWidget()->rect());
  const QRect card = cardRect();
  int right = card.right() + 1 - margin;
  const int top = card.bottom() + 1 - margin - StudioButton::buttonHeight;
  for (StudioButton* button : {cancel_, confirm_}) {
    if (button->text().isEmpty()) continue;
    const int width = std::max(72, button->sizeHint().width());
    button->setGeometry(right - width, top, width, StudioButton::buttonHeight);
    right -= width + buttonSpacing;
  }
}

bool Alert::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::Resize && isOpen()) place();
  return false;
}

void Alert::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  painter.fillRect(rect(), scrim);
  const QRect card = cardRect();
  paintShadow(painter, card);
  paintBox(painter, {.rect = card, .radius = cardRadius}, Studio::white);

  const int left = card.left() + margin;
  int top = card.top() + margin;
  title_.draw(painter, QPointF(left, centredBaseline(painter, top, rowHeight(titleStyle), titleStyle)),
              Studio::ink);
  top += rowHeight(titleStyle) + titleSpacing;
  for (const Part& part : parts_) {
    const int line = top + part.top;
    part.heading.draw(painter,
                      QPointF(left, centredBaseline(painter, line, rowHeight(messageStyle), messageStyle)),
                      Studio::ink);
    part.text.draw(painter, QPointF(left + part.left, line), Studio::mute);
  }
}

void Alert::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      cancel_->click();
      break;
    default:
      // Nothing that is typed reaches the window behind.
      event->accept();
  }
}

void Alert::mousePressEvent(QMouseEvent* event) {
  heldAt_ = event->globalPosition().toPoint();
}

void Alert::mouseMoveEvent(QMouseEvent* event) {
  if (mapFromGlobal(heldAt_).y() < TopBar::barHeight)
    Q_EMIT dragged(heldAt_, event->globalPosition().toPoint());
}

bool Alert::focusNextPrevChild(bool next) {
  const bool onConfirm = confirm_->hasFocus();
  QWidget* other = onConfirm || content_.confirm.isEmpty() ? cancel_ : confirm_;
  other->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
  return true;
}

}  // namespace brisklet
