#pragma once

#include "studio/controls/chip.h"

#include <QImage>

namespace brisklet {

/// One built-in wallpaper.
class WallpaperChip : public Chip {
  Q_OBJECT

 public:
  static constexpr double radius = 9;  // points

  /// `id` is also the name of the picture.
  WallpaperChip(const QString& id, const QString& label, QWidget* parent = nullptr);

  [[nodiscard]] const QString& id() const { return id_; }
  [[nodiscard]] QSize sizeHint() const override { return {44, 44}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString id_;
  QImage preview_;
};

}  // namespace brisklet
