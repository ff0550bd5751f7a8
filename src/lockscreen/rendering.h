#pragma once

namespace brisklet {

/// What a lock screen is drawn for: the stage, with cut corners and glass; a movie, with square corners and
/// plates of material; or a movie whose cards move, with square corners and the stage's glass.
enum class Rendering { Live, Movie, MovieInMotion };

}  // namespace brisklet
