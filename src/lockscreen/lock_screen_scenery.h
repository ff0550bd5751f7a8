#pragma once

#include "lockscreen/kept.h"
#include "lockscreen/lock_glass.h"
#include "lockscreen/lock_screen_layout.h"
#include "lockscreen/rendering.h"
#include "lockscreen/wallpaper.h"

#include <QImage>
#include <QString>
#include <memory>

namespace brisklet {

/// The lock screen without its cards, at one scale: what stays the same while a sequence plays. Parts are
/// made again only when what they depend on changes.
class LockScreenScenery {
 public:
  /// Brings the scenery up to date with the document's settings. The picture has `pixels`, of which
  /// `pixelsPerPoint` are a point.
  void update(const SequenceDocument& document, const QSize& pixels, double pixelsPerPoint,
              Rendering rendering);

  [[nodiscard]] WallpaperSource& wallpaperSource() { return wallpaperSource_; }

  /// Layout without cards.
  [[nodiscard]] const LockScreenLayout& layout() const { return layout_; }
  /// Wallpaper, status bar, clock, quick actions and home indicator; RGB32. The same image until something
  /// changes.
  [[nodiscard]] const QImage& picture() const { return picture_.last(); }
  /// What stands behind everything.
  [[nodiscard]] const QImage& wallpaper() const { return wallpaperSource_.last(); }
  /// What shows through plates.
  [[nodiscard]] const QImage& backdrop() const { return backdrop_.last(); }
  [[nodiscard]] const LockGlass& cardGlass() const { return *glass_.last().card; }

  /// Paints the quick actions and the home indicator, which stand in front of the cards.
  enum class Behind { Wallpaper, Cards };
  void paintFront(QImage& target, Behind behind, double pixelsPerPoint) const;

 private:
  struct Scale {
    QSize pixels;
    double pixelsPerPoint;
    Rendering rendering;

    friend bool operator==(const Scale&, const Scale&) = default;
  };
  struct BackdropKey {
    Scale scale;
    qint64 wallpaper;

    friend bool operator==(const BackdropKey&, const BackdropKey&) = default;
  };
  struct PictureKey {
    Scale scale;
    qint64 wallpaper;
    QString dateLabel, timeLabel;

    friend bool operator==(const PictureKey&, const PictureKey&) = default;
  };
  struct Glass {
    std::unique_ptr<const LockGlass> card, orb;
  };

  void paintBack(QImage& target, const SequenceDocument& document, double pixelsPerPoint) const;
  void paintOrb(QImage& target, const PlacedSymbol& orb, Behind behind, double pixelsPerPoint) const;

  Rendering rendering_ = Rendering::Live;
  WallpaperSource wallpaperSource_;
  LockScreenLayout layout_;
  Kept<Scale, Glass> glass_;
  Kept<BackdropKey, QImage> backdrop_;
  Kept<PictureKey, QImage> picture_;
};

}  // namespace brisklet
