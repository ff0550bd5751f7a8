#include "backdrops.h"

#include "model/catalogue.h"

#include <QDir>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr QSize photoSize(780, 1688);

QImage plain(const QColor& color) {
  QImage image(photoSize, QImage::Format_RGB32);
  image.fill(color);
  return image;
}

/// A market stall of small bright and dark things.
QImage busy() {
  QImage image = plain(QColor(0x80, 0x70, 0x60));
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  QRandomGenerator random(20);
  for (int i = 0; i < 9000; ++i) {
    const double size = 6 + 60 * random.generateDouble() * random.generateDouble();
    const int hue = random.bounded(360), saturation = random.bounded(256);
    painter.setBrush(QColor::fromHsv(hue, saturation, random.bounded(2) ? 255 : random.bounded(256)));
    painter.save();
    painter.translate(random.bounded(image.width()), random.bounded(image.height()));
    painter.rotate(random.bounded(180));
    painter.drawRect(QRectF(-size / 2, -size / 6, size, size / 3));
    painter.restore();
  }
  return image;
}

QImage saturated() {
  QImage image = plain(Qt::black);
  QPainter painter(&image);
  const QColor colors[] = {QColor(255, 0, 0),   QColor(255, 230, 0), QColor(0, 255, 40),
                           QColor(0, 240, 255), QColor(20, 0, 255),  QColor(255, 0, 220)};
  const int band = image.height() / 6 + 1;
  for (int i = 0; i < 6; ++i) {
    QLinearGradient across(0, 0, image.width(), 0);
    across.setColorAt(0, colors[i]);
    across.setColorAt(1, colors[(i + 2) % 6]);
    painter.fillRect(0, i * band, image.width(), band, across);
  }
  return image;
}

/// Black above, white below, and edges that run across the cards.
QImage halves() {
  QImage image = plain(Qt::white);
  QPainter painter(&image);
  painter.fillRect(0, 0, image.width(), 620, Qt::black);
  painter.fillRect(0, 620, image.width() / 2, 400, Qt::black);
  return image;
}

}  // namespace

QList<Backdrop> hardBackdrops(const QString& folder) {
  QList<Backdrop> backdrops;
  for (const Studio::Wallpaper& wallpaper : Studio::wallpapers())
    backdrops.append({wallpaper.label, wallpaper.id, {}});
  const auto addPhoto = [&](const QString& name, const QImage& photo) {
    const QString path = QDir(folder).filePath(name + u".png"_s);
    if (photo.save(path)) backdrops.append({name, u"custom"_s, path});
  };
  addPhoto(u"white"_s, plain(Qt::white));
  addPhoto(u"black"_s, plain(Qt::black));
  addPhoto(u"busy"_s, busy());
  addPhoto(u"saturated"_s, saturated());
  addPhoto(u"halves"_s, halves());
  return backdrops;
}

Ping pingOf(const QString& appId, const QString& title, const QString& message, double delayMs) {
  static int number = 0;
  const AppPreset& preset = AppPreset::named(appId);
  return {
      QString::number(++number), appId, preset.label, preset.icon, preset.color, title, message, delayMs, {}};
}

SequenceDocument documentOn(const Backdrop& backdrop) {
  SequenceDocument document = SequenceDocument::blank();
  document.dateLabel = u"Mon Nov 16"_s;
  document.timeLabel = u"9:41"_s;
  document.wallpaper = backdrop.wallpaper;
  document.wallpaperUrl = backdrop.wallpaperUrl;
  document.maxVisible = 6;
  return document;
}

SequenceDocument documentOn(const Backdrop& backdrop, int count) {
  SequenceDocument document = documentOn(backdrop);
  const QList<Ping> pings = {pingOf(u"messages"_s, u"Mom"_s, u"is today the day?? 🥹"_s, 120000),
                             pingOf(u"tiktok"_s, u"TikTok"_s, u"Your video is popular right now"_s),
                             pingOf(u"instagram"_s, u"jordan"_s, u"mentioned you in their story."_s),
                             pingOf(u"snapchat"_s, u"Jordan"_s, u"Sent you a Snap"_s),
                             pingOf(u"cashapp"_s, u"Alex"_s, u"sent you $250"_s),
                             pingOf(u"custom"_s, u"budget buddy"_s, u"Rent ✅ Phone ✅ Fun 🎉"_s)};
  document.notifications = pings.mid(0, count);
  return document;
}

}  // namespace brisklet
