#pragma once

namespace brisklet {

/// Sends what libav remarks to the category `brisklet.movie` instead of the console.
void logCodecMessages();

}  // namespace brisklet
