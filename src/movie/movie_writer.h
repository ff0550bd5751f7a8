#pragma once

#include "base/audio_chunk.h"
#include "base/output_file.h"
#include "movie/stay.h"

#include <QImage>
#include <QString>
#include <functional>
#include <memory>

namespace brisklet {

struct VideoSettings {
  int width = 0;   // pixels, even
  int height = 0;  // pixels, even
  int framesPerSecond = 0;
  int averageBitRate = 0;  // bits per second
};

struct AudioSettings {
  int sampleRate = 0;
  int channels = 0;
  int bitRate = 0;  // bits per second
};

/// Writes an MPEG-4 movie of an H.264 and an AAC track. Encoding runs on threads of its own behind short
/// queues; every member is called on the thread that made the writer, and none of them waits for the encoder.
///
/// A writer that fails refuses what is appended from then on and never keeps anyone waiting for room. Unless
/// it completes, there is no file.
class MovieWriter {
 public:
  enum class Status { Unknown, Writing, Completed, Failed };

  virtual ~MovieWriter() = default;

  [[nodiscard]] virtual bool canAddVideo(const VideoSettings& settings) const = 0;
  virtual void addVideo(const VideoSettings& settings) = 0;
  [[nodiscard]] virtual bool canAddAudio(const AudioSettings& settings) const = 0;
  virtual void addAudio(const AudioSettings& settings) = 0;

  /// False when an encoder cannot be opened or the disk is full; `errorText()` then says why.
  [[nodiscard]] virtual bool startWriting() = 0;

  /// Whether the queue of the track has room.
  [[nodiscard]] virtual bool isReadyForMoreVideo() const = 0;
  [[nodiscard]] virtual bool isReadyForMoreAudio() const = 0;

  /// Takes a picture of the size of the video settings for so many frames, the first one for presentation at
  /// `first` / framesPerSecond. A frame that repeats the one before costs next to nothing; a copy of the same
  /// QImage (equal `cacheKey()`) is recognised. A frame left out makes the one before it last longer. False
  /// when the picture is refused: of another size, or not later than the one before.
  virtual bool appendFrames(const QImage& picture, qint64 first, qint64 count, Stay stay) = 0;
  /// What is left out between two chunks is silent. False when the chunk is refused.
  virtual bool appendAudio(const AudioChunk& chunk) = 0;

  virtual void markVideoFinished() = 0;
  virtual void markAudioFinished() = 0;

  /// Completes the file, then calls `completion` once on the calling thread, through its event loop.
  virtual void finishWriting(std::function<void()> completion) = 0;

  [[nodiscard]] virtual Status status() const = 0;
  /// What went wrong, as a sentence that names the file; empty when nothing is known.
  [[nodiscard]] virtual QString errorText() const = 0;
};

[[nodiscard]] std::unique_ptr<MovieWriter> makeMovieWriter(OutputFile file);

}  // namespace brisklet
