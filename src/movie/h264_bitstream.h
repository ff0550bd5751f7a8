#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace brisklet {

// What of ITU-T H.264 is needed to place a slice at another point of its stream. A NAL unit here is without
// start code or length; its payload (RBSP) is without emulation prevention bytes.

/// Reads a payload bit by bit. Past its end it reads zeros, and `isPastEnd()` tells.
class BitReader {
 public:
  explicit BitReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  /// u(count), 32 at most.
  uint32_t bits(int count);
  bool flag() { return bits(1) != 0; }
  /// ue(v), clause 9.1.
  uint32_t expGolomb();

  /// In bits from the beginning.
  [[nodiscard]] size_t position() const { return position_; }
  [[nodiscard]] bool isPastEnd() const { return position_ > bytes_.size() * 8; }

 private:
  std::span<const uint8_t> bytes_;
  size_t position_ = 0;
};

/// Replaces `count` bits from `position` on, 32 at most; all must lie within `bytes`.
void replaceBits(std::span<uint8_t> bytes, size_t position, int count, uint32_t value);

/// Takes the emulation prevention bytes out of a NAL unit, or puts them in (clause 7.4.1).
[[nodiscard]] std::vector<uint8_t> payloadOf(std::span<const uint8_t> nalUnit);
[[nodiscard]] std::vector<uint8_t> nalUnitOf(std::span<const uint8_t> payload);

/// What a sequence parameter set says about the beginning of its slices.
struct SequenceParameters {
  int log2MaxFrameNum = 0;
  int pictureOrderCountType = 0;
  bool framesOnly = false;
};
/// Nothing for a NAL unit that is no sequence parameter set of the High profile in 4:2:0.
[[nodiscard]] std::optional<SequenceParameters> readSequenceParameters(std::span<const uint8_t> nalUnit);

/// The same slice of a predicted reference picture with another `frame_num`. Nothing for a NAL unit that is
/// anything else.
[[nodiscard]] std::optional<std::vector<uint8_t>> withFrameNum(std::span<const uint8_t> nalUnit,
                                                               const SequenceParameters& sequence,
                                                               uint32_t frameNum);

}  // namespace brisklet
