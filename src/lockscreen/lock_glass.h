#pragma once

#include "lockscreen/rendering.h"

#include <QImage>
#include <QSize>
#include <span>
#include <vector>

namespace brisklet {

/// The wallpaper as it shines through a plate, at the wallpaper's size: blurred, livelier in colour, and
/// moved into the range of brightness over which white text can be read, black lifted and white lowered. The
/// texts of a card, the time before its shade, have a contrast of 3:1 or better everywhere on it. RGB32; the
/// byte that is left says how bright the wallpaper itself is there, for light along the rim.
[[nodiscard]] QImage glassBackdrop(const QImage& wallpaper, double pixelsPerPoint, Rendering rendering);

/// A plate of a column at one moment.
struct GlassPlate {
  /// Pixels; fractions are drawn.
  double top = 0;
  double opacity = 1;
};

/// Paints plates of one shape that stand above each other. Made once for a shape and scale.
class LockGlass {
 public:
  /// The size is in pixels, the corner radius in points.
  LockGlass(const QSize& plateSize, double cornerRadius, double pixelsPerPoint, Rendering rendering);

  /// Paints the plates with their shadows over the RGB32 picture `target`, which has the backdrop's size.
  /// Plates nearer than 10 points to each other flow into one shape. The picture is the mean, over all
  /// thresholds from 0 to 1, of the glass of those plates whose opacity reaches the threshold: a plate that
  /// fades in joins its neighbours by and by.
  void paint(QImage& target, const QImage& backdrop, int left, std::span<const GlassPlate> plates) const;

  [[nodiscard]] QSize plateSize() const { return size_; }
  /// Pixels around a plate that its shadow may reach.
  [[nodiscard]] int reach() const { return margin_; }

 private:
  /// What light does at one depth below the rim.
  struct Depth {
    float bend;      // pixels towards the inside from which the backdrop is seen
    float hairline;  // share of the bright line along the rim
    float glow;      // share of the light that spreads inwards from it
    float gleam;     // share of a bright backdrop's light
    float shade;     // share of the darkness within the far rim
  };
  /// Distances to the outline along one pixel row, pixels, negative inside: the columns from `margin_` left
  /// of the plates to where the outline runs straight, and last the value of all columns between the two
  /// sides.
  using FieldRow = std::vector<float>;
  /// What a row is painted from.
  struct Scratch;
  /// One column of a row: the plate's share of it, the share of what is around with its shadow, and near the
  /// rim the light at its depth and the direction in which the outline lies.
  struct Column {
    float cover, around;
    const Depth* depth;
    float outX, outY;
  };
  /// The share that light leaves of what is behind, that of white that it adds, and that of white where the
  /// backdrop is bright.
  struct Shine {
    float keep, white, gleam;
  };

  /// Pixels to paint on.
  struct Rows {
    QRgb* pixels;
    qsizetype stride;  // pixels
    int width;
  };

  void buildField(double radius);
  void buildLight(double pixelsPerPoint, Rendering rendering);
  /// The smooth union of the plates; as far as can be where all are out of reach.
  void fieldRow(double y, std::span<const GlassPlate> plates, FieldRow& row) const;
  /// The share of what is around that the shadow leaves, at a distance from the outline of what casts it.
  [[nodiscard]] float leftByShadow(float distance) const;
  [[nodiscard]] Column columnAt(const Scratch& scratch, int index) const;
  [[nodiscard]] Shine shine(const Column& column) const;
  void paintRow(QRgb* target, const QImage& backdrop, int y, int left, std::span<const GlassPlate> plates,
                Scratch& scratch) const;
  void paintRows(const Rows& rows, int firstRow, int lastRow, const QImage& backdrop, int left,
                 std::span<const GlassPlate> plates) const;

  QSize size_;
  int margin_ = 0;
  /// Columns of the field on each side: the margin and the corner.
  int columns_ = 0;
  /// Field rows from `margin_` above the plate to its middle, at whole pixels.
  int rows_ = 0;
  std::vector<float> field_;
  /// The range of the smooth union, pixels.
  float flow_ = 0;

  std::vector<Depth> depths_;
  std::vector<float> shadow_;
  double shadowOffset_ = 0;
  float baseLight_ = 0, nearLight_ = 0, farLight_ = 0, edge_ = 0;
};

}  // namespace brisklet
