#include "studio/plus_tile.h"

#include "platform/symbol_image.h"
#include "studio/palette.h"

namespace brisklet {

void paintPlusTile(QPainter& painter, const RoundedBox& box) {
  paintBox(painter, box, Studio::white);
  drawSymbol(painter, QStringLiteral("plus"), 16, box.rect.center(), Studio::mute);
}

}  // namespace brisklet
