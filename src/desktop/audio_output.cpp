#include "desktop/audio_output.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <utility>

namespace brisklet {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t bytesFor(int milliseconds) {
  return static_cast<std::uint32_t>(AudioSource::sampleRate * milliseconds / 1000) * sizeof(qint16);
}

/// The most that the server may hold ready. It asks in time for a little more than half of it: measured, a
/// sample is heard some 33 ms after it was given. With less, a busy machine leaves gaps.
constexpr std::uint32_t latencyBytes = bytesFor(60);
constexpr std::uint32_t requestBytes = bytesFor(5);
/// So much silence after the last sound, and the stream rests. The last sound has been heard long before.
constexpr std::size_t restAfterSamples = 30 * AudioSource::sampleRate;
/// A device that keeps its source waiting longer than this has missed the moment of what waits.
constexpr auto longestWait = std::chrono::milliseconds(400);

struct FreeLoop {
  void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
};
struct FreeContext {
  void operator()(pa_context* context) const {
    pa_context_set_state_callback(context, nullptr, nullptr);
    pa_context_disconnect(context);
    pa_context_unref(context);
  }
};
struct FreeStream {
  void operator()(pa_stream* stream) const {
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    pa_stream_set_write_callback(stream, nullptr, nullptr);
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
  }
};

/// A PulseAudio client (PipeWire serves them too) on a thread of its own. Every call of the client library is
/// made there, and all of them are asynchronous, so that a server that hangs or dies blocks nobody.
class PulseOutput final : public AudioOutput {
 public:
  explicit PulseOutput(AudioSource& source) : source_(source), loop_(pa_mainloop_new()) {
    if (loop_) thread_ = std::thread([this] { run(); });
  }

  ~PulseOutput() override {
    quits_ = true;
    if (!loop_) return;
    pa_mainloop_wakeup(loop_.get());
    thread_.join();
  }

  void wake() override {
    isWanted_ = true;
    if (loop_) pa_mainloop_wakeup(loop_.get());
  }

 private:
  void run() {
    open();
    while (!quits_) {
      if (isWanted_.exchange(false)) {
        silentSamples_ = 0;
        open();
        setAwake(true);
      }
      if (silentSamples_ >= restAfterSamples) setAwake(false);
      if (hasFailed_) close();
      if (pa_mainloop_iterate(loop_.get(), 1, nullptr) < 0) break;
      if (hasFailed_) close();
    }
    close();
  }

  /// Takes the next step towards a stream; the callbacks take the others.
  void open() {
    if (stream_) return;
    if (!context_) {
      context_.reset(pa_context_new(pa_mainloop_get_api(loop_.get()), "Brisklet"));
      if (!context_) return;  // there is too little memory for it
      pa_context_set_state_callback(context_.get(), contextStateChanged, this);
      hasFailed_ |= pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOFLAGS, nullptr) < 0;
    } else if (pa_context_get_state(context_.get()) == PA_CONTEXT_READY) {
      openStream();
    }
  }

  void openStream() {
    const pa_sample_spec format{.format = PA_SAMPLE_S16NE, .rate = AudioSource::sampleRate, .channels = 1};
    stream_.reset(pa_stream_new(context_.get(), "Notification tones", &format, nullptr));
    if (!stream_) {
      hasFailed_ = true;
      return;
    }
    if (!isAwake_) waitingSince_ = Clock::now();
    pa_stream_set_state_callback(stream_.get(), streamStateChanged, this);
    pa_stream_set_write_callback(stream_.get(), samplesRequested, this);
    constexpr auto serversChoice = static_cast<std::uint32_t>(-1);
    // Playing starts, and starts again after a gap, when the buffer is full: no sample is lost.
    const pa_buffer_attr buffer{.maxlength = serversChoice,
                                .tlength = latencyBytes,
                                .prebuf = serversChoice,
                                .minreq = requestBytes,
                                .fragsize = serversChoice};
    constexpr auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_START_CORKED);
    hasFailed_ |= pa_stream_connect_playback(stream_.get(), nullptr, &buffer, flags, nullptr, nullptr) < 0;
  }

  /// A stream at rest stays open: the server keeps its short latency for it, so that it wakes at once.
  void setAwake(bool isAwake) {
    if (isAwake && !isAwake_) waitingSince_ = Clock::now();
    isAwake_ = isAwake;
    const bool isReady = stream_ && pa_stream_get_state(stream_.get()) == PA_STREAM_READY;
    if (!isReady || std::exchange(isStreamAwake_, isAwake) == isAwake) return;
    if (pa_operation* corking = pa_stream_cork(stream_.get(), !isAwake, nullptr, nullptr))
      pa_operation_unref(corking);
  }

  /// Back to rest, without a connection: the next `wake` makes a new one.
  void close() {
    isAwake_ = isStreamAwake_ = false;
    hasFailed_ = false;
    stream_.reset();
    context_.reset();
    source_.skipWaiting();
  }

  static void contextStateChanged(pa_context* context, void* self) {
    auto& output = *static_cast<PulseOutput*>(self);
    const pa_context_state_t state = pa_context_get_state(context);
    if (!PA_CONTEXT_IS_GOOD(state)) output.hasFailed_ = true;
    if (state == PA_CONTEXT_READY) output.openStream();
  }

  static void streamStateChanged(pa_stream* stream, void* self) {
    auto& output = *static_cast<PulseOutput*>(self);
    const pa_stream_state_t state = pa_stream_get_state(stream);
    if (!PA_STREAM_IS_GOOD(state)) output.hasFailed_ = true;
    if (state == PA_STREAM_READY) output.setAwake(output.isAwake_);
  }

  static void samplesRequested(pa_stream* stream, std::size_t bytes, void* self) {
    static_cast<PulseOutput*>(self)->write(stream, bytes);
  }

  void write(pa_stream* stream, std::size_t bytes) {
    const auto now = Clock::now();
    if (now - std::exchange(waitingSince_, now) > longestWait) source_.skipWaiting();
    while (bytes >= sizeof(qint16)) {
      void* data = nullptr;
      std::size_t room = bytes;
      if (pa_stream_begin_write(stream, &data, &room) < 0 || room < sizeof(qint16)) break;
      const std::size_t samples = std::min(room, bytes) / sizeof(qint16);
      const bool sounds = source_.next({static_cast<qint16*>(data), samples});
      silentSamples_ = sounds ? 0 : silentSamples_ + samples;
      if (pa_stream_write(stream, data, samples * sizeof(qint16), nullptr, 0, PA_SEEK_RELATIVE) < 0) break;
      bytes -= samples * sizeof(qint16);
    }
  }

  AudioSource& source_;
  const std::unique_ptr<pa_mainloop, FreeLoop> loop_;
  std::atomic<bool> isWanted_ = false;
  std::atomic<bool> quits_ = false;

  // The thread's own.
  std::unique_ptr<pa_context, FreeContext> context_;
  std::unique_ptr<pa_stream, FreeStream> stream_;
  bool hasFailed_ = false;
  bool isAwake_ = false;        // what is wanted
  bool isStreamAwake_ = false;  // what the server has been told
  std::size_t silentSamples_ = 0;
  Clock::time_point waitingSince_;

  std::thread thread_;
};

}  // namespace

std::unique_ptr<AudioOutput> makeAudioOutput(AudioSource& source) {
  return std::make_unique<PulseOutput>(source);
}

}  // namespace brisklet
