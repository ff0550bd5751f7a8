#pragma once

#include <QImage>

#include "studio/chip.h"

namespace brisklet {

/// The user's photo as a wallpaper.
class CustomWallpaperChip : public Chip {
  Q_OBJECT

 public:
  explicit CustomWallpaperChip(QWidget* parent = nullptr);

  /// The path of the photo; empty when there is none. It is read once.
  void setPhoto(const QString& path);
  [[nodiscard]] QSize sizeHint() const override { return {44, 44}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString path_;
  QImage preview_;
};

}  // namespace brisklet
