#pragma once

#include <QByteArray>

namespace brisklet {

/// A piece of an audio track: interleaved signed 16-bit little-endian samples.
struct AudioChunk {
  QByteArray pcm;
  qint64 frames = 0;
  /// The first frame's place in the track, in units of 1 / sample rate.
  qint64 presentationTime = 0;
};

}  // namespace brisklet
