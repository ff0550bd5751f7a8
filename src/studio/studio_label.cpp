#include "studio/studio_label.h"

#include "studio/palette.h"

namespace brisklet {

StudioLabel::StudioLabel(const QString& text, QWidget* parent)
    : StudioText({11, FontWeight::Semibold, 0.6}, Studio::mute, parent, LetterCase::Upper) {
  setText(text);
}

}  // namespace brisklet
