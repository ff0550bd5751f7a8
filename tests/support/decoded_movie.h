#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <vector>

namespace brisklet {

/// 8-bit 4:2:0 as the decoder gave it, limited range, BT.709.
struct DecodedPicture {
  int width = 0;
  int height = 0;
  QByteArray luma;  // rows without gaps
  QByteArray cb;    // half the width, half the height
  QByteArray cr;

  [[nodiscard]] int y(int x, int row) const;
  [[nodiscard]] int crAt(int x, int row) const;

  bool operator==(const DecodedPicture&) const = default;
};

/// A movie file, read by ffprobe and decoded by ffmpeg.
struct DecodedMovie {
  struct Frame {
    /// In units of 1 / 30 s; -1 if the time is no whole number of them.
    qint64 time = 0;
    bool isKey = false;
    /// Index into `pictures`; frames in a row that decode to equal pictures share one.
    std::size_t picture = 0;
  };
  std::vector<Frame> frames;
  std::vector<DecodedPicture> pictures;

  int width = 0;
  int height = 0;
  /// Codec, profile, format, range and matrix: "h264 High yuv420p tv bt709".
  QString video;

  bool hasAudio = false;
  QString audio;  // codec, profile, sample rate: "aac LC 44100"
  /// Samples of each channel, +-1, sample 0 at time 0 of the movie. What comes before is not heard.
  std::vector<std::vector<float>> channels;

  /// How far the tracks are apart at the worst place of the file, in seconds: what a player must read ahead.
  double interleavingGap = 0;

  /// The frames whose picture differs from the one before.
  [[nodiscard]] std::vector<qint64> changes() const;
  [[nodiscard]] const DecodedPicture& pictureAt(std::size_t frame) const {
    return pictures.at(frames.at(frame).picture);
  }
};

/// Throws `std::runtime_error` for anything that they object to.
[[nodiscard]] DecodedMovie decodedMovie(const QString& path);

/// The peak signal-to-noise ratio of the luma, in dB, against the picture that was painted; 100 if equal.
[[nodiscard]] double lumaPsnr(const DecodedPicture& decoded, const QImage& painted);

}  // namespace brisklet
