#include "movie/mp4_file.h"

extern "C" {
#include <libavutil/opt.h>
}

#include "base/system_cause.h"
#include "base/unique_fd.h"
#include "movie/codec_handles.h"
#include "movie/movie_failure.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <span>
#include <string_view>

namespace brisklet {

namespace {

/// Where the muxer's bytes go: to a file, or nowhere when only their number is asked for.
class Output {
 public:
  static constexpr int nowhere = -1;

  explicit Output(int fd) : fd_(fd) {
    constexpr int bufferBytes = 1 << 16;
    auto* buffer = static_cast<unsigned char*>(checked(av_malloc(bufferBytes), "writing the movie"));
    io_.reset(avio_alloc_context(buffer, bufferBytes, 1, this, nullptr, &Output::write, &Output::seek));
    require(io_ != nullptr, "writing the movie");
  }

  [[nodiscard]] AVIOContext* io() const { return io_.get(); }

  /// Libav notes an error of a write and goes on: each step of muxing ends here.
  void check() const {
    if (failure_ != 0) throw MovieFailure(systemCause(failure_));
    checked(io_->error, "writing the movie");
  }

  /// Pushes everything out; returns the number of bytes up to here.
  [[nodiscard]] int64_t flush() {
    avio_flush(io_.get());
    check();
    return position_;
  }

 private:
  /// Libavformat 61 and later promise to leave the bytes alone: `Byte` is constant there.
  template <typename Byte>
  static int write(void* self, Byte* data, int bytes) {
    auto& output = *static_cast<Output*>(self);
    if (output.fd_ != nowhere) {
      output.failure_ = writeAt(output.fd_, {data, static_cast<size_t>(bytes)}, output.position_);
      if (output.failure_ != 0) return AVERROR(output.failure_);
    }
    output.position_ += bytes;
    return bytes;
  }

  static int64_t seek(void* self, int64_t offset, int whence) {
    if (whence != SEEK_SET) return AVERROR(ENOSYS);
    return static_cast<Output*>(self)->position_ = offset;
  }

  int fd_;
  int64_t position_ = 0;
  int failure_ = 0;
  IoContextPtr io_;
};

/// Takes the tracks' samples by turns, in runs of half a second.
class Interleaving {
 public:
  Interleaving(const Mp4VideoTrack& video, const Mp4AudioTrack* audio) {
    cursors_.push_back({&video.spool, {1, video.framesPerSecond}});
    if (audio != nullptr) cursors_.push_back({&audio->spool, {1, audio->sampleRate}});
  }

  struct Step {
    int track;
    const Sample* sample;
  };

  /// `sample` is null at the end.
  [[nodiscard]] Step next() {
    if (!hasDueSample(current_)) {
      current_ = 0;
      while (current_ < cursors_.size() && !hasDueSample(current_)) ++current_;
      if (current_ == cursors_.size()) {
        if (!advanceToNextRun()) return {0, nullptr};
        return next();
      }
    }
    Cursor& cursor = cursors_[current_];
    return {static_cast<int>(current_), &cursor.spool->samples()[cursor.position++]};
  }

 private:
  struct Cursor {
    SampleSpool* spool;
    AVRational timeBase;
    size_t position = 0;
  };

  [[nodiscard]] bool hasDueSample(size_t track) const {
    if (track >= cursors_.size()) return false;
    const Cursor& cursor = cursors_[track];
    return cursor.position < cursor.spool->samples().size() && runOf(cursor) <= run_;
  }

  [[nodiscard]] static int64_t runOf(const Cursor& cursor) {
    constexpr AVRational runLength = {1, 2};  // s
    return av_rescale_q_rnd(cursor.spool->samples()[cursor.position].time, cursor.timeBase, runLength,
                            AV_ROUND_DOWN);
  }

  bool advanceToNextRun() {
    bool any = false;
    for (const Cursor& cursor : cursors_) {
      if (cursor.position >= cursor.spool->samples().size()) continue;
      run_ = any ? std::min(run_, runOf(cursor)) : runOf(cursor);
      any = true;
    }
    return any;
  }

  std::vector<Cursor> cursors_;
  size_t current_ = 0;
  int64_t run_ = 0;
};

AVStream* addStream(AVFormatContext* context, AVCodecID codec, AVMediaType type, AVRational timeBase,
                    std::span<const uint8_t> decoderConfiguration) {
  AVStream* stream = checked(avformat_new_stream(context, nullptr), "preparing the movie");
  stream->time_base = timeBase;
  AVCodecParameters* parameters = stream->codecpar;
  parameters->codec_type = type;
  parameters->codec_id = codec;
  parameters->extradata = static_cast<uint8_t*>(
      checked(av_mallocz(decoderConfiguration.size() + AV_INPUT_BUFFER_PADDING_SIZE), "preparing the movie"));
  parameters->extradata_size = static_cast<int>(decoderConfiguration.size());
  std::copy(decoderConfiguration.begin(), decoderConfiguration.end(), parameters->extradata);
  return stream;
}

void addVideoStream(AVFormatContext* context, const Mp4VideoTrack& video) {
  AVStream* stream = addStream(context, AV_CODEC_ID_H264, AVMEDIA_TYPE_VIDEO, {1, video.framesPerSecond},
                               video.decoderConfiguration);
  stream->avg_frame_rate = stream->r_frame_rate = {video.framesPerSecond, 1};
  stream->sample_aspect_ratio = stream->codecpar->sample_aspect_ratio = {1, 1};
  stream->codecpar->width = video.width;
  stream->codecpar->height = video.height;
  stream->codecpar->format = AV_PIX_FMT_YUV420P;
  stream->codecpar->color_range = AVCOL_RANGE_MPEG;
  stream->codecpar->color_primaries = AVCOL_PRI_BT709;
  stream->codecpar->color_trc = AVCOL_TRC_BT709;
  stream->codecpar->color_space = AVCOL_SPC_BT709;
}

void addAudioStream(AVFormatContext* context, const Mp4AudioTrack& audio) {
  AVStream* stream = addStream(context, AV_CODEC_ID_AAC, AVMEDIA_TYPE_AUDIO, {1, audio.sampleRate},
                               audio.decoderConfiguration);
  stream->codecpar->profile = FF_PROFILE_AAC_LOW;
  stream->codecpar->sample_rate = audio.sampleRate;
  stream->codecpar->bit_rate = audio.bitRate;
  stream->codecpar->frame_size = audio.packetSamples;
  stream->codecpar->initial_padding = audio.priming;
  av_channel_layout_default(&stream->codecpar->ch_layout, audio.channels);
}

/// The size of the index that libav writes for these tracks after their samples, or, with the size known, the
/// movie with the index before them. In the first case no sample is read.
int64_t mux(Output& output, const Mp4VideoTrack& video, const Mp4AudioTrack* audio, int64_t reservedBytes) {
  FormatContextPtr context;
  {
    AVFormatContext* made = nullptr;
    checked(avformat_alloc_output_context2(&made, nullptr, "mp4", nullptr), "preparing the movie");
    context.reset(made);
  }
  context->pb = output.io();
  context->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_BITEXACT;  // no dates, no version
  context->flush_packets = 0;
  checked(av_opt_set_int(context->priv_data, "moov_size", reservedBytes, 0), "preparing the movie");
  addVideoStream(context.get(), video);
  if (audio != nullptr) addAudioStream(context.get(), *audio);
  checked(avformat_write_header(context.get(), nullptr), "writing the movie's header");
  output.check();

  const bool onlyMeasures = reservedBytes == 0;
  std::vector<uint8_t> blank;
  PacketPtr packet(checked(av_packet_alloc(), "writing the movie"));
  Interleaving interleaving(video, audio);
  while (true) {
    const auto [track, sample] = interleaving.next();
    if (sample == nullptr) break;
    std::span<const uint8_t> data;
    if (onlyMeasures) {
      blank.resize(std::max<size_t>(blank.size(), sample->bytes));
      data = std::span(blank).first(sample->bytes);
    } else {
      data = (track == 0 ? video.spool : audio->spool).bytesOf(*sample);
    }
    const AVRational timeBase = {1, track == 0 ? video.framesPerSecond : audio->sampleRate};
    packet->stream_index = track;
    packet->data = const_cast<uint8_t*>(data.data());  // the muxer only reads it
    packet->size = static_cast<int>(data.size());
    packet->pts = packet->dts = sample->time;
    packet->duration = sample->duration;
    packet->flags = sample->isKey ? AV_PKT_FLAG_KEY : 0;
    av_packet_rescale_ts(packet.get(), timeBase, context->streams[track]->time_base);
    checked(av_write_frame(context.get(), packet.get()), "writing the movie");
    output.check();
  }
  const int64_t endOfSamples = output.flush();
  checked(av_write_trailer(context.get()), "writing the movie's index");
  return output.flush() - endOfSamples;
}

struct Box {
  int64_t content = 0, end = 0;  // offsets in the file
};

/// The first box of this type within another, whose boxes all tell their size in four bytes.
std::optional<Box> childBox(int fd, const Box& parent, std::string_view type) {
  uint8_t head[8];
  for (int64_t at = parent.content; at < parent.end && ::pread(fd, head, sizeof head, at) == sizeof head;) {
    const int64_t bytes = int64_t{head[0]} << 24 | head[1] << 16 | head[2] << 8 | head[3];
    if (std::equal(type.begin(), type.end(), head + 4)) return Box{at + 8, at + bytes};
    at += std::max<int64_t>(bytes, sizeof head);
  }
  return std::nullopt;
}

/// The video's edit list says only that the video begins at its beginning, and some platforms ask for none.
/// Libav writes one for all tracks or for none, and the sound needs its own.
void dropVideoEdits(int fd) {
  std::optional<Box> box = Box{0, INT64_MAX};
  for (const std::string_view type : {"moov", "trak", "edts"})
    if (box) box = childBox(fd, *box, type);
  if (!box) return;
  constexpr uint8_t skipped[] = {'f', 'r', 'e', 'e'};
  if (const int failure = writeAt(fd, skipped, box->content - 4); failure != 0)
    throw MovieFailure(systemCause(failure));
}

}  // namespace

void writeMp4(int fd, const Mp4VideoTrack& video, const Mp4AudioTrack* audio) {
  Output nowhere(Output::nowhere);
  int64_t indexBytes = mux(nowhere, video, audio, 0);
  indexBytes += 8;  // the smallest box: libav fills what is left of the reserved room with an empty one
  // Where the index pushes samples past 4 GiB, their offsets take eight bytes instead of four.
  if (nowhere.flush() + indexBytes > int64_t{UINT32_MAX})
    indexBytes +=
        4 * static_cast<int64_t>(video.spool.samples().size() + (audio ? audio->spool.samples().size() : 0));
  Output file(fd);
  (void)mux(file, video, audio, indexBytes);
  dropVideoEdits(fd);
}

}  // namespace brisklet
