#pragma once

namespace brisklet {

/// How long a picture of a movie is seen. The next frame takes the place of a brief one, as while cards move,
/// so that it need not be quite as fine.
enum class Stay { Long, Brief };

}  // namespace brisklet
