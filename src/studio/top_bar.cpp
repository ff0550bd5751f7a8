#include "studio/top_bar.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleHints>
#include <cmath>

#include "lockscreen/bundle_image.h"
#include "studio/control_painting.h"
#include "studio/focus_mark.h"
#include "studio/palette.h"
#include "studio/studio_button.h"
#include "studio/studio_line_edit.h"
#include "studio/studio_text.h"
#include "studio/window_button.h"

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
      summary_(new StudioText({12, FontWeight::Medium}, Studio::mute, this)),
      new_(new StudioButton(tr("New"), {}, ButtonLook::Flat, this)),
      play_(new StudioButton(tr("Play"), QStringLiteral("play.fill"), ButtonLook::Flat, this)),
      export_(
          new StudioButton(tr("Export"), QStringLiteral("square.and.arrow.down"), ButtonLook::Solid, this)),
      minimise_(new WindowButton(QStringLiteral("window.minimise"), tr("Minimise"), this)),
      zoom_(new WindowButton(QStringLiteral("window.zoom"), tr("Zoom"), this)),
      close_(new WindowButton(QStringLiteral("window.close"), tr("Close"), this)) {
  setFixedHeight(barHeight);
  summary_->setFixedHeight(StudioButton::buttonHeight);
  summary_->standWith(StudioButton::titleStyle);
  if (const auto mark = BundleImage::named(QStringLiteral("brisklet-mark")))
    logo_ = tinted(*mark, Studio::ink);

  title_->setPlaceholderText(tr("Untitled video"));
  title_->setAccessibleName(tr("Title"));
  title_->setAttribute(Qt::WA_Hover);
  title_->installEventFilter(this);
  new FocusMark(title_, titleRadius);

  connect(title_, &QLineEdit::textEdited, this, &TopBar::titleEdited);
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
  play_->setTitle(state.isPlaying ? tr("Playing") : tr("Play"));
  play_->setUsable(state.canPlay);
  export_->setTitle(state.exportProgress ? tr("Exporting") : tr("Export"));
  export_->setUsable(state.canExport);
  const QString percentage =
      state.exportProgress ? tr("%1%").arg(static_cast<int>(*state.exportProgress * 100)) : QString();
  export_->setToolTip(percentage);
  export_->setAccessibleDescription(percentage);
  place();
}

void TopBar::setZoomed(bool zoomed) {
  zoom_->setLabel(zoomed ? tr("Restore") : tr("Zoom"));
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
