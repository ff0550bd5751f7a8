#include "movie/yuv_picture.h"

#include "base/vectorised.h"

#include <cstring>

namespace brisklet {

namespace {

// ITU-R BT.709, 8 bits, limited range, in 16-bit fixed point. The green weight is what the others leave, so
// that greys come out exact: luma reaches 16 and 235, chroma stays at 128.
constexpr double kr = 0.2126, kb = 0.0722;
constexpr int one = 1 << 16;

constexpr int fixedPoint(double value) {
  return static_cast<int>(value * one + (value < 0 ? -0.5 : 0.5));
}

constexpr double lumaRange = 219.0 / 255, chromaRange = 224.0 / 255;
constexpr int yR = fixedPoint(lumaRange * kr), yB = fixedPoint(lumaRange * kb);
constexpr int yG = fixedPoint(lumaRange) - yR - yB;
constexpr int cbR = fixedPoint(-chromaRange * kr / (2 * (1 - kb))), cbB = fixedPoint(chromaRange / 2);
constexpr int cbG = -cbR - cbB;
constexpr int crR = fixedPoint(chromaRange / 2), crB = fixedPoint(-chromaRange * kb / (2 * (1 - kr)));
constexpr int crG = -crR - crB;

BRISKLET_VECTORISED void convertLumaRow(const uint32_t* __restrict rgb, uint8_t* __restrict luma, int width) {
  for (int x = 0; x < width; ++x) {
    const int r = static_cast<int>(rgb[x] >> 16 & 255);
    const int g = static_cast<int>(rgb[x] >> 8 & 255);
    const int b = static_cast<int>(rgb[x] & 255);
    luma[x] = static_cast<uint8_t>((yR * r + yG * g + yB * b + 16 * one + one / 2) >> 16);
  }
}

/// Compares rows of so many bytes.
bool isEqualBlock(const uint8_t* a, const uint8_t* b, ptrdiff_t bytes, int rows, ptrdiff_t stride) {
  for (int row = 0; row < rows; ++row, a += stride, b += stride)
    if (std::memcmp(a, b, static_cast<size_t>(bytes)) != 0) return false;
  return true;
}

/// Adds two rows: red and blue share a word, each with room for the eightfold sum.
BRISKLET_VECTORISED void addRows(const uint32_t* __restrict upper, const uint32_t* __restrict lower,
                                 uint32_t* __restrict redBlue, uint32_t* __restrict green, int width) {
  for (int x = 0; x < width; ++x) {
    redBlue[x] = (upper[x] & 0xff00ff) + (lower[x] & 0xff00ff);
    green[x] = (upper[x] >> 8 & 255) + (lower[x] >> 8 & 255);
  }
}

constexpr int chromaShift = 16 + 3;  // the weights of a chroma sample's pixels add up to 8

/// What is added to the samples of a chroma row before their fraction is cut: 128, and a threshold of a 4 x 4
/// Bayer matrix. Rounded to the nearest level, a slow change of hue would show as edges.
void setChromaOffsets(std::vector<int>& offsets, int row) {
  constexpr int bayer[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
  for (size_t x = 0; x < offsets.size(); ++x)
    offsets[x] = (128 << chromaShift) + (2 * bayer[row & 3][x & 3] + 1) * (1 << (chromaShift - 5));
}

/// Weighs each even column twice and its neighbours once. The column before the first must be readable.
BRISKLET_VECTORISED void convertChromaRow(const uint32_t* __restrict redBlue,
                                          const uint32_t* __restrict green, const int* __restrict offsets,
                                          uint8_t* __restrict chroma, int width) {
  for (int x = 0; x < width / 2; ++x) {
    const uint32_t sum = redBlue[2 * x - 1] + 2 * redBlue[2 * x] + redBlue[2 * x + 1];
    const int r = static_cast<int>(sum >> 16);
    const int b = static_cast<int>(sum & 0xffff);
    const int g = static_cast<int>(green[2 * x - 1] + 2 * green[2 * x] + green[2 * x + 1]);
    chroma[2 * x] = static_cast<uint8_t>((cbR * r + cbG * g + cbB * b + offsets[x]) >> chromaShift);
    chroma[2 * x + 1] = static_cast<uint8_t>((crR * r + crG * g + crB * b + offsets[x]) >> chromaShift);
  }
}

}  // namespace

YuvPicture::YuvPicture(int width, int height)
    : width_(width),
      height_(height),
      stride_(static_cast<ptrdiff_t>(macroblockColumns()) * 16),
      luma_(static_cast<size_t>(stride_) * static_cast<size_t>(macroblockRows()) * 16),
      chroma_(luma_.size() / 2) {}

void YuvPicture::setFromRgb(const uint32_t* pixels, ptrdiff_t pixelStride) {
  const auto columns = static_cast<size_t>(width_);
  std::vector<uint32_t> sums(2 * (columns + 1));
  uint32_t* redBlue = sums.data() + 1;
  uint32_t* green = redBlue + columns + 1;
  std::vector<int> offsets(columns / 2);
  for (int y = 0; y < height_; y += 2) {
    const uint32_t* upper = pixels + y * pixelStride;
    const uint32_t* lower = upper + pixelStride;
    convertLumaRow(upper, luma_.data() + y * stride_, width_);
    convertLumaRow(lower, luma_.data() + (y + 1) * stride_, width_);
    addRows(upper, lower, redBlue, green, width_);
    redBlue[-1] = redBlue[0];
    green[-1] = green[0];
    setChromaOffsets(offsets, y / 2);
    convertChromaRow(redBlue, green, offsets.data(), chroma_.data() + y / 2 * stride_, width_);
  }
}

std::vector<uint8_t> equalMacroblocks(const YuvPicture& a, const YuvPicture& b) {
  const auto areEqual = [&](int row, ptrdiff_t from, ptrdiff_t bytes) {
    const ptrdiff_t luma = row * 16 * a.stride() + from, chroma = row * 8 * a.stride() + from;
    return isEqualBlock(a.luma() + luma, b.luma() + luma, bytes, 16, a.stride()) &&
           isEqualBlock(a.chroma() + chroma, b.chroma() + chroma, bytes, 8, a.stride());
  };
  std::vector<uint8_t> equal;
  equal.reserve(static_cast<size_t>(a.macroblockColumns()) * static_cast<size_t>(a.macroblockRows()));
  for (int row = 0; row < a.macroblockRows(); ++row) {
    const bool isWholeRow = areEqual(row, 0, a.stride());
    for (ptrdiff_t from = 0; from < a.stride(); from += 16)
      equal.push_back(isWholeRow || areEqual(row, from, 16));
  }
  return equal;
}

}  // namespace brisklet
