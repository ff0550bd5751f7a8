#include "studio/top_bar.h"

#include "lockscreen/bundle_image.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/focus_mark.h"
#include "studio/controls/palette.h"
#include "studio/controls/studio_button.h"
#include "studio/controls/studio_line_edit.h"
#include "studio/controls/studio_text.h"
#include "studio/controls/window_button.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleHints>
#include <cmath>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// The title's box reaches this far beyond its text, to show that it can be edited.
constexpr int titleOutset = 6, titleHeight = 30;
constexpr double logoRadius = 6, titleRadius = 7;

/// The picture's shape in one colour.
QImage tinted(const QImage& picture, const QColor& color) {
  QImage result = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&result);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(result.rect(), color);
  return result;
}

}  // namespace

TopBar::TopBar(QWidget* parent)
    : QWidget(parent),
      title_(new StudioLineEdit({14, FontWeight::Medium}, titleOutset, 2, this)),
      percentage_(new StudioText({12, FontWeight::Medium}, Studio::ink, this)),
      summary_(new StudioText({12, FontWeight::Medium}, Studio::mute, this)),
      new_(new StudioButton(u"New"_s, {}, ButtonLook::Flat, this)),
      play_(new StudioButton(u"Play"_s, u"play.fill"_s, ButtonLook::Flat, this)),
      export_(new StudioButton(u"Export"_s, u"square.and.arrow.down"_s, ButtonLook::Solid, this)),
      minimise_(new WindowButton(u"window.minimise"_s, u"Minimise"_s, this)),
      zoom_(new WindowButton(u"window.zoom"_s, u"Zoom"_s, this)),
      close_(new WindowButton(u"window.close"_s, u"Close"_s, this)) {
  setFixedHeight(barHeight);
  for (StudioText* text : {percentage_, summary_}) {
    text->setFixedHeight(StudioButton::buttonHeight);
    text->standWith(StudioButton::titleStyle);
  }
  if (const auto mark = BundleImage::named(u"brisklet-mark"_s)) logo_ = tinted(*mark, Studio::ink);

  title_->leaveOnEnter();
  title_->setPlaceholderText(u"Untitled video"_s);
  title_->setAccessibleName(u"Title"_s);
  title_->setAttribute(Qt::WA_Hover);
  title_->installEventFilter(this);
  new FocusMark(title_, titleRadius);

  title_->setToolTip(u"The movie's file is named after it. F1 shows all keys."_s);
  new_->setToolTip(u"Ctrl+Z takes it back"_s);
  play_->setToolTip(u"Ctrl+P"_s);
  export_->setToolTip(u"Ctrl+E"_s);
  close_->setToolTip(u"Close (Ctrl+W)"_s);

  connect(title_, &StudioLineEdit::lineEdited, this, &TopBar::titleEdited);
  connect(title_, &QLineEdit::editingFinished, this, &TopBar::titleFinished);
  connect(new_, &QAbstractButton::clicked, this, &TopBar::newPressed);
  connect(play_, &QAbstractButton::clicked, this, &TopBar::playPressed);
  connect(export_, &QAbstractButton::clicked, this, &TopBar::exportPressed);
  connect(minimise_, &QAbstractButton::clicked, this, &TopBar::minimisePressed);
  connect(zoom_, &QAbstractButton::clicked, this, &TopBar::zoomPressed);
  connect(close_, &QAbstractButton::clicked, this, &TopBar::closePressed);
}

void TopBar::setState(const State& state) {
  title_->showText(state.title);
  summary_->setText(state.summary);
  play_->setTitle(state.isPlaying ? u"Playing"_s : u"Play"_s);
  play_->setUsable(state.canPlay);
  export_->setTitle(state.exportProgress ? u"Exporting"_s : u"Export"_s);
  export_->setUsable(state.canExport);
  percentage_->setText(state.exportProgress ? u"%1%"_s.arg(static_cast<int>(*state.exportProgress * 100))
                                            : QString());
  place();
}

void TopBar::setZoomed(bool zoomed) {
  zoom_->setLabel(zoomed ? u"Restore"_s : u"Zoom"_s);
}

void TopBar::resizeEvent(QResizeEvent*) {
  place();
}

void TopBar::place() {
  const int titleLeft = margin + logoSize + logoSpacing;
  title_->setGeometry(titleLeft - titleOutset, (height() - titleHeight) / 2, titleWidth + titleOutset,
                      titleHeight);
  int right = width() - margin;
  const auto putLeft = [&](QWidget* widget, int gap) {
    const QSize size = widget->sizeHint();
    widget->setGeometry(right - size.width(), (height() - size.height()) / 2, size.width(), size.height());
    right -= size.width() + gap;
  };
  putLeft(close_, 0);
  putLeft(zoom_, 0);
  putLeft(minimise_, spacing);
  putLeft(export_, spacing);
  putLeft(play_, spacing);
  putLeft(new_, spacing);
  putLeft(summary_, spacing);
  putLeft(percentage_, spacing);
}

void TopBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  painter.fillRect(rect(), Studio::white);
  paintLogo(painter);
  if (title_->hasFocus() || title_->underMouse())
    paintBox(painter, {.rect = title_->geometry(), .radius = titleRadius}, Studio::hoverVeil);
}

void TopBar::paintLogo(QPainter& painter) const {
  const QRectF box(margin, (height() - logoSize) / 2.0, logoSize, logoSize);
  if (logo_.isNull()) {
    paintBox(painter, {.rect = box, .radius = logoRadius}, Studio::ink);
    return;
  }
  const QSize pixels = (box.size() * painter.deviceTransform().m11()).toSize();
  const QImage scaled = logo_.scaled(pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  QRectF fitted(QPointF(), QSizeF(scaled.size()).scaled(box.size(), Qt::KeepAspectRatio));
  fitted.moveCenter(box.center());
  painter.drawImage(fitted, scaled);
}

void TopBar::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) heldAt_ = event->globalPosition().toPoint();
  isDragging_ = false;
}

void TopBar::mouseMoveEvent(QMouseEvent* event) {
  if (!heldAt_) return;
  const QPoint at = event->globalPosition().toPoint();
  if (!isDragging_ &&
      (at - *heldAt_).manhattanLength() < QGuiApplication::styleHints()->startDragDistance() / 2)
    return;
  isDragging_ = true;
  Q_EMIT dragged(*heldAt_, at);
}

void TopBar::mouseReleaseEvent(QMouseEvent*) {
  heldAt_.reset();
}

void TopBar::mouseDoubleClickEvent(QMouseEvent* event) {
  heldAt_.reset();
  if (event->button() == Qt::LeftButton) Q_EMIT zoomPressed();
}

bool TopBar::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
      update(title_->geometry());
      break;
    default:
      break;
  }
  return false;
}

}  // namespace brisklet
