#include "support/decoded_movie.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSize>
#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <stdexcept>

namespace brisklet {

namespace {

/// What a program writes. What it complains of comes in between, and spoils it.
// popen() and not QProcess: the thread sanitizer no longer sees the locks of a thread that QProcess has
// forked.
QByteArray outputOf(const QString& program, const QStringList& arguments) {
  const QByteArray command =
      (program + " -v error '" + arguments.join("' '") + "' </dev/null 2>&1").toLocal8Bit();
  FILE* output = ::popen(command.constData(), "r");
  if (!output) throw std::runtime_error("no process");
  QFile file;
  QByteArray bytes;
  if (file.open(output, QIODevice::ReadOnly)) bytes = file.readAll();
  if (::pclose(output) != 0) throw std::runtime_error((command + ": " + bytes.right(1000)).toStdString());
  return bytes;
}

QByteArray decoded(const QString& path, const QStringList& after) {
  static const QStringList strictly{"-xerror", "-err_detect",
                                    "crccheck+bitstream+buffer+explode+careful+compliant+aggressive"};
  return outputOf("ffmpeg", strictly + QStringList{"-i", path} + after + QStringList{"-"});
}

/// Pictures of this size, one after the other.
QList<DecodedPicture> picturesIn(const QByteArray& yuv, const QSize& size) {
  const qsizetype luma = qsizetype{size.width()} * size.height(), bytes = luma * 3 / 2;
  if (yuv.size() % bytes != 0) throw std::runtime_error("a part of a picture");
  QList<DecodedPicture> pictures;
  for (qsizetype at = 0; at < yuv.size(); at += bytes)
    pictures.append({size.width(), size.height(), yuv.sliced(at, luma), yuv.sliced(at + luma, luma / 4),
                     yuv.sliced(at + luma * 5 / 4, luma / 4)});
  return pictures;
}

/// The times, places and kinds of the samples.
void readPackets(DecodedMovie& movie, const QJsonArray& packets) {
  std::map<qint64, std::pair<QString, double>> places;
  for (const QJsonValue& packet : packets) {
    const double time = packet["pts_time"].toString().toDouble();
    places[packet["pos"].toString().toLongLong()] = {packet["codec_type"].toString(), time};
    if (packet["codec_type"] != "video") continue;
    const auto frame = std::lround(time * 30);
    movie.frames.push_back({std::abs(time * 30 - static_cast<double>(frame)) < 1e-3 ? frame : -1,
                            packet["flags"].toString().startsWith('K'), 0});
  }
  std::map<QString, double> reached;
  for (const auto& [place, sample] : places) {
    reached[sample.first] = sample.second;
    if (movie.hasAudio)
      movie.interleavingGap = std::max(movie.interleavingGap, std::abs(reached["video"] - reached["audio"]));
  }
}

}  // namespace

int DecodedPicture::y(int x, int row) const {
  return static_cast<uchar>(luma.at(row * width + x));
}
int DecodedPicture::crAt(int x, int row) const {
  return static_cast<uchar>(cr.at(row / 2 * (width / 2) + x / 2));
}

std::vector<qint64> DecodedMovie::changes() const {
  std::vector<qint64> changed;
  for (std::size_t i = 1; i < frames.size(); ++i)
    if (frames[i].picture != frames[i - 1].picture) changed.push_back(frames[i].time);
  return changed;
}

DecodedMovie decodedMovie(const QString& path) {
  const QJsonObject probed =
      QJsonDocument::fromJson(outputOf("ffprobe", {"-show_streams", "-show_packets", "-of", "json", path}))
          .object();
  DecodedMovie movie;
  for (const QJsonValue& stream : probed["streams"].toArray()) {
    const auto said = [&stream](const char* key) { return stream[QLatin1String(key)].toString(); };
    if (said("codec_type") == "video") {
      movie.width = stream["width"].toInt();
      movie.height = stream["height"].toInt();
      movie.video = QStringList{said("codec_name"), said("profile"), said("pix_fmt"), said("color_range"),
                                said("color_space")}
                        .join(' ');
      continue;
    }
    movie.hasAudio = true;
    movie.audio = QStringList{said("codec_name"), said("profile"), said("sample_rate")}.join(' ');
    movie.channels.resize(static_cast<std::size_t>(stream["channels"].toInt()));
    if (said("start_time").toDouble() != 0) throw std::runtime_error("the sound does not start at 0");
    // The last packet is filled up with silence; the track ends before.
    const auto samples = std::lround(said("duration").toDouble() * said("sample_rate").toInt());
    const QByteArray sound = decoded(path, {"-map", "0:a", "-f", "f32le"});
    const auto count = static_cast<qsizetype>(movie.channels.size());
    for (qsizetype i = 0; i < std::min<qsizetype>(samples * count, sound.size() / 4); ++i)
      movie.channels[static_cast<std::size_t>(i % count)].push_back(
          qFromLittleEndian<float>(sound.constData() + 4 * i));
  }
  readPackets(movie, probed["packets"].toArray());

  const QByteArray yuv = decoded(path, {"-map", "0:v", "-fps_mode", "passthrough", "-f", "rawvideo"});
  const QList<DecodedPicture> pictures = picturesIn(yuv, {movie.width, movie.height});
  if (pictures.size() != std::ssize(movie.frames)) throw std::runtime_error("frames are lost");
  for (qsizetype i = 0; i < pictures.size(); ++i) {
    if (movie.pictures.empty() || !(pictures[i] == movie.pictures.back()))
      movie.pictures.push_back(pictures[i]);
    movie.frames[static_cast<std::size_t>(i)].picture = movie.pictures.size() - 1;
  }
  return movie;
}

double lumaPsnr(const DecodedPicture& decoded, const QImage& painted) {
  if (painted.size() != QSize(decoded.width, decoded.height))
    throw std::runtime_error("pictures of two sizes");
  const QImage rgb = painted.convertToFormat(QImage::Format_RGB32);
  double squares = 0;
  for (int row = 0; row < decoded.height; ++row) {
    const auto* pixels = reinterpret_cast<const QRgb*>(rgb.constScanLine(row));
    for (int x = 0; x < decoded.width; ++x) {
      const double luma = 0.2126 * qRed(pixels[x]) + 0.7152 * qGreen(pixels[x]) + 0.0722 * qBlue(pixels[x]);
      const double difference = std::round(16 + 219 * luma / 255) - decoded.y(x, row);
      squares += difference * difference;
    }
  }
  const double mean = squares / decoded.width / decoded.height;
  return mean == 0 ? 100 : 10 * std::log10(255 * 255 / mean);
}

}  // namespace brisklet
