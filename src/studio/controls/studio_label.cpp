#include "studio/controls/studio_label.h"

#include "studio/controls/palette.h"

namespace brisklet {

StudioLabel::StudioLabel(const QString& text, QWidget* parent)
    : StudioText({11, FontWeight::Semibold, 0.6}, Studio::mute, parent, LetterCase::Upper) {
  setText(text);
}

}  // namespace brisklet
