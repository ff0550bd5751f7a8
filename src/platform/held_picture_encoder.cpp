#include "platform/held_picture_encoder.h"

namespace brisklet {

namespace {

constexpr int secondsBetweenIdrs = 5;  // at most, so that players seek well

void appendParameterSet(std::vector<uint8_t>& record, const std::vector<uint8_t>& unit) {
  record.push_back(static_cast<uint8_t>(unit.size() >> 8));
  record.push_back(static_cast<uint8_t>(unit.size()));
  record.insert(record.end(), unit.begin(), unit.end());
}

}  // namespace

HeldPictureEncoder::HeldPictureEncoder(const H264Settings& settings, Sink sink)
    : encoder_(settings),
      sink_(std::move(sink)),
      longestGop_(secondsBetweenIdrs * settings.framesPerSecond) {}

std::vector<uint8_t> HeldPictureEncoder::decoderConfiguration() const {
  const std::vector<uint8_t>& sps = encoder_.sequenceParameters();
  const std::vector<uint8_t>& pps = encoder_.pictureParameters();
  std::vector<uint8_t> record = {1, sps.at(1), sps.at(2), sps.at(3)};  // version, profile, constraints, level
  record.push_back(0xfc | 3);                                          // lengths of four bytes
  record.push_back(0xe0 | 1);                                          // one sequence parameter set
  appendParameterSet(record, sps);
  record.push_back(1);  // one picture parameter set
  appendParameterSet(record, pps);
  record.insert(record.end(), {0xfc | 1, 0xf8 | 0, 0xf8 | 0, 0});  // 4:2:0, 8 bits, no extensions
  return record;
}

void HeldPictureEncoder::show(const YuvPicture& picture) {
  const bool idr = framesSinceIdr_ == 0 || framesSinceIdr_ >= longestGop_;
  sink_(encoder_.encode(picture, idr ? PictureCoding::Idr : PictureCoding::Predicted), idr);
  framesSinceIdr_ = idr ? 1 : framesSinceIdr_ + 1;
}

void HeldPictureEncoder::hold(const YuvPicture& picture) {
  show(picture);
}

}  // namespace brisklet
