#pragma once

#include <QByteArray>

namespace brisklet {

/// A WAV file of interleaved 16-bit little-endian samples at 44100 Hz. Throws `Error` when they are more than
/// the format's 32-bit lengths can count.
[[nodiscard]] QByteArray wavFile(const QByteArray& pcm, int channels);

}  // namespace brisklet
