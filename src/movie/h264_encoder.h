#pragma once

#include "movie/codec_handles.h"
#include "movie/yuv_picture.h"

#include <cstdint>
#include <span>
#include <vector>

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
  /// The quantisers that pictures can have.
  static constexpr int finestQuantiser = 4, coarsestQuantiser = 42;

  explicit H264Encoder(const H264Settings& settings);

  /// NAL units without length or start code.
  [[nodiscard]] const std::vector<uint8_t>& sequenceParameters() const { return sps_; }
  [[nodiscard]] const std::vector<uint8_t>& pictureParameters() const { return pps_; }

  /// The slices of the picture, each a NAL unit behind its length in four bytes; valid until the next call.
  /// The quantiser is the same everywhere. `unchanged` is empty or says of each macroblock
  /// whether (not 0) it is equal to the one in the picture before; such a one is skipped without a look at
  /// it, provided that its quantiser then was not above this one.
  [[nodiscard]] std::span<const uint8_t> encode(const YuvPicture& picture, PictureCoding coding,
                                                int quantiser, std::span<const uint8_t> unchanged = {});

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
