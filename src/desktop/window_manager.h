#pragma once

namespace brisklet {

/// Whether windows must do by themselves what a window manager does: on an X11 display where none runs.
[[nodiscard]] bool lacksWindowManager();

}  // namespace brisklet
