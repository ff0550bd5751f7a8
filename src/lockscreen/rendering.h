#pragma once

namespace brisklet {

/// Whether the lock screen is shown live, or drawn for a movie: then with square corners, plates of material
/// in place of glass, and every change at once.
enum class Rendering { Live, Movie };

}  // namespace brisklet
