#include "movie/held_picture_encoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace brisklet {
namespace {

constexpr int width = 128, height = 96, framesPerSecond = 30;
constexpr H264Settings settings{width, height, framesPerSecond};

std::shared_ptr<const YuvPicture> noise(unsigned seed) {
  std::mt19937 random(seed);
  std::vector<uint32_t> pixels(width * height);
  for (uint32_t& pixel : pixels) pixel = 0xff000000 | (static_cast<uint32_t>(random()));
  auto picture = std::make_shared<YuvPicture>(width, height);
  picture->setFromRgb(pixels.data(), width);
  return picture;
}

struct AccessUnit {
  std::vector<uint8_t> bytes;
  bool isIdr = false;
};

struct HeldPictureEncoderTest : testing::Test {
  std::vector<AccessUnit> units;

  HeldPictureEncoder encoder(int averageBitRate = 8000000) {
    return {settings, averageBitRate, [this](std::span<const uint8_t> unit, bool isIdr) {
              units.push_back({{unit.begin(), unit.end()}, isIdr});
            }};
  }

  [[nodiscard]] size_t bytesFrom(size_t first) const {
    size_t bytes = 0;
    for (size_t i = first; i < units.size(); ++i) bytes += units[i].bytes.size();
    return bytes;
  }
};

TEST_F(HeldPictureEncoderTest, aHeldPictureIsEncodedOnceAndItsKeyFrameOnce) {
  HeldPictureEncoder held = encoder();
  held.show(noise(1), PictureCoding::Idr, {}, Stay::Long);
  held.hold();
  held.show(noise(2), PictureCoding::Predicted, {}, Stay::Long);
  for (int i = 0; i < 1000; ++i) held.hold();

  ASSERT_EQ(units.size(), 1003u);
  std::vector<size_t> keys;
  for (size_t i = 0; i < units.size(); ++i) {
    if (units[i].isIdr) keys.push_back(i);
    EXPECT_TRUE(units[i].isIdr || i == 2 || units[i].bytes.size() < 40) << i;
  }
  EXPECT_EQ(keys, (std::vector<size_t>{0, 150, 300, 450, 600, 750, 900}));
  EXPECT_NE(units[0].bytes, units[150].bytes);
  for (const size_t key : {300U, 450U, 600U, 750U, 900U}) EXPECT_EQ(units[key].bytes, units[150].bytes);
}

TEST_F(HeldPictureEncoderTest, aStormOfPicturesKeepsToTheRateAndThePictureThatStaysIsMadeGood) {
  constexpr int rate = 1000000;
  HeldPictureEncoder held = encoder(rate);
  constexpr int storm = 5 * framesPerSecond, still = 54;  // 1.8 s
  PictureGroups groups(framesPerSecond);
  for (unsigned i = 0; i < storm; ++i) held.show(noise(i), groups.append(true, 1), {}, Stay::Long);
  for (int i = 0; i < still; ++i) held.hold();
  EXPECT_LE(static_cast<double>(bytesFrom(0) * 8), rate * (storm + still) / 30.0 * 1.05);
  for (int i = 0; i < 150; ++i) held.hold();
  const AccessUnit& refined =
      *std::find_if(units.begin() + storm, units.end(), [](const AccessUnit& unit) { return unit.isIdr; });
  EXPECT_GT(refined.bytes.size(), units[0].bytes.size() * 9 / 10) << "as fine as the first one";
}

TEST_F(HeldPictureEncoderTest, aBriefPictureIsCoarserAndMadeGoodWithoutAKeyFrameIfItStays) {
  HeldPictureEncoder held = encoder();
  held.show(noise(0), PictureCoding::Idr, {}, Stay::Long);
  held.show(noise(1), PictureCoding::Predicted, {}, Stay::Long);
  held.show(noise(2), PictureCoding::Predicted, {}, Stay::Brief);
  for (int i = 0; i < 4; ++i) held.hold();
  EXPECT_LT(units[2].bytes.size(), units[1].bytes.size() * 9 / 10);
  EXPECT_GT(units[3].bytes.size(), 500U);
  EXPECT_LT(units[6].bytes.size(), 40u);
  for (size_t i = 1; i < units.size(); ++i) EXPECT_FALSE(units[i].isIdr) << i;
}

}  // namespace
}  // namespace brisklet
