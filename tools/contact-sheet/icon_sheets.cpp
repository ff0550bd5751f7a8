#include "backdrops.h"
#include "drawing/symbol_image.h"
#include "drawing/text_line.h"
#include "lockscreen/app_glyph.h"
#include "lockscreen/bundle_image.h"
#include "sheet.h"
#include "sheets.h"

#include <QIcon>
#include <QPainter>
#include <cmath>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// A line of symbols in even gaps with text before and after, centred as in a row beside text.
QImage symbolLine(double fontSize, double scale, const QStringList& names, const QColor& ground,
                  const QColor& color) {
  constexpr double gap = 12, margin = 8;
  const TextStyle style{fontSize, FontWeight::Semibold};
  const TextLine before(u"9:41 Hx"_s, style), after(u"Export"_s, style);
  double width = 2 * margin + before.width() + after.width() + gap;
  for (const QString& name : names) width += symbolSize(name, fontSize).width() + gap;
  const double height = std::ceil(before.height()) + 8;
  QImage image((QSizeF(width, height) * scale).toSize(), QImage::Format_RGB32);
  image.fill(ground);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(scale, scale);
  const double baseline = std::round((height - before.height()) / 2 + before.ascent());
  const double middle = baseline - before.ascent() + before.height() / 2;
  double x = margin;
  before.draw(painter, {x, baseline}, color);
  x += before.width() + gap;
  for (const QString& name : names) {
    const double symbolWidth = symbolSize(name, fontSize).width();
    drawSymbol(painter, name, fontSize, {x + symbolWidth / 2, middle}, color);
    x += symbolWidth + gap;
  }
  after.draw(painter, {x, baseline}, color);
  return image;
}

/// The mark in one colour, as the studio's top bar shows it.
QImage markOf(int pixels, const QColor& ground, const QColor& color) {
  QImage image(pixels + 16, pixels + 16, QImage::Format_RGB32);
  image.fill(ground);
  if (const auto mark = BundleImage::named(u"brisklet-mark"_s)) {
    QImage tinted = mark->convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter tint(&tinted);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(tinted.rect(), color);
    tint.end();
    QPainter(&image).drawImage(8, 8,
                               tinted.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation));
  }
  return image;
}

}  // namespace

QImage symbolSheet(const QString&) {
  const QStringList names = {
      u"cellularbars"_s, u"wifi"_s,         u"battery.100percent"_s, u"flashlight.off.fill"_s,
      u"camera.fill"_s,  u"message.fill"_s, u"play.fill"_s,          u"square.and.arrow.down"_s,
      u"plus"_s,         u"xmark"_s};
  const QColor ink(0x11, 0x11, 0x12), night(0x1c, 0x2a, 0x48);
  Sheet sheet(2);
  for (const double scale : {1.0, 2.0, 3.0}) {
    sheet.startRow(u"%1 pixels a point"_s.arg(scale));
    for (const double size : {9.0, 11.0, 14.0, 16.0, 20.0}) {
      sheet.add(symbolLine(size, scale, names, night, Qt::white), u"%1 pt"_s.arg(size));
      sheet.add(symbolLine(size, scale, names, Qt::white, ink), u"%1 pt"_s.arg(size));
    }
  }
  sheet.startRow(u"One pixel a point, enlarged four times"_s);
  for (const double size : {9.0, 11.0, 14.0}) {
    sheet.add(enlarged(symbolLine(size, 1, names, night, Qt::white), 4), u"%1 pt"_s.arg(size));
    sheet.add(enlarged(symbolLine(size, 1, names, Qt::white, ink), 4), u"%1 pt"_s.arg(size));
  }
  const QStringList dialogNames = {u"chevron.left"_s, u"chevron.right"_s, u"chevron.down"_s, u"arrow.up"_s,
                                   u"folder"_s,       u"folder.plus"_s,   u"doc"_s,          u"list"_s,
                                   u"square.grid"_s,  u"desktop"_s};
  sheet.startRow(u"In dialogs, 16 pt"_s);
  for (const double scale : {1.0, 2.0})
    sheet.add(symbolLine(16, scale, dialogNames, Qt::white, ink), u"%1 pixels a point"_s.arg(scale));
  return sheet.image();
}

QImage iconSheet(const QString&) {
  QList<Ping> pings;
  for (const char* app : {"messages", "tiktok", "instagram", "snapchat", "cashapp", "custom"})
    pings.append(pingOf(QString::fromLatin1(app), {}, {}));
  pings.last().appLabel = u"Budget"_s;
  Ping generic = pings.first();
  generic.appId = u"horizon"_s;
  generic.icon = u"H"_s;
  generic.color = u"#2f6bff"_s;
  pings.append(generic);
  generic.icon = u"🔥"_s;
  generic.color = u"#f2f2f7"_s;
  pings.append(generic);

  Sheet sheet(8, QColor(0xf6, 0xf6, 0xf7));
  struct Size {
    double size, corner, scale;
    int enlargement;
  };
  for (const Size& at : {Size{36, 9, 1, 1}, Size{38, 10, 1, 1}, Size{38, 10, 2, 1}, Size{38, 10, 3, 1},
                         Size{38, 10, 1, 4}, Size{38, 10, 3, 2}}) {
    sheet.startRow(u"%1 pt, %2 pixels a point%3"_s.arg(at.size).arg(at.scale).arg(
        at.enlargement > 1 ? u", enlarged %1 times"_s.arg(at.enlargement) : QString()));
    for (const Ping& ping : pings)
      sheet.add(enlarged(AppGlyph{ping, at.size, at.corner}.image(at.scale), at.enlargement), ping.appId);
  }
  const QColor ink(0x11, 0x11, 0x12);
  sheet.startRow(u"The mark"_s);
  for (const int pixels : {16, 22, 32, 44, 66, 128})
    sheet.add(markOf(pixels, Qt::white, ink), u"%1 pixels"_s.arg(pixels));
  sheet.add(markOf(128, ink, Qt::white), u"on ink"_s);
  sheet.startRow(u"The mark, enlarged"_s);
  for (const int pixels : {16, 22, 32}) sheet.add(enlarged(markOf(pixels, Qt::white, ink), 5), {});
  sheet.startRow(u"The program's icon"_s);
  for (const int pixels : {16, 24, 32, 48, 64, 128, 256}) {
    const QImage icon(u"%1/%2x%2/brisklet.png"_s.arg(QStringLiteral(BRISKLET_ICONS)).arg(pixels));
    sheet.add(icon, u"%1 pixels"_s.arg(pixels));
  }
  return sheet.image();
}

}  // namespace brisklet
