#pragma once

#include <QImage>
#include <QString>
#include <memory>

#include "lockscreen/capture_mode.h"
#include "lockscreen/lock_glass.h"
#include "lockscreen/lock_screen_layout.h"
#include "lockscreen/wallpaper.h"

namespace brisklet {

/// The lock screen without its cards, at one scale: what stays the same while a sequence plays. Parts are
/// made again only when what they depend on changes.
class LockScreenScenery {
 public:
  /// Brings the scenery up to date with the document's settings. The picture has `pixels`, of which
  /// `pixelsPerPoint` are a point.
  void update(const SequenceDocument& document, const QSize& pixels, double pixelsPerPoint, CaptureMode mode);

  /// Layout without cards.
  [[nodiscard]] const LockScreenLayout& layout() const { return layout_; }
  /// Wallpaper, status bar, clock, quick actions and home indicator; RGB32. The same image until something
  /// changes.
  [[nodiscard]] const QImage& picture() const { return picture_; }
  /// What shows through plates.
  [[nodiscard]] const QImage& backdrop() const { return backdrop_; }
  [[nodiscard]] const LockGlass& cardGlass() const { return *cardGlass_; }

  /// Paints the quick actions and the home indicator, which stand in front of the cards.
  void paintFront(QImage& target) const;

 private:
  void paintBack(QImage& target) const;
  void paintOrb(QImage& target, const PlacedSymbol& orb) const;

  QSize pixels_;
  double pixelsPerPoint_ = 0;
  CaptureMode mode_ = CaptureMode::Capture;
  QString dateLabel_, timeLabel_;
  WallpaperSource wallpaperSource_;
  QImage wallpaper_, backdrop_, picture_;
  LockScreenLayout layout_;
  std::unique_ptr<LockGlass> cardGlass_, orbGlass_;
};

}  // namespace brisklet
