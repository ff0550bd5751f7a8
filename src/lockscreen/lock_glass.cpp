#include "lockscreen/lock_glass.h"

#include "base/cores.h"
#include "base/vectorised.h"
#include "drawing/continuous_corners.h"
#include "drawing/float_plane.h"
#include "lockscreen/notification_card.h"

#include <QPainterPath>
#include <QTransform>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

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
  double gleamDepth;  // how fast the brightness behind the rim fades inwards
  float gleam;        // how much of that brightness the rim catches
  float shade;        // darkness inside the rim that is turned away from the light,
  float edge;         // and of the line along it
  float baseLight;    // the rim's brightness all around,
  float nearLight;    // more where it faces the light,
  float farLight;     // and where the light leaves the plate
  float shadow;       // opacity of the drop shadow
  double shadowBlur;  // its standard deviation
  double shadowOffset;
};

constexpr Look materialLook{.blur = 20,
                            .saturation = 1.2F,
                            .bendDepth = 0,
                            .bend = 0,
                            .hairline = 0.7,
                            .glowDepth = 5,
                            .glow = 0.10F,
                            .gleamDepth = 0.7,
                            .gleam = 0.30F,
                            .shade = 0.07F,
                            .edge = 0.20F,
                            .baseLight = 0.10F,
                            .nearLight = 0.30F,
                            .farLight = 0.10F,
                            .shadow = 0.17F,
                            .shadowBlur = 9,
                            .shadowOffset = 4};

constexpr Look regularLook{.blur = 8,
                           .saturation = 1.2F,
                           .bendDepth = 14,
                           .bend = 22,
                           .hairline = 0.8,
                           .glowDepth = 4,
                           .glow = 0.16F,
                           .gleamDepth = 0.7,
                           .gleam = 0.34F,
                           .shade = 0.10F,
                           .edge = 0.24F,
                           .baseLight = 0.12F,
                           .nearLight = 0.62F,
                           .farLight = 0.34F,
                           .shadow = 0.17F,
                           .shadowBlur = 9,
                           .shadowOffset = 4};

constexpr const Look& lookOf(Rendering rendering) {
  return rendering == Rendering::Movie ? materialLook : regularLook;
}

/// Where the light comes from, as a unit vector in the picture.
constexpr float lightX = -0.42F, lightY = -0.9075F;

/// The gap at which two plates begin to flow into one another, and the shadow's reach; points.
constexpr double flowDistance = 10, shadowReach = 27;

/// Light that fades inwards ends after this many times its range.
constexpr double fadeRanges = 3;

/// Steps of depth and distance a pixel in the tables of light and shadow.
constexpr int stepsPerPixel = 16;

/// Points a cell of the grid on which the backdrop is blurred.
constexpr double gridStep = 2;

float linear(float value) {
  return value <= 0.04045F ? value / 12.92F : std::pow((value + 0.055F) / 1.055F, 2.4F);
}

float luminance(float red, float green, float blue) {
  return 0.2126F * linear(red) + 0.7152F * linear(green) + 0.0722F * linear(blue);
}

float lumaOf(float red, float green, float blue) {
  return 0.2126F * red + 0.7152F * green + 0.0722F * blue;
}

/// The brightness of a plate over a backdrop of this brightness: lifted in the dark, and rising slowly where
/// white text begins to fade.
float plateLuma(float luma) {
  const float lifted = 0.12F + 0.88F * luma;
  const float share = std::clamp((luma - 0.4F) / 0.6F, 0.0F, 1.0F);
  const float ceiling = 0.435F + 0.03F * luma + 0.08F * share * (2 - share);
  constexpr float knee = 0.22F;
  const float near = std::max(knee - std::abs(lifted - ceiling), 0.0F) / knee;
  return std::min(lifted, ceiling) - near * near * knee / 4;
}

/// How much a bright backdrop makes the rim of a plate gleam: as far as the plate itself has to stay darker.
float gleamOf(float luma) {
  const float share = std::clamp((luma - 0.3F) / 0.6F, 0.0F, 1.0F);
  return share * share * (3 - 2 * share);
}

/// The contrast, by luminance, of white text of an opacity on this colour, of which so much light is left.
float textContrast(float red, float green, float blue, double opacity, float light) {
  const auto share = static_cast<float>(opacity);
  const auto over = [&](float value) { return share + (1 - share) * light * value; };
  return (luminance(over(red), over(green), over(blue)) + 0.05F) /
         (luminance(light * red, light * green, light * blue) + 0.05F);
}

struct PlateColor {
  float red, green, blue;
};

/// What a plate makes of a blurred backdrop colour.
PlateColor plateColor(float red, float green, float blue, float saturation) {
  constexpr float leastContrast = 3.1F;  // a little above 3:1, for the rounding to eight bits
  const float luma = lumaOf(red, green, blue);
  const float level = plateLuma(luma);
  // A darkened colour keeps its saturation by keeping the ratio of its channels, not their distance, and a
  // frosted one looks right with a little less. Colours that would leave the gamut lose saturation, not hue.
  const float dimming = std::min(1.0F, level / std::max(luma, 0.01F));
  float chroma = saturation * std::pow(dimming, 1.6F);
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
    using namespace CardMetrics;
    return textContrast(c.red, c.green, c.blue, messageOpacity, 1) >= leastContrast &&
           textContrast(c.red, c.green, c.blue, timeOpacity,
                        lightBehindTime(lumaOf(c.red, c.green, c.blue))) >= leastContrast;
  };
  if (readable(color)) return color;
  float dark = 0.5F, bright = 1;
  for (int i = 0; i < 12; ++i) {
    const float middle = (dark + bright) / 2;
    (readable(dimmed(middle)) ? dark : bright) = middle;
  }
  return dimmed(dark);
}

/// A share of 0 to 1 as 16-bit fixed point.
std::uint16_t fixedShare(float share) {
  return static_cast<std::uint16_t>(share * 65535 + 0.5F);
}

/// Dither of a row of pixels as 8.8 fixed point, each value for the four bytes of a pixel.
std::array<std::uint16_t, 32> ditherRow(int firstX, int y) {
  std::array<std::uint16_t, 32> row;
  for (int i = 0; i < 32; ++i)
    row[static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(ditherAt(firstX + i / 4, y) * 256);
  return row;
}

/// The sum of two bytes at shares in 16-bit fixed point and an 8.8 value, cut to a byte. It fits, since the
/// shares of all that is mixed add up to one at most and the dither stays below one.
uchar mixed(uchar one, std::uint16_t oneShare, uchar other, std::uint16_t otherShare, std::uint16_t added) {
  const auto high = [](uchar byte, std::uint16_t share) {
    return static_cast<std::uint16_t>(static_cast<std::uint32_t>(byte) * share >> 8);
  };
  return static_cast<uchar>(
      static_cast<std::uint16_t>(high(one, oneShare) + high(other, otherShare) + added) >> 8);
}

/// How pixels in a row are mixed: shares of the source and of what is there, white with the dither of eight
/// pixels, and a share of the source's gleam.
struct EvenMix {
  std::uint16_t sourceShare, targetShare;
  std::array<std::uint16_t, 32> added;
  std::uint16_t gleam;
};

BRISKLET_VECTORISED void blendEvenly(QRgb* target, const QRgb* source, int count, const EvenMix& mix) {
  // In blocks as long as the dither, so that the compiler makes them vectors.
  const auto blendBlock = [&mix](QRgb* to, const QRgb* from) {
    std::array<QRgb, 8> gleams;
    for (std::size_t k = 0; k < 8; ++k) gleams[k] = (from[k] >> 24) * 0x01010101U;
    const auto* shine = reinterpret_cast<const uchar*>(gleams.data());
    const auto* in = reinterpret_cast<const uchar*>(from);
    auto* out = reinterpret_cast<uchar*>(to);
    for (std::size_t k = 0; k < 32; ++k)
      out[k] = mixed(in[k], mix.sourceShare, out[k], mix.targetShare,
                     static_cast<std::uint16_t>(mix.added[k] + shine[k] * mix.gleam));
    for (std::size_t k = 0; k < 8; ++k) to[k] |= 0xff000000;
  };
  int x = 0;
  for (; x + 8 <= count; x += 8) blendBlock(target + x, source + x);
  std::array<QRgb, 8> to{}, from{};
  std::copy(target + x, target + count, to.begin());
  std::copy(source + x, source + count, from.begin());
  blendBlock(to.data(), from.data());
  std::copy_n(to.begin(), count - x, target + x);
}

void accumulate(std::vector<std::uint16_t>& sum, const QRgb* row, int weight) {
  const auto* bytes = reinterpret_cast<const uchar*>(row);
  for (std::size_t i = 0; i < sum.size(); ++i)
    sum[i] = static_cast<std::uint16_t>(sum[i] + bytes[i] * weight);
}

/// The share of a Gaussian edge's far side, for a distance in standard deviations.
double gaussianTail(double distance) {
  return 0.5 * std::erfc(distance / std::sqrt(2.0));
}

/// A row of the picture that is seen through a plate; what lies beyond its ends continues them.
struct BackdropRow {
  BackdropRow(const QImage& picture, int y)
      : pixels(reinterpret_cast<const QRgb*>(picture.constScanLine(std::clamp(y, 0, picture.height() - 1)))),
        width(picture.width()) {}

  [[nodiscard]] QRgb at(int x) const { return pixels[std::clamp(x, 0, width - 1)]; }

  const QRgb* pixels;
  int width;
};

BRISKLET_VECTORISED void blendBytes(uchar* __restrict out, const uchar* __restrict bytes,
                                    const std::uint16_t* __restrict ones,
                                    const std::uint16_t* __restrict others,
                                    const std::uint16_t* __restrict added,
                                    const std::array<std::uint16_t, 32>& dither, int count) {
  const auto blendByte = [&](int i, int phase) {
    out[i] = mixed(bytes[i], ones[i], out[i], others[i],
                   static_cast<std::uint16_t>(added[i] + dither[static_cast<std::size_t>(phase)]));
  };
  // In blocks as long as the dither, so that the compiler makes them vectors.
  int i = 0;
  for (; i + 32 <= count; i += 32) {
    for (int k = 0; k < 32; ++k) blendByte(i + k, k);
  }
  for (; i < count; ++i) blendByte(i, i % 32);
}

/// Pixels of a row before they are blended: what shows through, and its share, that of what is there, and
/// that of white. The four bytes of a pixel have the same shares: each is stored four times over.
struct RowMix {
  explicit RowMix(std::size_t pixels)
      : sources(pixels), sourceShares(4 * pixels), targetShares(4 * pixels), whites(4 * pixels) {}

  void set(std::size_t at, QRgb source, float sourceShare, float targetShare, float white) {
    sources[at] = source;
    std::fill_n(&sourceShares[4 * at], 4, fixedShare(sourceShare));
    std::fill_n(&targetShares[4 * at], 4, fixedShare(targetShare));
    std::fill_n(&whites[4 * at], 4, static_cast<std::uint16_t>(white * (255 * 256)));
  }

  /// A pixel beside the plates, of which so much is left.
  void setBeside(std::size_t at, float targetShare) { set(at, 0, 0, targetShare, 0); }

  /// Blends `count` pixels from `begin` on into the row's pixels from `x` on, those that it has.
  void blend(QRgb* target, int width, int x, int y, int begin, int count) const {
    const int skipped = std::max(0, -x);
    count = std::min(count, width - x) - skipped;
    if (count <= 0) return;
    const auto from = static_cast<std::size_t>(begin + skipped);
    const auto* bytes = reinterpret_cast<const uchar*>(sources.data() + from);
    const std::uint16_t* ones = sourceShares.data() + 4 * from;
    const std::uint16_t* others = targetShares.data() + 4 * from;
    const std::uint16_t* added = whites.data() + 4 * from;
    const std::array<std::uint16_t, 32> dither = ditherRow(x + skipped, y);
    auto* out = reinterpret_cast<uchar*>(target + x + skipped);
    blendBytes(out, bytes, ones, others, added, dither, 4 * count);
    for (int k = 0; k < count; ++k) target[x + skipped + k] |= 0xff000000;
  }

  std::vector<QRgb> sources;
  std::vector<std::uint16_t> sourceShares, targetShares, whites;
};

}  // namespace

struct LockGlass::Scratch {
  FieldRow above, here, below, shadow;
  RowMix mix;
};

QImage glassBackdrop(const QImage& wallpaper, double pixelsPerPoint, Rendering rendering) {
  const Look& look = lookOf(rendering);
  const QSize pixels = wallpaper.size();
  const QSize cells(std::max(1, qRound(pixels.width() / (gridStep * pixelsPerPoint))),
                    std::max(1, qRound(pixels.height() / (gridStep * pixelsPerPoint))));
  const QImage small = wallpaper.scaled(cells, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                           .convertToFormat(QImage::Format_RGB32);

  std::array<FloatPlane, 4> planes;  // red, green, blue and gleam
  const ColorPlanes colors = colorsOf(small);
  for (std::size_t channel = 0; channel < 3; ++channel)
    planes[channel] = blurred(colors[channel], look.blur / gridStep);
  planes[3] = FloatPlane(cells.width(), cells.height());
  for (std::size_t i = 0; i < planes[0].samples.size(); ++i) {
    const float red = planes[0].samples[i], green = planes[1].samples[i], blue = planes[2].samples[i];
    planes[3].samples[i] = gleamOf(lumaOf(red, green, blue));
    const PlateColor color = plateColor(red, green, blue, look.saturation);
    planes[0].samples[i] = color.red;
    planes[1].samples[i] = color.green;
    planes[2].samples[i] = color.blue;
  }

  return enlarged(planes, pixels);
}

LockGlass::LockGlass(const QSize& plateSize, double cornerRadius, double pixelsPerPoint, Rendering rendering)
    : size_(plateSize),
      margin_(static_cast<int>(std::ceil(shadowReach * pixelsPerPoint))),
      flow_(static_cast<float>(std::max(1.0, std::floor(flowDistance * pixelsPerPoint) - 1))) {
  buildField(cornerRadius * pixelsPerPoint);
  buildLight(pixelsPerPoint, rendering);
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
  const int cornerColumns = std::min(static_cast<int>(std::ceil(cornerWidth)) + 1, size_.width() / 2);
  columns_ = margin_ + cornerColumns;
  rows_ = margin_ + (size_.height() + 1) / 2 + 2;

  const auto distanceAt = [&segments](const QPointF& p) {
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
    return static_cast<float>(side * std::sqrt(nearest));
  };
  field_.resize(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_));
  inHalves(0, rows_, [&](int begin, int end) {
    float* out = field_.data() + static_cast<std::size_t>(begin) * static_cast<std::size_t>(columns_);
    for (int row = begin; row < end; ++row)
      for (int column = 0; column < columns_; ++column)
        *out++ = distanceAt({column - margin_ + 0.5, static_cast<double>(row - margin_)});
  });
}

void LockGlass::buildLight(double pixelsPerPoint, Rendering rendering) {
  const Look& look = lookOf(rendering);
  const double deepest =
      std::max(look.bendDepth, fadeRanges * std::max(look.glowDepth, look.gleamDepth)) * pixelsPerPoint;
  for (int step = 0; step <= static_cast<int>(deepest * stepsPerPixel); ++step) {
    const double depth = step / (stepsPerPixel * pixelsPerPoint);
    Depth light{};
    if (depth < look.bendDepth) {
      // The slope of a rim rounded to a quarter circle: steep at the edge, level at the end of the bend.
      const double outwards = 1 - depth / look.bendDepth;
      light.bend = static_cast<float>(look.bend * pixelsPerPoint * (1 - std::sqrt(1 - outwards * outwards)));
    }
    light.hairline = static_cast<float>(std::clamp(1.5 - depth / look.hairline, 0.0, 1.0));
    // An exponential that ends.
    const auto faded = [depth](double range) {
      return std::exp(-depth / range) * std::max(0.0, 1 - depth / (fadeRanges * range));
    };
    const double spread = faded(look.glowDepth);
    light.gleam = look.gleam * static_cast<float>(faded(look.gleamDepth));
    light.glow = look.glow * static_cast<float>(spread);
    light.shade = look.shade * static_cast<float>(spread);
    depths_.push_back(light);
  }

  const int farthest = margin_ * stepsPerPixel;
  for (int step = 0; step <= 2 * farthest; ++step) {
    const double distance = (step - farthest) / (stepsPerPixel * pixelsPerPoint);
    const double fade = std::clamp((shadowReach - distance) / 8, 0.0, 1.0);
    shadow_.push_back(look.shadow * static_cast<float>(gaussianTail(distance / look.shadowBlur) * fade));
  }
  shadowOffset_ = look.shadowOffset * pixelsPerPoint;
  baseLight_ = look.baseLight;
  nearLight_ = look.nearLight;
  farLight_ = look.farLight;
  edge_ = look.edge;
}

void LockGlass::fieldRow(double y, std::span<const GlassPlate> plates, FieldRow& row) const {
  row.assign(static_cast<std::size_t>(columns_) + 1, static_cast<float>(margin_));
  const double middle = size_.height() / 2.0;
  bool any = false;
  for (const GlassPlate& plate : plates) {
    // Rows below the middle mirror those above it.
    const double inwards = middle - std::abs(y - plate.top - middle);
    const double position = inwards + margin_;
    if (position < 0) continue;
    const int upper = std::min(static_cast<int>(position), rows_ - 2);
    const float lowerShare = static_cast<float>(position - upper);
    const float* a = field_.data() + static_cast<std::size_t>(upper) * static_cast<std::size_t>(columns_);
    const float* b = a + columns_;
    const float invFlow = 1 / (4 * flow_);
    const auto united = [this, invFlow](float one, float other) {
      const float closeness = std::max(flow_ - std::abs(one - other), 0.0F);
      return std::min(one, other) - closeness * closeness * invFlow;
    };
    float* out = row.data();
    if (any) {
      for (int i = 0; i < columns_; ++i) out[i] = united(out[i], a[i] + lowerShare * (b[i] - a[i]));
      out[columns_] = united(out[columns_], static_cast<float>(-inwards));
    } else {
      for (int i = 0; i < columns_; ++i) out[i] = a[i] + lowerShare * (b[i] - a[i]);
      out[columns_] = static_cast<float>(-inwards);
    }
    any = true;
  }
}

float LockGlass::leftByShadow(float distance) const {
  const auto index = static_cast<int>((distance + static_cast<float>(margin_)) * stepsPerPixel + 0.5F);
  return 1 - shadow_[static_cast<std::size_t>(std::clamp(index, 0, static_cast<int>(shadow_.size()) - 1))];
}

LockGlass::Column LockGlass::columnAt(const Scratch& scratch, int index) const {
  const auto at = static_cast<std::size_t>(index), last = static_cast<std::size_t>(columns_);
  const FieldRow& here = scratch.here;
  const float distance = here[at];
  Column column{};
  column.cover = std::clamp(0.5F - distance, 0.0F, 1.0F);
  column.around = leftByShadow(scratch.shadow[at]) * (1 - column.cover);
  const auto depth = static_cast<std::size_t>(std::max(0.0F, -distance) * stepsPerPixel + 0.5F);
  if (column.cover <= 0 || depth >= depths_.size()) return column;
  column.depth = &depths_[depth];
  const float outX = at == last ? 0 : here[at + 1] - here[at > 0 ? at - 1 : 0];
  const float outY = scratch.below[at] - scratch.above[at];
  if (const float square = outX * outX + outY * outY; square > 0) {
    const float toUnit = 1 / std::sqrt(square);
    column.outX = outX * toUnit;
    column.outY = outY * toUnit;
  }
  return column;
}

LockGlass::Shine LockGlass::shine(const Column& column) const {
  if (!column.depth) return {1, 0, 0};
  const Depth& depth = *column.depth;
  const float facing = column.outX * lightX + column.outY * lightY;
  const float square = facing * facing;
  const float rim = baseLight_ + square * (facing > 0 ? nearLight_ : farLight_);
  const float white = depth.hairline * rim + depth.glow * (facing > 0 ? 0.35F + 0.65F * square : 0.35F);
  const float black = facing < 0 ? (depth.shade + depth.hairline * edge_) * square : 0.0F;
  const float gleam = facing > 0 ? depth.gleam * square * (2 - square) : 0.0F;
  return {(1 - white) * (1 - black), white, gleam * (1 - white)};
}

void LockGlass::paintRow(QRgb* target, const QImage& backdrop, int y, int left,
                         std::span<const GlassPlate> plates, Scratch& scratch) const {
  const double center = y + 0.5;
  fieldRow(center - shadowOffset_, plates, scratch.shadow);
  fieldRow(center - 1, plates, scratch.above);
  fieldRow(center, plates, scratch.here);
  fieldRow(center + 1, plates, scratch.below);
  const BackdropRow behind(backdrop, y);
  const auto bentRow = [&](const Column& column) {
    const int bend = column.depth ? static_cast<int>(column.outY * column.depth->bend) : 0;
    return bend == 0 ? behind : BackdropRow(backdrop, y - bend);
  };

  // Both sides at once: they differ in nothing but the direction of the light.
  const int leftmost = left - margin_, rightmost = left + size_.width() + margin_ - 1;
  for (int i = 0; i < columns_; ++i) {
    const auto at = static_cast<std::size_t>(i), mirrored = static_cast<std::size_t>(2 * columns_ - 1 - i);
    if (scratch.here[at] >= 0.5F) {
      const float share = leftByShadow(scratch.shadow[at]);
      scratch.mix.setBeside(at, share);
      scratch.mix.setBeside(mirrored, share);
      continue;
    }
    Column column = columnAt(scratch, i);
    if (!column.depth) {
      scratch.mix.set(at, behind.at(leftmost + i), 1, 0, 0);
      scratch.mix.set(mirrored, behind.at(rightmost - i), 1, 0, 0);
      continue;
    }
    const BackdropRow row = bentRow(column);
    const int bend = column.depth ? static_cast<int>(column.outX * column.depth->bend) : 0;
    const auto mix = [&](std::size_t place, QRgb source) {
      const Shine lit = shine(column);
      const float white = lit.white + lit.gleam * static_cast<float>(source >> 24) / 255;
      scratch.mix.set(place, source, column.cover * lit.keep, column.around, column.cover * white);
    };
    mix(at, row.at(leftmost + i - bend));
    column.outX = -column.outX;
    mix(mirrored, row.at(rightmost - i + bend));
  }
  const int middleBegin = leftmost + columns_, middleEnd = rightmost - columns_ + 1;
  scratch.mix.blend(target, behind.width, leftmost, y, 0, columns_);
  scratch.mix.blend(target, behind.width, middleEnd, y, columns_, columns_);

  const int begin = std::max(0, middleBegin), end = std::min(behind.width, middleEnd);
  if (begin >= end) return;
  const Column column = columnAt(scratch, columns_);
  if (column.cover == 1 && !column.depth) {
    std::transform(behind.pixels + begin, behind.pixels + end, target + begin,
                   [](QRgb pixel) { return pixel | 0xff000000; });
    return;
  }
  const Shine lit = shine(column);
  EvenMix mix{fixedShare(column.cover * lit.keep), fixedShare(column.around), ditherRow(begin, y),
              static_cast<std::uint16_t>(column.cover * lit.gleam * 256)};
  for (std::uint16_t& value : mix.added)
    value = static_cast<std::uint16_t>(value + column.cover * lit.white * (255 * 256));
  blendEvenly(target + begin, bentRow(column).pixels + begin, end - begin, mix);
}

void LockGlass::paint(QImage& target, const QImage& backdrop, int left,
                      std::span<const GlassPlate> plates) const {
  Q_ASSERT(target.size() == backdrop.size());
  double top = target.height(), bottom = 0;
  for (const GlassPlate& plate : plates) {
    top = std::min(top, plate.top - margin_ - 1);
    bottom = std::max(bottom, plate.top + size_.height() + margin_ + shadowOffset_ + 1);
  }
  const int first = std::max(0, static_cast<int>(top)),
            last = std::min(target.height(), static_cast<int>(bottom));
  if (first >= last) return;
  const Rows rows{reinterpret_cast<QRgb*>(target.bits()), target.bytesPerLine() / 4, target.width()};
  inHalves(first, last, [&](int begin, int end) { paintRows(rows, begin, end, backdrop, left, plates); });
}

void LockGlass::paintRows(const Rows& rows, int firstRow, int lastRow, const QImage& backdrop, int left,
                          std::span<const GlassPlate> plates) const {
  const int first = std::max(0, left - margin_);
  const int count = std::min(rows.width, left + size_.width() + margin_) - first;
  if (count <= 0) return;
  Scratch scratch{{}, {}, {}, {}, RowMix(static_cast<std::size_t>(2 * columns_))};
  std::vector<GlassPlate> near;
  std::vector<QRgb> before(static_cast<std::size_t>(count), 0);
  std::vector<std::uint16_t> sum(static_cast<std::size_t>(count) * 4, 0);
  for (int y = firstRow; y < lastRow; ++y) {
    near.clear();
    for (const GlassPlate& plate : plates) {
      if (plate.opacity > 0 && y + 1 > plate.top - margin_ &&
          y < plate.top + size_.height() + margin_ + shadowOffset_)
        near.push_back(plate);
    }
    if (near.empty()) continue;
    std::sort(near.begin(), near.end(),
              [](const GlassPlate& a, const GlassPlate& b) { return a.opacity > b.opacity; });
    QRgb* line = rows.pixels + y * rows.stride;
    if (near.back().opacity >= 1) {
      paintRow(line, backdrop, y, left, near, scratch);
      continue;
    }
    // Opacities in 256ths, so that the weights of the levels add up exactly.
    const auto share = [&](std::size_t index) {
      return index < near.size() ? static_cast<int>(std::lround(std::min(1.0, near[index].opacity) * 256))
                                 : 0;
    };
    std::copy_n(line + first, count, before.begin());
    std::fill(sum.begin(), sum.end(), static_cast<std::uint16_t>(128));
    accumulate(sum, before.data(), 256 - share(0));
    for (std::size_t level = 0; level < near.size(); ++level) {
      const int weight = share(level) - share(level + 1);
      if (weight <= 0) continue;
      std::copy_n(before.begin(), count, line + first);
      paintRow(line, backdrop, y, left, std::span(near).first(level + 1), scratch);
      accumulate(sum, line + first, weight);
    }
    auto* bytes = reinterpret_cast<uchar*>(line + first);
    for (std::size_t i = 0; i < sum.size(); ++i) bytes[i] = static_cast<uchar>(sum[i] >> 8);
  }
}

}  // namespace brisklet
