#include "movie/yuv_picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace brisklet {
namespace {

constexpr int width = 70, height = 38;

std::vector<uint32_t> randomPixels() {
  std::mt19937 random(7);
  std::vector<uint32_t> pixels(width * height);
  for (uint32_t& pixel : pixels) pixel = 0xff000000 | (static_cast<uint32_t>(random()) & 0xffffff);
  return pixels;
}

struct Rgb {
  double r = 0, g = 0, b = 0;
};

TEST(YuvPicture, isBt709WithChromaOnEvenColumns) {
  const std::vector<uint32_t> pixels = randomPixels();
  YuvPicture picture(width, height);
  picture.setFromRgb(pixels.data(), width);

  const auto at = [&](int x, int y) {
    const uint32_t pixel = pixels[static_cast<size_t>(y * width + std::max(x, 0))];
    return Rgb{static_cast<double>(pixel >> 16 & 255), static_cast<double>(pixel >> 8 & 255),
               static_cast<double>(pixel & 255)};
  };
  const auto luminance = [](const Rgb& c) { return (0.2126 * c.r + 0.7152 * c.g + 0.0722 * c.b) / 255; };
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      ASSERT_NEAR(picture.luma()[y * picture.stride() + x], 16 + 219 * luminance(at(x, y)), 0.51);
  for (int y = 0; y < height; y += 2)
    for (int x = 0; x < width; x += 2) {
      Rgb mean;
      for (const auto& [column, weight] : {std::pair(x - 1, 1), std::pair(x, 2), std::pair(x + 1, 1)})
        for (const int row : {y, y + 1}) {
          const Rgb colour = at(column, row);
          mean.r += colour.r * weight / 8;
          mean.g += colour.g * weight / 8;
          mean.b += colour.b * weight / 8;
        }
      const uint8_t* chroma = picture.chroma() + y / 2 * picture.stride() + x;
      ASSERT_NEAR(chroma[0], 128 + 224 * (mean.b / 255 - luminance(mean)) / 1.8556, 1.0);
      ASSERT_NEAR(chroma[1], 128 + 224 * (mean.r / 255 - luminance(mean)) / 1.5748, 1.0);
    }
}

TEST(YuvPicture, aHueBetweenTwoLevelsIsTheirMixture) {
  YuvPicture picture(width, height);
  const std::vector<uint32_t> pixels(width * height, 0xff404249);
  picture.setFromRgb(pixels.data(), width);
  const double luminance = (0.2126 * 0x40 + 0.7152 * 0x42 + 0.0722 * 0x49) / 255;
  double blue = 0, red = 0;
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 32; ++x) {
      blue += picture.chroma()[y * picture.stride() + 2 * x] / 512.0;
      red += picture.chroma()[y * picture.stride() + 2 * x + 1] / 512.0;
    }
  EXPECT_NEAR(blue, 128 + 224 * (0x49 / 255.0 - luminance) / 1.8556, 0.05);
  EXPECT_NEAR(red, 128 + 224 * (0x40 / 255.0 - luminance) / 1.5748, 0.05);
}

TEST(YuvPicture, aMacroblockDiffersWhereItsPixelsDo) {
  std::vector<uint32_t> pixels = randomPixels();
  YuvPicture before(width, height), after(width, height);
  before.setFromRgb(pixels.data(), width);
  EXPECT_EQ(before.macroblockColumns() * before.macroblockRows(), 15);
  after.setFromRgb(pixels.data(), width);
  EXPECT_EQ(equalMacroblocks(before, after), std::vector<uint8_t>(15, 1));

  pixels[35 * width + 68] ^= 0xffffff;  // within the last block, which the picture fills in part
  after.setFromRgb(pixels.data(), width);
  std::vector<uint8_t> expected(15, 1);
  expected[14] = 0;
  EXPECT_EQ(equalMacroblocks(before, after), expected);
}

}  // namespace
}  // namespace brisklet
