#pragma once

#include "studio/controls/chip.h"

#include <QImage>

namespace brisklet {

/// A square choice: a built-in wallpaper, or one of the user's own making, which is a plus until it has a
/// photo.
class PictureChip : public Chip {
  Q_OBJECT

 public:
  static constexpr double radius = 9;  // points

  /// `id` is also the name of the built-in picture, if there is one.
  PictureChip(const QString& id, const QString& label, QWidget* parent = nullptr);

  [[nodiscard]] const QString& id() const { return id_; }
  /// The path of the photo; empty when there is none. It is read once, in the background.
  void setPhoto(const QString& path);
  /// Whether the white clock can hardly be read on the photo.
  [[nodiscard]] bool isTooLight() const { return isTooLight_; }
  [[nodiscard]] QSize sizeHint() const override { return {44, 44}; }

 Q_SIGNALS:
  /// Another photo has been read.
  void photoRead();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString id_;
  QString path_;
  QImage preview_;
  bool isTooLight_ = false;
};

}  // namespace brisklet
