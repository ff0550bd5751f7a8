#pragma once

namespace brisklet {

/// Whether the lock screen is shown live, or captured for a movie: then with square corners, plates of
/// material in place of glass, and every change at once.
enum class CaptureMode { Live, Capture };

}  // namespace brisklet
