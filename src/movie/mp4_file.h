#pragma once

#include "movie/sample_spool.h"

#include <cstdint>
#include <vector>

namespace brisklet {

/// An H.264 track; its samples count in frames.
struct Mp4VideoTrack {
  int width = 0;   // pixels
  int height = 0;  // pixels
  int framesPerSecond = 0;
  std::vector<uint8_t> decoderConfiguration;
  SampleSpool& spool;
};

/// An AAC track; its samples count in 1 / sampleRate s.
struct Mp4AudioTrack {
  int sampleRate = 0;
  int channels = 0;
  int bitRate = 0;        // bits per second
  int packetSamples = 0;  // of one packet
  int priming = 0;        // samples before the first one to be heard
  std::vector<uint8_t> decoderConfiguration;
  SampleSpool& spool;
};

/// Writes the whole movie to a file, from its beginning: the index (`moov`) first, so that it plays
/// while it downloads, then the samples of both tracks by turns of half a second. `audio` may be null.
/// Failures throw `MovieFailure`. The file is left open.
void writeMp4(int fd, const Mp4VideoTrack& video, const Mp4AudioTrack* audio);

}  // namespace brisklet
