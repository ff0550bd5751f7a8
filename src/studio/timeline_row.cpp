#include "studio/timeline_row.h"

#include "drawing/symbol_image.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"
#include "studio/editor/delay_text.h"

#include <QObject>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr TextStyle titleStyle{13, FontWeight::Semibold};
constexpr TextStyle messageStyle{12, FontWeight::Regular};
constexpr TextStyle delayStyle{11, FontWeight::Medium};
constexpr int mostLines = 2;
constexpr float delayOpacity = 0.8F;
constexpr double removeSymbolSize = 9, removeRadius = 5;
constexpr int textLeft = TimelineRow::margin + TimelineRow::glyphSize + TimelineRow::spacing;

}  // namespace

QString timelineRowName(const Ping& ping, qsizetype index) {
  return u"Ping %1, %2"_s.arg(QString::number(index + 1), ping.title);
}

TimelineRow::TimelineRow(Ping ping, int width) : ping_(std::move(ping)), width_(width) {
  // The flexible space between text and remove button has a gap on both of its sides.
  const int room = removeRect(width).left() - 2 * spacing - textLeft;
  title_ = ClampedText(ping_.title, titleStyle, room, mostLines);
  message_ = ClampedText(ping_.message, messageStyle, room, mostLines);
  delay_ = TabularText(delayLabel(ping_.delayMs), delayStyle, room);
  const int text = title_.height() + lineSpacing + message_.height() + lineSpacing + rowHeight(delayStyle);
  height_ = 2 * margin + std::max(glyphSize, text);
}

QRect TimelineRow::removeRect(int width) {
  return {width - margin - removeSize, margin, removeSize, removeSize};
}

void TimelineRow::paint(QPainter& painter, const Look& look, AppGlyphCache& glyphs) const {
  const QRectF row(0, 0, width_, height_);
  const QColor outline = look.isSelected                    ? Studio::ink
                         : look.isHovered || look.isPressed ? Studio::hoveredLine
                                                            : Studio::line;
  paintBox(painter, {row, radius, outline, look.isSelected ? 2.0 : 1.0}, Studio::white);
  if (look.isPressed) paintBox(painter, {.rect = row, .radius = radius}, Studio::pressVeil);

  glyphs.paint(painter, {ping_, glyphSize, glyphRadius}, {margin, margin});

  double y = margin;
  title_.draw(painter, {textLeft, y}, Studio::ink);
  y += title_.height() + lineSpacing;
  message_.draw(painter, {textLeft, y}, Studio::mute);
  y += message_.height() + lineSpacing;
  QColor delayColor = Studio::mute;
  delayColor.setAlphaF(delayOpacity);
  delay_.draw(painter, {textLeft, centredBaseline(painter, y, rowHeight(delayStyle), delayStyle)},
              delayColor);

  const QRectF remove = removeRect(width_);
  const QColor removeVeil = look.isRemovePressed   ? Studio::pressVeil
                            : look.isRemoveHovered ? Studio::hoverVeil
                                                   : QColor(Qt::transparent);
  paintBox(painter, {.rect = remove, .radius = removeRadius}, removeVeil);
  drawSymbol(painter, u"xmark"_s, removeSymbolSize, remove.center(),
             look.isRemoveHovered ? Studio::ink : Studio::mute);
}

}  // namespace brisklet
