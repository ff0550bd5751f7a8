#include "movie/h264_bitstream.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

using namespace brisklet;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

/// A unit's payload comes back, and a slice that is moved differs in nothing but its place. The first two
/// bytes say where to, the third how many bits the place has; the rest is the unit.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (size < 3) return -1;
  const std::span<const uint8_t> unit(data + 3, size - 3);
  const std::vector<uint8_t> payload = payloadOf(unit);
  require(payload.size() <= unit.size());
  // A payload ends in a bit that is set, and then in whole words of zeros if any.
  const auto end = std::find_if(payload.rbegin(), payload.rend(), [](uint8_t byte) { return byte != 0; });
  if ((end - payload.rbegin()) % 2 != 0) return -1;
  const std::vector<uint8_t> packed = nalUnitOf(payload);
  require(payloadOf(packed) == payload);
  for (std::size_t i = 2; i < packed.size(); ++i)
    require(packed[i - 2] != 0 || packed[i - 1] != 0 || packed[i] > 2);

  (void)readSequenceParameters(unit);

  SequenceParameters sequence;
  sequence.log2MaxFrameNum = 4 + data[2] % 13;
  sequence.pictureOrderCountType = 2;
  sequence.framesOnly = true;
  const uint32_t place = (uint32_t{data[0]} << 8 | data[1]) & ((uint32_t{1} << sequence.log2MaxFrameNum) - 1);
  const auto moved = withFrameNum(unit, sequence, place);
  // Zeros at the end belong to the place where there is no slice behind it.
  if (!moved || payload.back() == 0) return 0;
  const std::vector<uint8_t> movedPayload = payloadOf(*moved);
  require(movedPayload.size() == payload.size());
  const auto bits = [](const std::vector<uint8_t>& bytes, std::size_t i) {
    return bytes[i / 8] >> (7 - i % 8) & 1;
  };
  std::size_t first = payload.size() * 8, last = 0;
  for (std::size_t i = 0; i < payload.size() * 8; ++i) {
    if (bits(payload, i) == bits(movedPayload, i)) continue;
    first = std::min(first, i);
    last = i;
  }
  require(first > last || last - first < static_cast<std::size_t>(sequence.log2MaxFrameNum));
  require(withFrameNum(*moved, sequence, place) == moved);
  return 0;
}
