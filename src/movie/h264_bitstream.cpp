#include "movie/h264_bitstream.h"

namespace brisklet {

namespace {

constexpr uint8_t emulationPrevention = 3;
constexpr int sliceOfNonIdr = 1, sequenceParameterSet = 7;
constexpr uint32_t highProfile = 100;

int nalUnitType(uint8_t header) {
  return header & 31;
}
int nalReference(uint8_t header) {
  return header >> 5 & 3;
}

}  // namespace

uint32_t BitReader::bits(int count) {
  uint32_t value = 0;
  for (; count > 0; --count, ++position_) {
    const size_t byte = position_ / 8;
    const bool bit = byte < bytes_.size() && (bytes_[byte] >> (7 - position_ % 8) & 1) != 0;
    value = value << 1 | (bit ? 1 : 0);
  }
  return value;
}

uint32_t BitReader::expGolomb() {
  int zeros = 0;
  while (zeros < 32 && !isPastEnd() && !flag()) ++zeros;
  // 32 zeros lead a number beyond 32 bits, which no valid stream has.
  return zeros == 32 ? UINT32_MAX : (uint32_t{1} << zeros) - 1 + bits(zeros);
}

void replaceBits(std::span<uint8_t> bytes, size_t position, int count, uint32_t value) {
  for (int i = 0; i < count; ++i) {
    const size_t at = position + static_cast<size_t>(i);
    const auto mask = static_cast<uint8_t>(0x80 >> at % 8);
    uint8_t& byte = bytes[at / 8];
    const bool bit = (value >> (count - 1 - i) & 1) != 0;
    byte = static_cast<uint8_t>(bit ? byte | mask : byte & ~mask);
  }
}

std::vector<uint8_t> payloadOf(std::span<const uint8_t> nalUnit) {
  std::vector<uint8_t> payload;
  payload.reserve(nalUnit.size());
  int zeros = 0;
  for (const uint8_t byte : nalUnit) {
    if (zeros >= 2 && byte == emulationPrevention) {
      zeros = 0;
      continue;
    }
    zeros = byte == 0 ? zeros + 1 : 0;
    payload.push_back(byte);
  }
  return payload;
}

std::vector<uint8_t> nalUnitOf(std::span<const uint8_t> payload) {
  std::vector<uint8_t> nalUnit;
  nalUnit.reserve(payload.size() + payload.size() / 64);
  int zeros = 0;
  for (const uint8_t byte : payload) {
    if (zeros == 2 && byte <= emulationPrevention) {
      nalUnit.push_back(emulationPrevention);
      zeros = 0;
    }
    zeros = byte == 0 ? zeros + 1 : 0;
    nalUnit.push_back(byte);
  }
  // A unit never ends in zero; a payload does where words of zeros fill it up.
  if (!nalUnit.empty() && nalUnit.back() == 0) nalUnit.push_back(emulationPrevention);
  return nalUnit;
}

std::optional<SequenceParameters> readSequenceParameters(std::span<const uint8_t> nalUnit) {
  const std::vector<uint8_t> payload = payloadOf(nalUnit);
  BitReader reader(payload);
  const auto header = static_cast<uint8_t>(reader.bits(8));
  const uint32_t profile = reader.bits(8);
  if (nalUnitType(header) != sequenceParameterSet || profile != highProfile) return std::nullopt;
  reader.bits(8 + 8);                                // constraints, level
  reader.expGolomb();                                // seq_parameter_set_id
  if (reader.expGolomb() != 1) return std::nullopt;  // chroma_format_idc: 4:2:0
  reader.expGolomb();                                // bit_depth_luma_minus8
  reader.expGolomb();                                // bit_depth_chroma_minus8
  reader.flag();                                     // qpprime_y_zero_transform_bypass_flag
  if (reader.flag()) return std::nullopt;            // scaling matrices, which x264 puts elsewhere

  SequenceParameters sequence;
  const uint32_t log2MaxFrameNumMinus4 = reader.expGolomb();
  const uint32_t pictureOrderCountType = reader.expGolomb();
  if (log2MaxFrameNumMinus4 > 12 || pictureOrderCountType > 2) return std::nullopt;
  sequence.log2MaxFrameNum = static_cast<int>(log2MaxFrameNumMinus4) + 4;
  sequence.pictureOrderCountType = static_cast<int>(pictureOrderCountType);
  if (sequence.pictureOrderCountType == 0) reader.expGolomb();  // log2_max_pic_order_cnt_lsb_minus4
  if (sequence.pictureOrderCountType == 1) return std::nullopt;
  reader.expGolomb();  // max_num_ref_frames
  reader.flag();       // gaps_in_frame_num_value_allowed_flag
  reader.expGolomb();  // pic_width_in_mbs_minus1
  reader.expGolomb();  // pic_height_in_map_units_minus1
  sequence.framesOnly = reader.flag();
  if (reader.isPastEnd()) return std::nullopt;
  return sequence;
}

std::optional<std::vector<uint8_t>> withFrameNum(std::span<const uint8_t> nalUnit,
                                                 const SequenceParameters& sequence, uint32_t frameNum) {
  std::vector<uint8_t> payload = payloadOf(nalUnit);
  BitReader reader(payload);
  const auto header = static_cast<uint8_t>(reader.bits(8));
  if (nalUnitType(header) != sliceOfNonIdr || nalReference(header) == 0) return std::nullopt;
  reader.expGolomb();                            // first_mb_in_slice
  const uint32_t type = reader.expGolomb() % 5;  // slice_type: 0 and 5 are P
  reader.expGolomb();                            // pic_parameter_set_id
  const size_t position = reader.position();
  reader.bits(sequence.log2MaxFrameNum);
  reader.bits(8);  // a slice has more behind its header
  if (type != 0 || reader.isPastEnd()) return std::nullopt;
  replaceBits(payload, position, sequence.log2MaxFrameNum, frameNum);
  return nalUnitOf(payload);
}

}  // namespace brisklet
