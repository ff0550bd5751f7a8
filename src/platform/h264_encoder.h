#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/codec_handles.h"
#include "platform/yuv_picture.h"

namespace brisklet {

struct H264Settings {
  int width = 0;   // pixels, even
  int height = 0;  // pixels, even
  int framesPerSecond = 0;
};

enum class PictureCoding { Idr, Predicted };

/// libx264, one picture in, one picture out: no B pictures, one reference, no look-ahead, one thread, so that
/// the bytes depend on the pictures alone.
class H264Encoder {
 public:
  explicit H264Encoder(const H264Settings& settings);

  /// NAL units without length or start code.
  [[nodiscard]] const std::vector<uint8_t>& sequenceParameters() const { return sps_; }
  [[nodiscard]] const std::vector<uint8_t>& pictureParameters() const { return pps_; }

  /// The slices of the picture, each a NAL unit behind its length in four bytes. The bytes stay valid until
  /// the next call.
  [[nodiscard]] std::span<const uint8_t> encode(const YuvPicture& picture, PictureCoding coding);

 private:
  X264Ptr encoder_;
  std::vector<uint8_t> sps_;
  std::vector<uint8_t> pps_;
  std::vector<uint8_t> slices_;
  int64_t picturesIn_ = 0;
};

}  // namespace brisklet
