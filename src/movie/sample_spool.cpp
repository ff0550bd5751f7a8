#include "movie/sample_spool.h"

#include "base/output_file.h"
#include "base/system_cause.h"
#include "movie/movie_failure.h"

#include <algorithm>
#include <cerrno>

namespace brisklet {

namespace {

constexpr size_t bytesInMemory = 4 << 20;

UniqueFd namelessFile(const std::filesystem::path& folder) {
  std::filesystem::path name;
  UniqueFd file = makeHiddenFile(folder, name);
  if (!file) throw MovieFailure(systemCause(errno));
  if (!name.empty()) ::unlink(name.c_str());
  return file;
}

}  // namespace

void SampleSpool::append(std::span<const uint8_t> data, int64_t time, int64_t duration, bool isKey) {
  if (recent_.size() + data.size() > bytesInMemory) spill();
  recent_.reserve(bytesInMemory);  // only what is used is taken
  samples_.push_back({.time = time,
                      .offset = fileBytes_ + static_cast<int64_t>(recent_.size()),
                      .bytes = static_cast<uint32_t>(data.size()),
                      .duration = static_cast<uint32_t>(duration) & INT32_MAX,
                      .isKey = isKey});
  recent_.insert(recent_.end(), data.begin(), data.end());
}

void SampleSpool::sortByTime() {
  std::sort(samples_.begin(), samples_.end(),
            [](const Sample& a, const Sample& b) { return a.time < b.time; });
}

void SampleSpool::spill() {
  if (!file_) file_ = namelessFile(folder_);
  if (const int failure = writeAt(file_.get(), recent_, fileBytes_)) throw MovieFailure(systemCause(failure));
  fileBytes_ += static_cast<int64_t>(recent_.size());
  recent_.clear();
}

std::span<const uint8_t> SampleSpool::bytesOf(const Sample& sample) {
  const size_t bytes = sample.bytes;
  const int64_t begin = sample.offset;
  // A sample is whole on one side: `append` spills before it, never within it.
  if (begin >= fileBytes_) return std::span(recent_).subspan(static_cast<size_t>(begin - fileBytes_), bytes);

  current_.resize(bytes);
  size_t have = 0;
  while (have < bytes) {
    const ssize_t count =
        ::pread(file_.get(), current_.data() + have, bytes - have, begin + static_cast<off_t>(have));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) throw MovieFailure(systemCause(count < 0 ? errno : EIO));
    have += static_cast<size_t>(count);
  }
  return current_;
}

}  // namespace brisklet
