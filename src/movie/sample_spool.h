#pragma once

#include "base/unique_fd.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <span>
#include <utility>
#include <vector>

namespace brisklet {

/// One encoded picture or one block of encoded sound. Kept small: a movie has thousands a minute.
struct Sample {
  int64_t time = 0;    // presentation, in ticks of its track
  int64_t offset = 0;  // in the spool
  uint32_t bytes = 0;
  uint32_t duration : 31 = 0;  // in the same ticks
  uint32_t isKey : 1 = 0;
};

/// Keeps the encoded samples of a track until the movie file is written. The first megabytes stay
/// in memory; what goes beyond moves to a file without a name in the given folder, so that nothing is left
/// behind however the program ends. Only the table of samples grows with the length of the track.
///
/// Failures of the disk throw `MovieFailure`.
class SampleSpool {
 public:
  explicit SampleSpool(std::filesystem::path folder) : folder_(std::move(folder)) {}

  void append(std::span<const uint8_t> data, int64_t time, int64_t duration, bool isKey);

  [[nodiscard]] const std::deque<Sample>& samples() const { return samples_; }

  void sortByTime();

  /// The bytes of a sample; to be called after the last `append`. They stay valid until the next call.
  [[nodiscard]] std::span<const uint8_t> bytesOf(const Sample& sample);

 private:
  void spill();

  std::filesystem::path folder_;
  std::deque<Sample> samples_;
  std::vector<uint8_t> recent_;  // what has not gone to the file
  UniqueFd file_;
  int64_t fileBytes_ = 0;
  std::vector<uint8_t> current_;
};

}  // namespace brisklet
