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

  struct Encoded {
    /// The slices, each a NAL unit behind its length in four bytes. Valid until the next call.
    std::span<const uint8_t> slices;
    double lumaPsnr = 0;  // dB, against the picture that came in
  };

  /// Encodes with the same quantiser (0 to 51) everywhere. `unchanged` is empty or says of each macroblock
  /// whether (not 0) it is equal to the one in the picture before; such a one is skipped without a look at
  /// it, provided that its quantiser then was not above this one.
  [[nodiscard]] Encoded encode(const YuvPicture& picture, PictureCoding coding, int quantiser,
                               std::span<const uint8_t> unchanged = {});

  /// The picture last encoded, as a decoder sees it: its rows of luma, then those of chroma.
  [[nodiscard]] std::vector<uint8_t> reconstruction() const;

 private:
  X264Ptr encoder_;
  std::vector<uint8_t> sps_;
  std::vector<uint8_t> pps_;
  std::vector<uint8_t> slices_;
  x264_picture_t out_ = {};
  int width_;
  int height_;
  int64_t picturesIn_ = 0;
};

}  // namespace brisklet
