#include "support/decoded_movie.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
}

#include <QColor>
#include <QFile>
#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <stdexcept>
#include <string>

namespace brisklet {

namespace {

struct Close {
  void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
template <typename T>
using Handle = std::unique_ptr<T, Close>;

int checkedDecoding(int result, const char* step) {
  if (result >= 0) return result;
  char reason[AV_ERROR_MAX_STRING_SIZE] = {};
  av_strerror(result, reason, sizeof reason);
  throw std::runtime_error(std::string(step) + ": " + reason);
}

Handle<AVFormatContext> opened(const QString& path) {
  AVFormatContext* context = nullptr;
  checkedDecoding(avformat_open_input(&context, QFile::encodeName(path).constData(), nullptr, nullptr),
                  "opening");
  Handle<AVFormatContext> input(context);
  checkedDecoding(avformat_find_stream_info(context, nullptr), "reading the header");
  return input;
}

Handle<AVCodecContext> decoderFor(const AVStream& stream, int threads) {
  const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
  Handle<AVCodecContext> decoder(avcodec_alloc_context3(codec));
  checkedDecoding(avcodec_parameters_to_context(decoder.get(), stream.codecpar), "opening the decoder");
  decoder->pkt_timebase = stream.time_base;
  decoder->err_recognition = AV_EF_CRCCHECK | AV_EF_BITSTREAM | AV_EF_BUFFER | AV_EF_EXPLODE | AV_EF_CAREFUL |
                             AV_EF_COMPLIANT | AV_EF_AGGRESSIVE;
  decoder->thread_count = threads;
  checkedDecoding(avcodec_open2(decoder.get(), codec, nullptr), "opening the decoder");
  return decoder;
}

QByteArray plane(const uint8_t* data, int stride, int width, int height) {
  QByteArray rows;
  rows.reserve(width * height);
  for (int row = 0; row < height; ++row)
    rows.append(reinterpret_cast<const char*>(data) + row * stride, width);
  return rows;
}

DecodedPicture pictureOf(const AVFrame& frame) {
  if (frame.format != AV_PIX_FMT_YUV420P) throw std::runtime_error("not yuv420p");
  return {frame.width, frame.height, plane(frame.data[0], frame.linesize[0], frame.width, frame.height),
          plane(frame.data[1], frame.linesize[1], frame.width / 2, frame.height / 2),
          plane(frame.data[2], frame.linesize[2], frame.width / 2, frame.height / 2)};
}

/// Calls `take` with each frame that comes out of the decoder; a null packet drains it.
template <typename Take>
void decode(AVCodecContext& decoder, const AVPacket* packet, AVFrame& frame, Take take) {
  checkedDecoding(avcodec_send_packet(&decoder, packet), "decoding");
  while (true) {
    const int result = avcodec_receive_frame(&decoder, &frame);
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) return;
    checkedDecoding(result, "decoding");
    if (frame.decode_error_flags != 0 || (frame.flags & AV_FRAME_FLAG_CORRUPT) != 0)
      throw std::runtime_error("a damaged frame");
    take();
  }
}

void addPicture(DecodedMovie& movie, const AVFrame& frame, AVRational timeBase) {
  constexpr AVRational frameTime = {1, 30};
  const qint64 time = av_rescale_q(frame.pts, timeBase, frameTime);
  const bool isWhole = av_compare_ts(time, frameTime, frame.pts, timeBase) == 0;
  DecodedPicture picture = pictureOf(frame);
  if (movie.pictures.empty() || !(picture == movie.pictures.back()))
    movie.pictures.push_back(std::move(picture));
  movie.frames.push_back(
      {isWhole ? time : -1, frame.key_frame != 0, movie.pictures.size() - 1, frame.pkt_size});
}

void addSound(DecodedMovie& movie, const AVFrame& frame, AVRational timeBase) {
  if (frame.format != AV_SAMPLE_FMT_FLTP) throw std::runtime_error("not planar float");
  const qint64 begin = av_rescale_q(frame.pts, timeBase, {1, frame.sample_rate});
  movie.channels.resize(static_cast<std::size_t>(frame.ch_layout.nb_channels));
  for (std::size_t channel = 0; channel < movie.channels.size(); ++channel) {
    const auto* samples = reinterpret_cast<const float*>(frame.extended_data[channel]);
    std::vector<float>& track = movie.channels[channel];
    for (int i = 0; i < frame.nb_samples; ++i) {
      if (begin + i < 0) continue;
      const auto at = static_cast<std::size_t>(begin + i);
      if (at > 1000000000) throw std::runtime_error("a sound with an impossible time");
      if (track.size() <= at) track.resize(at + 1);
      track[at] = samples[i];
    }
  }
}

void readVideoParameters(DecodedMovie& movie, const AVCodecParameters& parameters) {
  movie.width = parameters.width;
  movie.height = parameters.height;
  movie.videoCodec = avcodec_get_name(parameters.codec_id);
  movie.profile = avcodec_profile_name(parameters.codec_id, parameters.profile);
  movie.level = parameters.level;
  movie.colour =
      QStringList{av_get_pix_fmt_name(static_cast<AVPixelFormat>(parameters.format)),
                  av_color_range_name(parameters.color_range),
                  av_color_primaries_name(parameters.color_primaries),
                  av_color_transfer_name(parameters.color_trc), av_color_space_name(parameters.color_space)}
          .join(' ');
  const std::span record(parameters.extradata, static_cast<std::size_t>(parameters.extradata_size));
  if (record.size() < 9 || record[0] != 1) throw std::runtime_error("no avcC");
  movie.sequenceParameterSets = record[5] & 31;
  const std::size_t afterSequence = 8 + std::size_t{record[6]} * 256 + record[7];
  movie.pictureParameterSets = record[afterSequence];
}

void readNalTypes(std::set<int>& types, const AVPacket& packet) {
  for (int at = 0; at + 4 < packet.size;) {
    types.insert(packet.data[at + 4] & 31);
    at += 4 + static_cast<int>(qFromBigEndian<quint32>(packet.data + at));
    if (at > packet.size) throw std::runtime_error("a NAL unit longer than its sample");
  }
}

void readBoxes(DecodedMovie& movie, const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error("opening");
  for (qint64 at = 0; at < file.size();) {
    file.seek(at);
    const QByteArray head = file.read(16);
    if (head.size() < 8) throw std::runtime_error("a box cut short");
    qint64 bytes = qFromBigEndian<quint32>(head.constData());
    if (bytes == 1) bytes = qFromBigEndian<qint64>(head.constData() + 8);
    if (bytes < 8 || at + bytes > file.size()) throw std::runtime_error("a box of an impossible size");
    movie.boxes.append(QString::fromLatin1(head.mid(4, 4)));
    if (movie.boxes.last() == "moov") {
      file.seek(at);
      const QByteArray index = file.read(bytes);
      if (const qsizetype colr = index.indexOf("colrnclx"); colr > 0) {
        for (int i = 0; i < 3; ++i)
          movie.containerColour.push_back(qFromBigEndian<quint16>(index.constData() + colr + 8 + 2 * i));
        movie.containerColour.push_back(static_cast<uchar>(index[colr + 14]) >> 7);
      }
    }
    at += bytes;
  }
}

double interleavingGap(const std::map<int64_t, std::pair<int, double>>& places, int tracks) {
  double gap = 0;
  std::map<int, double> reached;
  for (const auto& [place, sample] : places) {
    reached[sample.first] = sample.second;
    if (tracks == 2) gap = std::max(gap, std::abs(reached[0] - reached[1]));
  }
  return gap;
}

}  // namespace

int DecodedPicture::y(int x, int row) const {
  return static_cast<uchar>(luma.at(row * width + x));
}
int DecodedPicture::cbAt(int x, int row) const {
  return static_cast<uchar>(cb.at(row / 2 * (width / 2) + x / 2));
}
int DecodedPicture::crAt(int x, int row) const {
  return static_cast<uchar>(cr.at(row / 2 * (width / 2) + x / 2));
}

QColor DecodedPicture::rgb(int x, int row) const {
  const double luminance = (y(x, row) - 16) / 219.0;
  const double blue = (cbAt(x, row) - 128) / 224.0 * 1.8556;
  const double red = (crAt(x, row) - 128) / 224.0 * 1.5748;
  const double green = -(0.2126 * red + 0.0722 * blue) / 0.7152;
  const auto level = [luminance](double difference) {
    return std::clamp(static_cast<int>(std::lround((luminance + difference) * 255)), 0, 255);
  };
  return QColor(level(red), level(green), level(blue));
}

std::vector<qint64> DecodedMovie::changes() const {
  std::vector<qint64> changed;
  for (std::size_t i = 1; i < frames.size(); ++i)
    if (frames[i].picture != frames[i - 1].picture) changed.push_back(frames[i].time);
  return changed;
}

DecodedMovie decodedMovie(const QString& path, int decoderThreads) {
  DecodedMovie movie;
  readBoxes(movie, path);
  const Handle<AVFormatContext> input = opened(path);
  const int video =
      checkedDecoding(av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0), "video");
  const int audio = av_find_best_stream(input.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
  movie.hasAudio = audio >= 0;

  const Handle<AVCodecContext> videoDecoder = decoderFor(*input->streams[video], decoderThreads);
  readVideoParameters(movie, *input->streams[video]->codecpar);
  Handle<AVCodecContext> audioDecoder;
  if (movie.hasAudio) {
    const AVCodecParameters& parameters = *input->streams[audio]->codecpar;
    audioDecoder = decoderFor(*input->streams[audio], 1);
    movie.audioCodec = avcodec_get_name(parameters.codec_id);
    movie.audioProfile = avcodec_profile_name(parameters.codec_id, parameters.profile);
    movie.sampleRate = parameters.sample_rate;
  }

  const Handle<AVFrame> frame(av_frame_alloc());
  const Handle<AVPacket> packet(av_packet_alloc());
  std::set<int> nalTypes;
  const auto takePicture = [&] { addPicture(movie, *frame, input->streams[video]->time_base); };
  const auto takeSound = [&] { addSound(movie, *frame, input->streams[audio]->time_base); };
  std::map<int64_t, std::pair<int, double>> places;  // the track and the time of each sample, by its place
  while (av_read_frame(input.get(), packet.get()) >= 0) {
    places[packet->pos] = {
        packet->stream_index == video ? 0 : 1,
        static_cast<double>(packet->dts) * av_q2d(input->streams[packet->stream_index]->time_base)};
    if (packet->stream_index == video) {
      readNalTypes(nalTypes, *packet);
      decode(*videoDecoder, packet.get(), *frame, takePicture);
    } else if (packet->stream_index == audio) {
      decode(*audioDecoder, packet.get(), *frame, takeSound);
    }
    av_packet_unref(packet.get());
  }
  decode(*videoDecoder, nullptr, *frame, takePicture);
  if (audioDecoder) {
    decode(*audioDecoder, nullptr, *frame, takeSound);
    // The last packet is filled up with silence; the track ends before.
    const AVStream& stream = *input->streams[audio];
    const auto samples =
        static_cast<std::size_t>(av_rescale_q(stream.duration, stream.time_base, {1, movie.sampleRate}));
    for (std::vector<float>& channel : movie.channels) channel.resize(std::min(channel.size(), samples));
  }
  movie.nalTypes.assign(nalTypes.begin(), nalTypes.end());
  movie.interleavingGap = interleavingGap(places, movie.hasAudio ? 2 : 1);
  return movie;
}

DecodedPicture pictureAfterSeek(const QString& path, double seconds) {
  const Handle<AVFormatContext> input = opened(path);
  const int video =
      checkedDecoding(av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0), "video");
  const AVStream& stream = *input->streams[video];
  const Handle<AVCodecContext> decoder = decoderFor(stream, 1);
  const auto target =
      static_cast<int64_t>(std::lround(seconds * stream.time_base.den / stream.time_base.num));
  checkedDecoding(av_seek_frame(input.get(), video, target, AVSEEK_FLAG_BACKWARD), "seeking");

  const Handle<AVFrame> frame(av_frame_alloc());
  const Handle<AVPacket> packet(av_packet_alloc());
  DecodedPicture shown;
  const auto take = [&] {
    if (frame->pts <= target) shown = pictureOf(*frame);
  };
  while (av_read_frame(input.get(), packet.get()) >= 0) {
    const bool isDue = packet->pts <= target;
    if (packet->stream_index == video && isDue) decode(*decoder, packet.get(), *frame, take);
    av_packet_unref(packet.get());
  }
  decode(*decoder, nullptr, *frame, take);
  return shown;
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
