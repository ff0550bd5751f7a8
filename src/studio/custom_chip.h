#pragma once

#include "studio/controls/chip.h"

#include <QImage>

namespace brisklet {

/// A choice of the user's own making: a plus, or the photo that they chose.
class CustomChip : public Chip {
  Q_OBJECT

 public:
  CustomChip(double cornerRadius, const QString& label, QWidget* parent = nullptr);

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
