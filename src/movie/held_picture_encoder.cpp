#include "movie/held_picture_encoder.h"

#include <algorithm>
#include <cmath>

namespace brisklet {

namespace {

constexpr size_t lengthBytes = 4;

constexpr int longestSecondsBetweenIdrs = 5;
constexpr int secondsUntilAChangeIsIdr = 3;

// The quality of what stays is constant: one quantiser for key frames and changes alike, so that a picture is
// as good at its first frame as at any later one. At 14 grain of any strength keeps 47 dB of its luma, in key
// frames and in changes, and ordinary pictures have 50 to 58; at 15 it would be 46.4.
constexpr int usualQuantiser = 14;
// For a picture that the next frame replaces. One that stays after all is made good by its first repeat.
constexpr int briefRaise = 4;

// The rate stays free as long as the pictures of this encoder, one of two, are less than this ahead of their
// average: a movie goes on for 1.8 s after its last change, so it evens out. Only a storm of changes gets
// there; then the quantiser rises.
constexpr double freeSeconds = 1;
constexpr double raisePerSecond = 60;

constexpr int mostAttemptsAtRepeat = 3;

void appendParameterSet(std::vector<uint8_t>& record, const std::vector<uint8_t>& unit) {
  record.push_back(static_cast<uint8_t>(unit.size() >> 8));
  record.push_back(static_cast<uint8_t>(unit.size()));
  record.insert(record.end(), unit.begin(), unit.end());
}

/// Only frames, and no picture order count in the slice headers: what a slice says of its place is
/// `frame_num`.
std::optional<SequenceParameters> movableSlices(const std::vector<uint8_t>& sequenceParameterSet) {
  std::optional<SequenceParameters> sequence = readSequenceParameters(sequenceParameterSet);
  if (sequence && (sequence->pictureOrderCountType != 2 || !sequence->framesOnly)) sequence.reset();
  return sequence;
}

size_t unitLength(std::span<const uint8_t> accessUnit) {
  size_t length = 0;
  for (const uint8_t byte : accessUnit.first(lengthBytes)) length = length << 8 | byte;
  return length;
}

}  // namespace

PictureCoding PictureGroups::append(bool isChange, int64_t frames) {
  const bool isNewGroup =
      isChange && (count_ == 0 || framesSinceIdr_ >= int64_t{secondsUntilAChangeIsIdr} * framesPerSecond_);
  if (isNewGroup) {
    ++count_;
    framesSinceIdr_ = 0;
  }
  framesSinceIdr_ =
      (framesSinceIdr_ + frames - 1) % (int64_t{longestSecondsBetweenIdrs} * framesPerSecond_) + 1;
  return isNewGroup ? PictureCoding::Idr : PictureCoding::Predicted;
}

HeldPictureEncoder::HeldPictureEncoder(const H264Settings& settings, int averageBitRate, Sink sink)
    : encoder_(settings),
      framesPerSecond_(settings.framesPerSecond),
      averageBitRate_(averageBitRate),
      sink_(std::move(sink)),
      movable_(movableSlices(encoder_.sequenceParameters())) {}

std::vector<uint8_t> HeldPictureEncoder::decoderConfiguration() const {
  const std::vector<uint8_t>& sps = encoder_.sequenceParameters();
  const std::vector<uint8_t>& pps = encoder_.pictureParameters();
  std::vector<uint8_t> record = {1, sps.at(1), sps.at(2), sps.at(3)};  // version, profile, constraints, level
  record.push_back(0xfc | (lengthBytes - 1));
  record.push_back(0xe0 | 1);  // one sequence parameter set
  appendParameterSet(record, sps);
  record.push_back(1);  // one picture parameter set
  appendParameterSet(record, pps);
  record.insert(record.end(), {0xfc | 1, 0xf8 | 0, 0xf8 | 0, 0});  // 4:2:0, 8 bits, no extensions
  return record;
}

void HeldPictureEncoder::show(std::shared_ptr<const YuvPicture> picture, PictureCoding coding,
                              std::span<const uint8_t> unchanged, Stay stay) {
  picture_ = std::move(picture);
  idr_.clear();
  if (coding == PictureCoding::Idr)
    encodeIdr();
  else
    encodePredicted(movable_ ? unchanged : std::span<const uint8_t>(), stay);
}

void HeldPictureEncoder::hold() {
  const bool isIdrDue = framesSinceIdr_ >= longestSecondsBetweenIdrs * framesPerSecond_;
  const bool canBeRefined = quantiser_ > usualQuantiser && quantiserRaise() == 0;
  if (isIdrDue && !idr_.empty() && !canBeRefined)
    write(idr_, PictureCoding::Idr);
  else if (isIdrDue)
    encodeIdr();
  else if (canBeRefined)
    encodePredicted({}, Stay::Long);
  else if (!repeat_.empty())
    write(*placed(repeat_), PictureCoding::Predicted);
  else if (mayFindRepeat())
    encodeFirstRepeat();
  else
    encodePredicted({}, Stay::Long);
}

std::span<const uint8_t> HeldPictureEncoder::encode(PictureCoding coding, std::span<const uint8_t> unchanged,
                                                    Stay stay) {
  quantiser_ = std::min(usualQuantiser + (stay == Stay::Brief ? briefRaise : 0) + quantiserRaise(),
                        H264Encoder::coarsestQuantiser);
  return encoder_.encode(*picture_, coding, quantiser_, unchanged);
}

void HeldPictureEncoder::encodeIdr() {
  const std::span<const uint8_t> unit = encode(PictureCoding::Idr, {}, Stay::Long);
  if (movable_) idr_.assign(unit.begin(), unit.end());
  write(unit, PictureCoding::Idr);
}

void HeldPictureEncoder::encodePredicted(std::span<const uint8_t> unchanged, Stay stay) {
  const std::span<const uint8_t> unit = encode(PictureCoding::Predicted, unchanged, stay);
  if (!movable_) return write(unit, PictureCoding::Predicted);
  if (const std::optional<std::vector<uint8_t>> here = placed(unit))
    return write(*here, PictureCoding::Predicted);
  encodeIdr();  // what was encoded before has no part in it
}

void HeldPictureEncoder::encodeFirstRepeat() {
  ++attemptsAtRepeat_;
  const std::vector<uint8_t> before = std::move(reconstruction_);
  const std::vector<uint8_t> all(
      static_cast<size_t>(picture_->macroblockColumns()) * static_cast<size_t>(picture_->macroblockRows()),
      1);
  // Macroblocks are skipped unseen if their quantiser was not above this one.
  const std::span<const uint8_t> unit = encoder_.encode(*picture_, PictureCoding::Predicted, quantiser_, all);
  const std::optional<std::vector<uint8_t>> here = placed(unit);
  if (!here) return encodeIdr();
  // A skipped macroblock costs a few hundredths of a bit: much more than that is no slice of nothing.
  if (unit.size() < all.size() / 32 + 64 && encoder_.reconstruction() == before) repeat_ = *here;
  write(*here, PictureCoding::Predicted);
}

void HeldPictureEncoder::write(std::span<const uint8_t> accessUnit, PictureCoding coding) {
  const bool isIdr = coding == PictureCoding::Idr;
  sink_(accessUnit, isIdr);
  frameNum_ = isIdr ? 1 : frameNum_ + 1;
  if (movable_) frameNum_ %= uint32_t{1} << movable_->log2MaxFrameNum;
  framesSinceIdr_ = isIdr ? 1 : framesSinceIdr_ + 1;
  ++frames_;
  bytes_ += static_cast<int64_t>(accessUnit.size());
  if (mayFindRepeat()) reconstruction_ = encoder_.reconstruction();
}

std::optional<std::vector<uint8_t>> HeldPictureEncoder::placed(std::span<const uint8_t> accessUnit) const {
  if (accessUnit.size() <= lengthBytes || unitLength(accessUnit) != accessUnit.size() - lengthBytes)
    return std::nullopt;
  std::optional<std::vector<uint8_t>> unit =
      withFrameNum(accessUnit.subspan(lengthBytes), *movable_, frameNum_);
  if (!unit) return std::nullopt;
  const size_t length = unit->size();
  const uint8_t head[lengthBytes] = {static_cast<uint8_t>(length >> 24), static_cast<uint8_t>(length >> 16),
                                     static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)};
  unit->insert(unit->begin(), std::begin(head), std::end(head));
  return unit;
}

bool HeldPictureEncoder::mayFindRepeat() const {
  return movable_ && repeat_.empty() && attemptsAtRepeat_ < mostAttemptsAtRepeat;
}

int HeldPictureEncoder::quantiserRaise() const {
  const double shownSeconds = static_cast<double>(frames_) / framesPerSecond_;
  const double aheadSeconds = static_cast<double>(bytes_) * 8 / averageBitRate_ - shownSeconds;
  return std::clamp(static_cast<int>(std::ceil((aheadSeconds - freeSeconds) * raisePerSecond)), 0,
                    H264Encoder::coarsestQuantiser - usualQuantiser);
}

}  // namespace brisklet
