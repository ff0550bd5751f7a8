#include "lockscreen/lock_glass.h"

#include <QPainterPath>
#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>

#include "lockscreen/float_plane.h"
#include "platform/continuous_corners.h"

namespace brisklet {
namespace {

/// Lengths in points.
struct Look {
  double blur;        // standard deviation
  float saturation;   // factor
  double bendDepth;   // how far in from the rim the glass bends the backdrop
  double bend;        // from how much farther in the backdrop is seen at the very rim
  double hairline;    // width of the bright line along the rim
  double glowDepth;   // how fast the light fades inwards
  float glow;         // its strength
  float shade;        // darkness inside the rim that is turned away from the light
  float baseLight;    // the rim's brightness all around,
  float nearLight;    // more where it faces the light,
  float farLight;     // and where the light leaves the plate
  float shadow;       // opacity of the drop shadow
  double shadowBlur;  // its standard deviation
  double shadowOffset;
};

constexpr Look materialLook{.blur = 20,
                            .saturation = 1.5F,
                            .bendDepth = 0,
                            .bend = 0,
                            .hairline = 0.7,
                            .glowDepth = 5,
                            .glow = 0.10F,
                            .shade = 0.07F,
                            .baseLight = 0.10F,
                            .nearLight = 0.30F,
                            .farLight = 0.10F,
                            .shadow = 0.17F,
                            .shadowBlur = 9,
                            .shadowOffset = 4};

constexpr Look regularLook{.blur = 6,
                           .saturation = 1.4F,
                           .bendDepth = 14,
                           .bend = 22,
                           .hairline = 0.8,
                           .glowDepth = 4,
                           .glow = 0.16F,
                           .shade = 0.10F,
                           .baseLight = 0.12F,
                           .nearLight = 0.62F,
                           .farLight = 0.34F,
                           .shadow = 0.17F,
                           .shadowBlur = 9,
                           .shadowOffset = 4};

constexpr const Look& lookOf(GlassStyle style) {
  return style == GlassStyle::Material ? materialLook : regularLook;
}

/// Where the light comes from, as a unit vector in the picture.
constexpr float lightX = -0.42F, lightY = -0.9075F;

/// The gap at which two plates begin to flow into one another, and the shadow's reach; points.
constexpr double flowDistance = 10, shadowReach = 27;

/// Steps of depth and distance a pixel in the tables of light and shadow.
constexpr int stepsPerPixel = 4;

/// Points a cell of the grid on which the backdrop is blurred.
constexpr double gridStep = 2;

float linear(float value) {
  return value <= 0.04045F ? value / 12.92F : std::pow((value + 0.055F) / 1.055F, 2.4F);
}

float luminance(float red, float green, float blue) {
  return 0.2126F * linear(red) + 0.7152F * linear(green) + 0.0722F * linear(blue);
}

/// The brightness of a plate over a backdrop of this brightness: lifted in the dark, level where white text
/// would begin to fade.
float plateLuma(float luma) {
  const float lifted = 0.105F + 0.87F * luma;
  const float ceiling = 0.43F + 0.03F * luma;
  constexpr float knee = 0.22F;
  const float near = std::max(knee - std::abs(lifted - ceiling), 0.0F) / knee;
  return std::min(lifted, ceiling) - near * near * knee / 4;
}

/// The contrast, by luminance, of white text at the faintest opacity that cards use, over this colour.
float faintTextContrast(float red, float green, float blue) {
  constexpr float opacity = 0.7F;
  const auto over = [](float value) { return opacity + (1 - opacity) * value; };
  return (luminance(over(red), over(green), over(blue)) + 0.05F) / (luminance(red, green, blue) + 0.05F);
}

struct PlateColor {
  float red, green, blue;
};

/// What a plate makes of a blurred backdrop colour.
PlateColor plateColor(float red, float green, float blue, float saturation) {
  // A little above 3:1, for the light along the rim and the rounding to eight bits.
  constexpr float leastContrast = 3.25F;
  const float luma = 0.2126F * red + 0.7152F * green + 0.0722F * blue;
  const float level = plateLuma(luma);
  // Colours that would leave the gamut lose saturation, not hue.
  float chroma = saturation;
  for (const float offset : {red - luma, green - luma, blue - luma}) {
    if (level + chroma * offset > 1) chroma = (1 - level) / offset;
    if (level + chroma * offset < 0) chroma = -level / offset;
  }
  PlateColor color{level + chroma * (red - luma), level + chroma * (green - luma),
                   level + chroma * (blue - luma)};
  const auto dimmed = [&](float factor) {
    return PlateColor{color.red * factor, color.green * factor, color.blue * factor};
  };
  const auto readable = [&](const PlateColor& c) {
    return faintTextContrast(c.red, c.green, c.blue) >= leastContrast;
  };
  if (readable(color)) return color;
  float dark = 0.5F, bright = 1;
  for (int i = 0; i < 12; ++i) {
    const float middle = (dark + bright) / 2;
    (readable(dimmed(middle)) ? dark : bright) = middle;
  }
  return dimmed(dark);
}

/// The share of a Gaussian edge's far side, for a distance in standard deviations.
double gaussianTail(double distance) {
  return 0.5 * std::erfc(distance / std::sqrt(2.0));
}

}  // namespace

QImage glassBackdrop(const QImage& wallpaper, double pixelsPerPoint, GlassStyle style) {
  const Look& look = lookOf(style);
  const QSize pixels = wallpaper.size();
  const QSize cells(std::max(1, qRound(pixels.width() / (gridStep * pixelsPerPoint))),
                    std::max(1, qRound(pixels.height() / (gridStep * pixelsPerPoint))));
  const QImage small = wallpaper.scaled(cells, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                           .convertToFormat(QImage::Format_RGB32);

  std::array<FloatPlane, 3> planes;
  for (std::size_t channel = 0; channel < 3; ++channel) {
    FloatPlane plane(cells.width(), cells.height());
    for (int y = 0; y < cells.height(); ++y) {
      const auto* line = reinterpret_cast<const QRgb*>(small.constScanLine(y));
      for (int x = 0; x < cells.width(); ++x)
        plane.row(y)[x] = float(line[x] >> (16 - 8 * channel) & 0xff) / 255;
    }
    planes[channel] = blurred(plane, look.blur / gridStep);
  }
  for (std::size_t i = 0; i < planes[0].samples.size(); ++i) {
    const PlateColor color =
        plateColor(planes[0].samples[i], planes[1].samples[i], planes[2].samples[i], look.saturation);
    planes[0].samples[i] = color.red;
    planes[1].samples[i] = color.green;
    planes[2].samples[i] = color.blue;
  }

  QImage backdrop(pixels, QImage::Format_RGB32);
  const double cellsPerPixelX = double(cells.width()) / pixels.width();
  const double cellsPerPixelY = double(cells.height()) / pixels.height();
  const PlaneEnlarger enlarger(cells.width(), pixels.width(), cellsPerPixelX);
  std::array<std::vector<float>, 3> rows;
  for (auto& row : rows) row.resize(std::size_t(pixels.width()));
  for (int y = 0; y < pixels.height(); ++y) {
    for (std::size_t channel = 0; channel < 3; ++channel)
      enlarger.row(planes[channel], (y + 0.5) * cellsPerPixelY, rows[channel]);
    auto* line = reinterpret_cast<QRgb*>(backdrop.scanLine(y));
    for (int x = 0; x < pixels.width(); ++x) {
      const float dither = ditherAt(x, y);
      const auto level = [&](std::size_t channel) {
        return std::clamp(int(rows[channel][std::size_t(x)] * 255 + dither), 0, 255);
      };
      line[x] = qRgb(level(0), level(1), level(2));
    }
  }
  return backdrop;
}

LockGlass::LockGlass(const QSize& plateSize, double cornerRadius, double pixelsPerPoint, GlassStyle style)
    : size_(plateSize),
      margin_(int(std::ceil(shadowReach * pixelsPerPoint))),
      flow_(float(std::max(1.0, std::floor(flowDistance * pixelsPerPoint) - 1))) {
  buildField(cornerRadius * pixelsPerPoint);
  buildLight(pixelsPerPoint, style);
}

void LockGlass::buildField(double radius) {
  const QRectF plate(QPointF(0, 0), QSizeF(size_));
  constexpr double finer = 16;  // so that the outline's chords stay within a hundredth of a pixel
  const QPolygonF outline =
      continuousRoundedRect(plate, radius).toFillPolygon(QTransform::fromScale(finer, finer));

  // The quarter that the field covers sees the upper left corner and the straight edges beside it.
  struct Segment {
    QPointF start, along;
    double lengthSquared;
  };
  std::vector<Segment> segments;
  double cornerWidth = 0;
  for (qsizetype i = 0; i < outline.size(); ++i) {
    const QPointF start = outline[i] / finer, end = outline[(i + 1) % outline.size()] / finer;
    const QPointF along = end - start;
    const double lengthSquared = QPointF::dotProduct(along, along);
    const auto inQuarter = [&](const QPointF& p) {
      return p.x() <= plate.width() / 2 + 1 && p.y() <= plate.height() / 2 + 1;
    };
    if (lengthSquared < 1e-12 || !(inQuarter(start) || inQuarter(end))) continue;
    segments.push_back({start, along, lengthSquared});
    for (const QPointF& p : {start, end}) {
      if (inQuarter(p) && p.y() < 0.02) cornerWidth = std::max(cornerWidth, p.x());
    }
  }
  const int cornerColumns = std::min(int(std::ceil(cornerWidth)) + 1, size_.width() / 2);
  columns_ = margin_ + cornerColumns;
  rows_ = margin_ + (size_.height() + 1) / 2 + 2;

  field_.resize(std::size_t(columns_) * std::size_t(rows_));
  for (int row = 0; row < rows_; ++row) {
    for (int column = 0; column < columns_; ++column) {
      const QPointF p(column - margin_ + 0.5, row - margin_);
      double nearest = 1e30, side = 1;
      for (const Segment& segment : segments) {
        const QPointF from = p - segment.start;
        const double share =
            std::clamp(QPointF::dotProduct(from, segment.along) / segment.lengthSquared, 0.0, 1.0);
        const QPointF apart = from - share * segment.along;
        const double distance = QPointF::dotProduct(apart, apart);
        if (distance >= nearest) continue;
        nearest = distance;
        // The outline runs clockwise on the screen, so its inside lies to its right.
        side = segment.along.x() * from.y() - segment.along.y() * from.x() > 0 ? -1 : 1;
      }
      field_[std::size_t(row) * std::size_t(columns_) + std::size_t(column)] =
          float(side * std::sqrt(nearest));
    }
  }
}

void LockGlass::buildLight(double pixelsPerPoint, GlassStyle style) {
  const Look& look = lookOf(style);
  const double deepest = std::max(look.bendDepth, 4.5 * look.glowDepth) * pixelsPerPoint;
  for (int step = 0; step <= int(deepest * stepsPerPixel); ++step) {
    const double depth = step / (stepsPerPixel * pixelsPerPoint);
    Depth light{};
    if (depth < look.bendDepth) {
      // The slope of a rim rounded to a quarter circle: steep at the edge, level at the end of the bend.
      const double outwards = 1 - depth / look.bendDepth;
      light.bend = float(look.bend * pixelsPerPoint * (1 - std::sqrt(1 - outwards * outwards)));
    }
    light.hairline = float(std::clamp(1.5 - depth / look.hairline, 0.0, 1.0));
    const double fade = std::max(0.0, 1 - depth / (4.5 * look.glowDepth));
    const double spread = std::exp(-depth / look.glowDepth) * fade;
    light.glow = look.glow * float(spread);
    light.shade = look.shade * float(spread);
    depths_.push_back(light);
  }

  const int farthest = margin_ * stepsPerPixel;
  for (int step = 0; step <= 2 * farthest; ++step) {
    const double distance = (step - farthest) / (stepsPerPixel * pixelsPerPoint);
    const double fade = std::clamp((shadowReach - distance) / 8, 0.0, 1.0);
    shadow_.push_back(look.shadow * float(gaussianTail(distance / look.shadowBlur) * fade));
  }
  shadowOffset_ = look.shadowOffset * pixelsPerPoint;
  baseLight_ = look.baseLight;
  nearLight_ = look.nearLight;
  farLight_ = look.farLight;
}

bool LockGlass::fieldRow(double y, std::span<const GlassPlate> plates, FieldRow& row) const {
  bool any = false;
  row.side.resize(std::size_t(columns_));
  const double middle = size_.height() / 2.0;
  for (const GlassPlate& plate : plates) {
    // Rows below the middle mirror those above it.
    const double inwards = middle - std::abs(y - plate.top - middle);
    const double position = inwards + margin_;
    if (position < 0) continue;
    const int upper = std::min(int(position), rows_ - 2);
    const float lowerShare = float(position - upper);
    const float* a = field_.data() + std::size_t(upper) * std::size_t(columns_);
    const float* b = a + columns_;
    const auto straight = float(-inwards);
    float* out = row.side.data();
    if (!any) {
      for (int i = 0; i < columns_; ++i) out[i] = a[i] + lowerShare * (b[i] - a[i]);
      row.middle = straight;
      any = true;
      continue;
    }
    const float invFlow = 1 / (4 * flow_);
    const auto united = [this, invFlow](float one, float other) {
      const float closeness = std::max(flow_ - std::abs(one - other), 0.0F);
      return std::min(one, other) - closeness * closeness * invFlow;
    };
    for (int i = 0; i < columns_; ++i) out[i] = united(out[i], a[i] + lowerShare * (b[i] - a[i]));
    row.middle = united(row.middle, straight);
  }
  return any;
}

/// Paints pixels of one row.
struct LockGlass::RowPainter {
  const LockGlass& glass;
  const QImage& backdrop;
  QRgb* target;
  int y;

  [[nodiscard]] float shadowAt(float distance) const {
    const auto index = int(distance * stepsPerPixel) + glass.margin_ * stepsPerPixel;
    return glass.shadow_[std::size_t(std::clamp(index, 0, int(glass.shadow_.size()) - 1))];
  }

  static QRgb darkened(QRgb color, float amount, float dither) {
    const float keep = 1 - amount;
    return qRgb(int(float(qRed(color)) * keep + dither), int(float(qGreen(color)) * keep + dither),
                int(float(qBlue(color)) * keep + dither));
  }

  /// `outX`, `outY`: the direction in which the outline lies.
  void paint(int x, float distance, float outX, float outY, float shadowDistance) const {
    const float dither = ditherAt(x, y);
    if (distance >= 0.5F) {
      const float shadow = shadowAt(shadowDistance);
      if (shadow > 0) target[x] = darkened(target[x], shadow, dither);
      return;
    }
    const float depth = std::max(0.0F, -distance);
    const auto index = std::size_t(depth * stepsPerPixel);
    if (index >= glass.depths_.size()) {
      target[x] = reinterpret_cast<const QRgb*>(backdrop.constScanLine(y))[x];
      return;
    }
    const Depth& light = glass.depths_[index];
    int fromX = x, fromY = y;
    if (light.bend > 0) {
      fromX = std::clamp(x - int(std::lround(outX * light.bend)), 0, backdrop.width() - 1);
      fromY = std::clamp(y - int(std::lround(outY * light.bend)), 0, backdrop.height() - 1);
    }
    const QRgb behind = reinterpret_cast<const QRgb*>(backdrop.constScanLine(fromY))[fromX];
    const float facing = outX * lightX + outY * lightY;
    const float square = facing * facing;
    const float rim = glass.baseLight_ + square * (facing > 0 ? glass.nearLight_ : glass.farLight_);
    const float white = light.hairline * rim + light.glow * (facing > 0 ? 0.35F + 0.65F * square : 0.35F);
    const float black = facing < 0 ? light.shade * square : 0.0F;
    const float keep = (1 - white) * (1 - black);
    float red = float(qRed(behind)) * keep + 255 * white;
    float green = float(qGreen(behind)) * keep + 255 * white;
    float blue = float(qBlue(behind)) * keep + 255 * white;
    if (distance > -0.5F) {
      const float cover = 0.5F - distance;
      const float around = (1 - cover) * (1 - shadowAt(shadowDistance));
      red = red * cover + float(qRed(target[x])) * around;
      green = green * cover + float(qGreen(target[x])) * around;
      blue = blue * cover + float(qBlue(target[x])) * around;
    }
    target[x] = qRgb(std::min(int(red + dither), 255), std::min(int(green + dither), 255),
                     std::min(int(blue + dither), 255));
  }
};

void LockGlass::paintRow(QRgb* target, int width, const QImage& backdrop, int y, int left,
                         std::span<const GlassPlate> plates) const {
  FieldRow above, here, below, shadow;
  const double center = y + 0.5;
  if (!fieldRow(center - shadowOffset_, plates, shadow)) {
    shadow.side.assign(std::size_t(columns_), float(margin_));
    shadow.middle = float(margin_);
  }
  const bool near = fieldRow(center, plates, here);
  if (near) {
    if (!fieldRow(center - 1, plates, above)) above = here;
    if (!fieldRow(center + 1, plates, below)) below = here;
  } else {
    here.side.assign(std::size_t(columns_), float(margin_));
    here.middle = float(margin_);
    above = below = here;
  }

  const RowPainter painter{*this, backdrop, target, y};
  for (int column = 0; column < columns_; ++column) {
    const auto i = std::size_t(column);
    const float distance = here.side[i];
    float outX = 0, outY = 0;
    if (distance < 0.5F) {
      const float before = column > 0 ? here.side[i - 1] : distance;
      const float after = column + 1 < columns_ ? here.side[i + 1] : here.middle;
      outX = (after - before) / 2;
      outY = (below.side[i] - above.side[i]) / 2;
      const float length = std::hypot(outX, outY);
      if (length > 0) {
        outX /= length;
        outY /= length;
      }
    }
    const int leftX = left - margin_ + column;
    const int rightX = left + size_.width() + margin_ - 1 - column;
    if (leftX >= 0 && leftX < width) painter.paint(leftX, distance, outX, outY, shadow.side[i]);
    if (rightX >= 0 && rightX < width) painter.paint(rightX, distance, -outX, outY, shadow.side[i]);
  }
  const float outY = below.middle > above.middle ? 1.0F : -1.0F;
  const int middleBegin = std::max(0, left - margin_ + columns_);
  const int middleEnd = std::min(width, left + size_.width() + margin_ - columns_);
  for (int x = middleBegin; x < middleEnd; ++x) painter.paint(x, here.middle, 0, outY, shadow.middle);
}

void LockGlass::paint(QImage& target, const QImage& backdrop, int left,
                      std::span<const GlassPlate> plates) const {
  Q_ASSERT(target.size() == backdrop.size());
  const double reachUp = margin_, reachDown = margin_ + shadowOffset_;
  const int width = target.width();
  std::vector<GlassPlate> near, level;
  std::vector<QRgb> painted;
  std::vector<std::array<float, 3>> sum;
  for (int y = 0; y < target.height(); ++y) {
    near.clear();
    for (const GlassPlate& plate : plates) {
      if (plate.opacity > 0 && y + 1 > plate.top - reachUp && y < plate.top + size_.height() + reachDown)
        near.push_back(plate);
    }
    if (near.empty()) continue;
    std::sort(near.begin(), near.end(),
              [](const GlassPlate& a, const GlassPlate& b) { return a.opacity > b.opacity; });
    auto* line = reinterpret_cast<QRgb*>(target.scanLine(y));
    if (near.back().opacity >= 1) {
      paintRow(line, width, backdrop, y, left, near);
      continue;
    }
    sum.assign(std::size_t(width), {});
    const auto add = [&](const QRgb* row, double weight) {
      const auto share = float(weight);
      for (int x = 0; x < width; ++x) {
        auto& s = sum[std::size_t(x)];
        s[0] += share * float(qRed(row[x]));
        s[1] += share * float(qGreen(row[x]));
        s[2] += share * float(qBlue(row[x]));
      }
    };
    add(line, 1 - std::min(1.0, near.front().opacity));
    for (std::size_t count = 1; count <= near.size(); ++count) {
      const double next = count < near.size() ? near[count].opacity : 0;
      const double weight = std::min(1.0, near[count - 1].opacity) - std::min(1.0, next);
      if (weight <= 0) continue;
      painted.assign(line, line + width);
      paintRow(painted.data(), width, backdrop, y, left, std::span(near).first(count));
      add(painted.data(), weight);
    }
    for (int x = 0; x < width; ++x) {
      const auto& s = sum[std::size_t(x)];
      line[x] = qRgb(int(s[0] + 0.5F), int(s[1] + 0.5F), int(s[2] + 0.5F));
    }
  }
}

}  // namespace brisklet
