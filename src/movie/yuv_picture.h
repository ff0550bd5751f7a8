#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace brisklet {

/// A picture as the H.264 encoder takes it: 8 bits, 4:2:0, limited range, BT.709; a plane of luma and one of
/// chroma in which Cb and Cr alternate. The planes reach to whole macroblocks of 16 x 16; what lies beyond
/// the picture is zero.
class YuvPicture {
 public:
  /// Width and height in pixels, even.
  YuvPicture(int width, int height);

  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }
  [[nodiscard]] int macroblockColumns() const { return (width_ + 15) / 16; }
  [[nodiscard]] int macroblockRows() const { return (height_ + 15) / 16; }

  /// Bytes from one row to the next, in either plane.
  [[nodiscard]] ptrdiff_t stride() const { return stride_; }
  [[nodiscard]] const uint8_t* luma() const { return luma_.data(); }
  [[nodiscard]] const uint8_t* chroma() const { return chroma_.data(); }

  /// Converts rows of 0xffRRGGBB pixels, `pixelStride` pixels apart. Chroma is sited left, as H.264 assumes
  /// when a stream says nothing: a sample lies on an even column, midway between two rows.
  void setFromRgb(const uint32_t* pixels, ptrdiff_t pixelStride);

 private:
  int width_;
  int height_;
  ptrdiff_t stride_;
  std::vector<uint8_t> luma_;
  std::vector<uint8_t> chroma_;
};

/// For each macroblock, row by row, whether (1 or 0) it is equal in both pictures, which are of one size.
[[nodiscard]] std::vector<uint8_t> equalMacroblocks(const YuvPicture& a, const YuvPicture& b);

}  // namespace brisklet
