#pragma once

#include "studio/controls/studio_control.h"

#include <QString>

namespace brisklet {

/// One of the buttons that a window's frame would have: close, minimise, zoom.
class WindowButton : public StudioControl {
  Q_OBJECT

 public:
  static constexpr int size = 28, radius = 7;  // points

  WindowButton(const QString& symbol, const QString& label, QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override { return {size, size}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString symbol_;
};

}  // namespace brisklet
