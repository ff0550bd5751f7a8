#pragma once

#include <QByteArray>

namespace brisklet {

/// What stands before `pcmBytes` bytes of samples in a WAV file. Throws as `wavFile` does.
[[nodiscard]] QByteArray wavHeader(qint64 pcmBytes, int channels);

/// A WAV file of interleaved 16-bit little-endian samples at 44100 Hz. Throws `Error` when they are more than
/// the format's 32-bit lengths can count.
[[nodiscard]] QByteArray wavFile(const QByteArray& pcm, int channels);

}  // namespace brisklet
