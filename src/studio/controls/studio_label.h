#pragma once

#include "studio/controls/studio_text.h"

namespace brisklet {

/// The title of a section.
class StudioLabel : public StudioText {
  Q_OBJECT

 public:
  explicit StudioLabel(const QString& text, QWidget* parent = nullptr);
};

}  // namespace brisklet
