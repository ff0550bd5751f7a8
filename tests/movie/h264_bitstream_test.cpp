#include "movie/h264_bitstream.h"

#include <gtest/gtest.h>

namespace brisklet {
namespace {

using Bytes = std::vector<uint8_t>;

TEST(H264Bitstream, emulationPreventionComesAndGoesWithoutALoss) {
  const std::vector<std::pair<Bytes, Bytes>> cases = {
      {{1, 0, 0}, {1, 0, 0, 3}},  // a unit does not end in zero
      {{1, 0, 0, 0, 0}, {1, 0, 0, 3, 0, 0, 3}},
      {{0, 0, 1}, {0, 0, 3, 1}},
      {{0, 0, 2, 0, 0, 3}, {0, 0, 3, 2, 0, 0, 3, 3}},
      {{0, 0, 0, 0, 0, 1}, {0, 0, 3, 0, 0, 3, 0, 1}},
      {{0, 0, 4, 0, 1}, {0, 0, 4, 0, 1}}};
  for (const auto& [payload, unit] : cases) {
    EXPECT_EQ(nalUnitOf(payload), unit);
    EXPECT_EQ(payloadOf(unit), payload);
  }
}

TEST(H264Bitstream, aSliceMovesToAnotherPlace) {
  // A reference slice, first macroblock 0, type P, parameters 0, then frame_num in 16 bits, then the rest.
  const SequenceParameters sequence{.log2MaxFrameNum = 16, .pictureOrderCountType = 2, .framesOnly = true};
  const Bytes atOnes = {0x61, 0b10011011, 0xff, 0xfe, 0x00, 0x01, 0x80};
  const Bytes atZero = {0x61, 0b10011010, 0x00, 0x00, 0x03, 0x00, 0x01, 0x80};
  const Bytes atTwo = {0x61, 0b10011010, 0x00, 0x04, 0x00, 0x01, 0x80};
  EXPECT_EQ(withFrameNum(atOnes, sequence, 0), atZero)
      << "the patched bytes make emulation prevention needed";
  EXPECT_EQ(withFrameNum(atZero, sequence, 0xffff), atOnes) << "and no longer needed";
  EXPECT_EQ(withFrameNum(atZero, sequence, 2), atTwo);
  EXPECT_EQ(withFrameNum(atTwo, sequence, 2), atTwo);
}

}  // namespace
}  // namespace brisklet
