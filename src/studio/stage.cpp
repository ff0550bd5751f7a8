#include "studio/stage.h"

#include "base/background.h"
#include "drawing/continuous_corners.h"
#include "drawing/device_pixels.h"
#include "drawing/text_line.h"
#include "lockscreen/lock_screen_layout.h"
#include "studio/controls/accessibility.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"
#include "studio/stage_backdrop.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// The cards as somebody would tell them who sees them, newest first.
QString described(const QList<Ping>& pings) {
  QStringList cards;
  for (const Ping& ping : pings) cards.append(u"%1: %2, %3"_s.arg(ping.appLabel, ping.title, ping.message));
  return cards.isEmpty() ? u"No cards"_s : cards.join(u"; "_s);
}

}  // namespace

Stage::Stage(QWidget* parent) : QWidget(parent) {
  setAccessibleRole(this, QAccessible::Graphic);
  setAccessibleName(u"Lock screen"_s);
  setMouseTracking(true);
  cache_.wallpaperSource().leavePhotosToOthers();
  frames_.setTimerType(Qt::PreciseTimer);
  connect(&frames_, &QTimer::timeout, this, &Stage::nextFrame);
}

void Stage::setDocument(const SequenceDocument& document) {
  // The pings are the player's.
  const bool looksTheSame =
      document.wallpaper == document_.wallpaper && document.wallpaperUrl == document_.wallpaperUrl &&
      document.dateLabel == document_.dateLabel && document.timeLabel == document_.timeLabel;
  document_ = document;
  if (!looksTheSame) update(phoneArea());
}

void Stage::setPlayer(const SequencePlayer* player) {
  if (player_ == player) return;
  const bool isFirst = player_ == nullptr && shownPings_.isEmpty();
  if (player_) disconnect(player_, nullptr, this, nullptr);
  player_ = player;
  if (!player) return;
  connect(player, &SequencePlayer::elapsedMsChanged, this, &Stage::follow);
  connect(player, &SequencePlayer::documentChanged, this, &Stage::follow);
  if (!isFirst) {
    follow();
    return;
  }
  setShownPings(LockScreenView{document_, *player}.visiblePings());
  animation_.reset(shownPings_);
  update();
}

void Stage::setNote(const QString& note) {
  if (note == note_) return;
  note_ = note;
  update(phoneArea());
}

const Ping* Stage::pingAt(const QPointF& at) const {
  const QRectF phone = phoneRect(size());
  if (!phone.contains(at)) return nullptr;
  const QPointF onCanvas = (at - phone.topLeft()) / phoneScale(size());
  const QList<QRectF> cards = lockScreenLayout(document_, shownPings_.size()).cards;
  for (qsizetype i = 0; i < std::min(cards.size(), shownPings_.size()); ++i)
    if (cards[i].contains(onCanvas)) return &shownPings_[i];
  return nullptr;
}

void Stage::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  if (const Ping* ping = pingAt(event->position()))
    Q_EMIT cardPressed(Ping(*ping));
  else if (!phoneRect(size()).contains(event->position()))
    Q_EMIT besidePressed();
}

void Stage::mouseMoveEvent(QMouseEvent* event) {
  setCursor(pingAt(event->position()) ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

void Stage::setShownPings(QList<Ping> pings) {
  shownPings_ = std::move(pings);
  setAccessibleDescription(described(shownPings_));
}

void Stage::follow() {
  if (!player_) return;
  QList<Ping> pings = LockScreenView{document_, *player_}.visiblePings();
  if (pings == shownPings_) return;
  setShownPings(std::move(pings));
  animation_.update(shownPings_, SequencePlayer::steadyClockMs());
  update(phoneArea());
  if (frames_.isActive()) return;
  const double rate = std::clamp(screen()->refreshRate(), 30.0, 240.0);
  frames_.start(static_cast<int>(1000 / rate));
}

void Stage::nextFrame() {
  if (animation_.settled(SequencePlayer::steadyClockMs())) frames_.stop();
  update(phoneArea());
}

QRect Stage::phoneArea() const {
  return phoneRect(size()).toAlignedRect().adjusted(-1, -1, 1, 1);
}

void Stage::resizeEvent(QResizeEvent*) {
  backdrop_ = {};
}

void Stage::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  setUpPainter(painter);
  const QTransform toDevice = painter.deviceTransform();
  // Out to whole pixels: at some scales the stage ends within one.
  const QRect pixels = toDevice.mapRect(QRectF(rect())).toAlignedRect();
  if (backdrop_.size() != pixels.size()) backdrop_ = stageBackdrop(pixels.size(), toDevice.m11());
  painter.setClipRegion(event->region());
  drawOnDevicePixels(painter, pixels.topLeft(), backdrop_);

  if (!player_ || !event->region().intersects(phoneArea())) return;
  const QRectF phone = phoneRect(size());
  painter.translate(phone.topLeft());
  painter.scale(phoneScale(size()), phoneScale(size()));
  LockScreenView{document_, *player_}.paint(painter, cache_,
                                            animation_.cards(SequencePlayer::steadyClockMs()));
  if (!note_.isEmpty()) paintNote(painter);
  readPhoto();
}

void Stage::readPhoto() {
  const auto& unread = cache_.wallpaperSource().unread();
  if (!unread || reading_ == unread) return;
  reading_ = unread;
  inBackground(
      this, [reading = *unread] { return WallpaperSource::read(reading); },
      [this, reading = *unread](const QImage& picture) {
        if (reading_ == reading) reading_.reset();
        WallpaperSource& source = cache_.wallpaperSource();
        if (source.unread() != reading) return;
        source.take(reading, picture);
        update(phoneArea());
      });
}

void Stage::paintNote(QPainter& painter) const {
  const QRectF canvas(0, 0, LockScreenMetrics::canvasWidth, LockScreenMetrics::canvasHeight);
  painter.fillPath(continuousRoundedRect(canvas, LockScreenMetrics::liveCornerRadius),
                   Studio::srgb(0, 0, 0, 0.75));
  const TextLine line(note_, {20, FontWeight::Semibold}, canvas.width());
  line.draw(painter, canvas.center() + QPointF(-line.width() / 2, line.ascent() / 2), Studio::white);
}

}  // namespace brisklet
