#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "platform/h264_encoder.h"
#include "platform/yuv_picture.h"

namespace brisklet {

/// Encodes a movie in which pictures are held: each `show` and every frame of a `hold` gives one access unit.
class HeldPictureEncoder {
 public:
  /// Receives the access units in order: slices behind their lengths in four bytes.
  using Sink = std::function<void(std::span<const uint8_t> accessUnit, bool isIdr)>;

  HeldPictureEncoder(const H264Settings& settings, Sink sink);

  /// The decoder configuration record (ISO/IEC 14496-15) that the sample description carries.
  [[nodiscard]] std::vector<uint8_t> decoderConfiguration() const;

  void show(const YuvPicture& picture);
  /// The picture last shown, once more.
  void hold(const YuvPicture& picture);

 private:
  H264Encoder encoder_;
  Sink sink_;
  int longestGop_;
  int framesSinceIdr_ = 0;
};

}  // namespace brisklet
