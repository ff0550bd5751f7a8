#pragma once

#include "studio/control_painting.h"

namespace brisklet {

/// The tile of a choice that the user makes: a plus on white.
void paintPlusTile(QPainter& painter, const RoundedBox& box);

}  // namespace brisklet
