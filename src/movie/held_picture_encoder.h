#pragma once

#include "movie/h264_bitstream.h"
#include "movie/h264_encoder.h"
#include "movie/stay.h"
#include "movie/yuv_picture.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace brisklet {

/// Divides a movie into groups of pictures that know nothing of each other. Each begins with a key frame, for
/// players to seek to. One is due after five seconds at the latest; from three seconds on the next change of
/// picture becomes one and begins a group, which saves encoding that picture twice.
class PictureGroups {
 public:
  explicit PictureGroups(int framesPerSecond) : framesPerSecond_(framesPerSecond) {}

  /// The next frames show another picture, or go on with the one before. Tells how the first is encoded.
  PictureCoding append(bool isChange, int64_t frames);

  /// Groups so far.
  [[nodiscard]] size_t count() const { return count_; }

 private:
  int framesPerSecond_;
  int64_t framesSinceIdr_ = 0;
  size_t count_ = 0;
};

/// Encodes groups of a movie in which pictures are held, at the cost of its different pictures.
///
/// A frame that repeats its predecessor is a predicted slice in which every macroblock is skipped. That slice
/// is the same whatever the picture, but for `frame_num`, a counter in its header: x264 makes one, its
/// reconstruction proves that it changes nothing, and from then on it is written again with the counter moved
/// on. The counter of the slices that x264 makes for changed pictures is moved on likewise, by the frames
/// that were put in between. With neither B pictures nor a picture order count in the headers nothing else
/// tells one place of the stream from another. A key frame due within a held picture is encoded once and
/// written again for as long as the picture is held.
///
/// Whatever the encoder hands back that is not as expected is written by ordinary means: as a slice of its
/// own or as a key frame. That is slower and never wrong.
class HeldPictureEncoder {
 public:
  /// Receives the access units in order, one a frame: slices behind their lengths in four bytes.
  using Sink = std::function<void(std::span<const uint8_t> accessUnit, bool isIdr)>;

  /// The average rate, in bits per second, is a ceiling.
  HeldPictureEncoder(const H264Settings& settings, int averageBitRate, Sink sink);

  /// The decoder configuration record (ISO/IEC 14496-15) that the sample description carries.
  [[nodiscard]] std::vector<uint8_t> decoderConfiguration() const;

  /// One frame of another picture; a group begins with a key frame. `unchanged` says of each macroblock
  /// whether (not 0) it is equal to the picture shown before; it is empty if nothing is known.
  void show(std::shared_ptr<const YuvPicture> picture, PictureCoding coding,
            std::span<const uint8_t> unchanged, Stay stay);
  /// One frame more of the picture shown last.
  void hold();

 private:
  [[nodiscard]] std::span<const uint8_t> encode(PictureCoding coding, std::span<const uint8_t> unchanged,
                                                Stay stay);
  void encodeIdr();
  void encodePredicted(std::span<const uint8_t> unchanged, Stay stay);
  void encodeFirstRepeat();
  void write(std::span<const uint8_t> accessUnit, PictureCoding coding);

  /// The access unit of one slice at the place that the stream has come to.
  [[nodiscard]] std::optional<std::vector<uint8_t>> placed(std::span<const uint8_t> accessUnit) const;
  [[nodiscard]] int quantiserRaise() const;
  [[nodiscard]] bool mayFindRepeat() const;

  H264Encoder encoder_;
  const int framesPerSecond_;
  const int averageBitRate_;
  const Sink sink_;
  /// Present if slices can be moved to another place.
  std::optional<SequenceParameters> movable_;

  std::shared_ptr<const YuvPicture> picture_;  // shared with who compares the next one with it
  std::vector<uint8_t> idr_;                   // the key frame of `picture_`, once there is one
  std::vector<uint8_t> repeat_;                // the access unit in which nothing changes, once there is one
  std::vector<uint8_t> reconstruction_;        // of the frame before, as long as there is no `repeat_`
  int attemptsAtRepeat_ = 0;

  int quantiser_ = 0;      // of the frame before
  uint32_t frameNum_ = 0;  // of the next frame
  int framesSinceIdr_ = 0;
  int64_t frames_ = 0;
  int64_t bytes_ = 0;
};

}  // namespace brisklet
