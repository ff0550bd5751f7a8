#pragma once

#include "studio/alert.h"

namespace brisklet {

/// All keys, and what nobody would find alone.
[[nodiscard]] Alert::Content keysSheet();

}  // namespace brisklet
