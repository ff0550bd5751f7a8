#pragma once

#include "lockscreen/app_glyph.h"
#include "model/catalogue.h"
#include "studio/controls/chip.h"

namespace brisklet {

/// One built-in app.
class AppChip : public Chip {
  Q_OBJECT

 public:
  static constexpr double glyphSize = 36, radius = 9;  // points

  explicit AppChip(const AppPreset& preset, QWidget* parent = nullptr);

  [[nodiscard]] const QString& id() const { return preset_.id; }
  [[nodiscard]] QSize sizeHint() const override { return {36, 36}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  AppPreset preset_;
  AppGlyphCache glyphs_;
};

}  // namespace brisklet
