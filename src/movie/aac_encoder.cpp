#include "movie/aac_encoder.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include "movie/movie_failure.h"

#include <algorithm>
#include <array>

namespace brisklet {

namespace {

// Those that have an index in the AudioSpecificConfig (ISO/IEC 14496-3).
constexpr std::array sampleRates = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                    22050, 16000, 12000, 11025, 8000,  7350};

// The codec looks one frame back and one ahead, and its rate control some more.
constexpr int64_t settledFrames = 8;

}  // namespace

bool AacEncoder::supports(const AacSettings& settings) {
  return avcodec_find_encoder(AV_CODEC_ID_AAC) != nullptr && settings.bitRate >= 1 &&
         settings.channels >= 1 && settings.channels <= 2 &&
         std::ranges::find(sampleRates, settings.sampleRate) != sampleRates.end();
}

AacEncoder::AacEncoder(const AacSettings& settings, Sink sink) : sink_(std::move(sink)) {
  const AVCodec* codec = checked(avcodec_find_encoder(AV_CODEC_ID_AAC), "the AAC encoder");
  context_.reset(checked(avcodec_alloc_context3(codec), "the AAC encoder"));
  context_->sample_rate = settings.sampleRate;
  context_->sample_fmt = AV_SAMPLE_FMT_FLTP;
  context_->bit_rate = settings.bitRate;
  context_->time_base = {1, settings.sampleRate};
  context_->thread_count = 1;
  // Bit exact: no encoder version in the stream. Global header: the configuration goes to the container.
  context_->flags |= AV_CODEC_FLAG_BITEXACT | AV_CODEC_FLAG_GLOBAL_HEADER;
  av_channel_layout_default(&context_->ch_layout, settings.channels);
  checked(avcodec_open2(context_.get(), codec, nullptr), "opening the AAC encoder");

  packet_.reset(checked(av_packet_alloc(), "the AAC encoder"));
  frame_.reset(checked(av_frame_alloc(), "the AAC encoder"));
  frame_->nb_samples = context_->frame_size;
  frame_->format = context_->sample_fmt;
  frame_->sample_rate = context_->sample_rate;
  checked(av_channel_layout_copy(&frame_->ch_layout, &context_->ch_layout), "preparing sound");
  checked(av_frame_get_buffer(frame_.get(), 0), "preparing sound");
}

std::span<const uint8_t> AacEncoder::decoderConfiguration() const {
  return {context_->extradata, static_cast<size_t>(context_->extradata_size)};
}

void AacEncoder::append(std::span<const int16_t> samples) {
  const auto whole = static_cast<size_t>(packetSamples() * context_->ch_layout.nb_channels);
  if (!samples.empty()) silentFrames_ = 0;
  while (!samples.empty()) {
    const size_t count = std::min(samples.size(), whole - pending_.size());
    pending_.insert(pending_.end(), samples.begin(), samples.begin() + static_cast<ptrdiff_t>(count));
    samples = samples.subspan(count);
    if (pending_.size() == whole) encodePending();
  }
}

void AacEncoder::appendSilence(int64_t samplesPerChannel) {
  const auto channels = static_cast<size_t>(context_->ch_layout.nb_channels);
  while (samplesPerChannel > 0) {
    const bool isWhole = pending_.empty() && samplesPerChannel >= packetSamples();
    if (isWhole && silentFrames_ >= settledFrames && lastTwoAreEqual_) {
      samplesIn_ += packetSamples();
      samplesPerChannel -= packetSamples();
      handOn(lastPacket_);
      continue;
    }
    const int64_t room = packetSamples() - static_cast<int64_t>(pending_.size() / channels);
    const int64_t count = std::min(samplesPerChannel, room);
    pending_.resize(pending_.size() + static_cast<size_t>(count) * channels);
    samplesPerChannel -= count;
    if (count == room) encodePending();
    if (isWhole) ++silentFrames_;
  }
}

void AacEncoder::finish() {
  if (!pending_.empty()) encodePending();
  encode(nullptr);
}

void AacEncoder::encodePending() {
  checked(av_frame_make_writable(frame_.get()), "preparing sound");
  const auto channels = static_cast<size_t>(context_->ch_layout.nb_channels);
  const size_t count = pending_.size() / channels;
  for (size_t channel = 0; channel < channels; ++channel) {
    auto* plane = reinterpret_cast<float*>(frame_->extended_data[channel]);
    for (size_t i = 0; i < count; ++i)
      plane[i] = static_cast<float>(pending_[i * channels + channel]) / 32768;
  }
  frame_->nb_samples = static_cast<int>(count);
  frame_->pts = samplesIn_;
  samplesIn_ += static_cast<int64_t>(count);
  pending_.clear();
  encode(frame_.get());
}

void AacEncoder::encode(const AVFrame* frame) {
  checked(avcodec_send_frame(context_.get(), frame), "encoding sound");
  while (true) {
    const int result = avcodec_receive_packet(context_.get(), packet_.get());
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
    checked(result, "encoding sound");
    const std::span<const uint8_t> packet(packet_->data, static_cast<size_t>(packet_->size));
    lastTwoAreEqual_ = std::equal(packet.begin(), packet.end(), lastPacket_.begin(), lastPacket_.end());
    lastPacket_.assign(packet.begin(), packet.end());
    handOn(packet);
    av_packet_unref(packet_.get());
  }
}

void AacEncoder::handOn(std::span<const uint8_t> packet) {
  // The codec's own times do not know of the packets that were handed out again.
  const int64_t time = samplesOut_ - priming();
  samplesOut_ += packetSamples();
  sink_(packet, time, std::min<int64_t>(packetSamples(), samplesIn_ - time));
}

}  // namespace brisklet
