// Measures exports as whole processes, beside the same movies with every frame encoded, and the stages of an
// export one at a time: brisklet_export_bench BRISKLET_RENDER. Prints Markdown tables.

#include "base/unique_fd.h"
#include "export/event_loop.h"
#include "export/video_exporter.h"
#include "lockscreen/lock_screen_view.h"
#include "model/document_json.h"
#include "movie/aac_encoder.h"
#include "movie/held_picture_encoder.h"
#include "movie/mp4_file.h"
#include "ping_scene.h"
#include "playback/sequence_player.h"
#include "sound/notification_sounds.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QtEndian>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

using namespace brisklet;

namespace {

constexpr int runs = 3;

double seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

struct ProcessFigures {
  double wallSeconds = 0;
  double peakMegabytes = 0;
};

ProcessFigures runProcess(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  rusage usage = {};
  int status = 0;
  const double wall = seconds([&] {
    const pid_t child = fork();
    if (child == 0) {
      const int nowhere = open("/dev/null", O_WRONLY);
      dup2(nowhere, STDERR_FILENO);
      execv(arguments[0], arguments.data());
      _exit(127);
    }
    wait4(child, &status, 0, &usage);
  });
  if (status != 0) {
    std::fprintf(stderr, "%s failed\n", arguments[0]);
    std::exit(1);
  }
  return {wall, static_cast<double>(usage.ru_maxrss) / 1024};
}

ProcessFigures medianProcess(const std::vector<std::string>& command) {
  std::vector<double> walls;
  double peak = 0;
  for (int i = 0; i < runs; ++i) {
    const ProcessFigures figures = runProcess(command);
    walls.push_back(figures.wallSeconds);
    peak = std::max(peak, figures.peakMegabytes);
  }
  return {median(walls), peak};
}

struct Stages {
  std::size_t pictures = 0;
  double firstPicture = 0, otherPictures = 0, conversion = 0, video = 0, synthesis = 0, audio = 0, file = 0;
};

/// Each stage on its own, on this thread.
Stages stages(const SequenceDocument& document, const QString& path) {
  Stages result;
  struct Held {
    QImage image;
    qint64 frames;
  };
  std::vector<Held> pictures;
  SequencePlayer player(document);
  LockScreenCache cache;
  QList<Ping> visible;
  for (qint64 frame = 0; frame < VideoExporter::frameCount(document); ++frame) {
    player.setElapsedMs(static_cast<double>(frame) / VideoExporter::framesPerSecond * 1000);
    const QList<Ping> now = document.visiblePings(player.elapsedMs());
    if (!pictures.empty() && now == visible) {
      ++pictures.back().frames;
      continue;
    }
    visible = now;
    QImage image;
    const auto draw = [&] { image = captureFrame({document, player, Rendering::Movie}, cache); };
    const double time = seconds(draw);
    (pictures.empty() ? result.firstPicture : result.otherPictures) += time;
    pictures.push_back({image, 1});
  }
  result.pictures = pictures.size();

  const std::string folder = QFile::encodeName(QFileInfo(path).path()).toStdString();
  SampleSpool videoSpool(folder);
  SampleSpool audioSpool(folder);
  qint64 frame = 0;
  const H264Settings settings{captureWidth, captureHeight, VideoExporter::framesPerSecond};
  HeldPictureEncoder encoder(
      settings, 8'000'000, RepeatCoding::Reuse,
      [&](std::span<const uint8_t> unit, bool isIdr) { videoSpool.append(unit, frame++, 1, isIdr); });
  std::shared_ptr<const YuvPicture> previous;
  for (const Held& held : pictures) {
    std::shared_ptr<YuvPicture> picture;
    std::vector<uint8_t> unchanged;
    result.conversion += seconds([&] {
      picture = std::make_shared<YuvPicture>(captureWidth, captureHeight);
      picture->setFromRgb(reinterpret_cast<const uint32_t*>(held.image.constBits()),
                          held.image.bytesPerLine() / 4);
      if (previous) unchanged = equalMacroblocks(*previous, *picture);
    });
    previous = picture;
    result.video += seconds([&] {
      encoder.show(picture, unchanged);
      for (qint64 i = 1; i < held.frames; ++i) encoder.hold();
    });
  }

  QByteArray pcm;
  result.synthesis = seconds([&] { pcm = NotificationSounds::stereoPCM(document); });
  std::vector<int16_t> samples(static_cast<std::size_t>(pcm.size() / 2));
  qFromLittleEndian<int16_t>(pcm.constData(), pcm.size() / 2, samples.data());
  AacEncoder audio({NotificationSounds::sampleRate, 2, 128'000},
                   [&](std::span<const uint8_t> packet, int64_t time, int64_t duration) {
                     audioSpool.append(packet, time, duration, true);
                   });
  result.audio = seconds([&] {
    // As the movie writer does it: chunks of 4096 frames, silent ones told as such.
    for (std::size_t at = 0; at < samples.size(); at += 8192) {
      const std::span<const int16_t> chunk =
          std::span(samples).subspan(at, std::min<std::size_t>(8192, samples.size() - at));
      const bool silent = std::all_of(chunk.begin(), chunk.end(), [](int16_t sample) { return sample == 0; });
      if (silent)
        audio.appendSilence(static_cast<int64_t>(chunk.size() / 2));
      else
        audio.append(chunk);
    }
    audio.finish();
  });

  result.file = seconds([&] {
    const UniqueFd fd(open(QFile::encodeName(path).constData(), O_CREAT | O_TRUNC | O_RDWR, 0666));
    const auto configuration = audio.decoderConfiguration();
    const Mp4AudioTrack audioTrack{NotificationSounds::sampleRate,
                                   2,
                                   128'000,
                                   audio.packetSamples(),
                                   audio.priming(),
                                   {configuration.begin(), configuration.end()},
                                   audioSpool};
    writeMp4(fd.get(),
             {captureWidth, captureHeight, VideoExporter::framesPerSecond, encoder.decoderConfiguration(),
              videoSpool},
             &audioTrack);
  });
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication application(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: brisklet_export_bench BRISKLET_RENDER\n");
    return 2;
  }
  const std::string render = argv[1];
  QTemporaryDir directory;
  const auto path = [&directory](const QString& name) { return directory.filePath(name); };

  const struct Row {
    const char* name;
    int pings;
    double lengthSeconds;

    /// The last ping lands 1.8 s before the end.
    SequenceDocument document() const { return pingScene(pings, (lengthSeconds * 1000 - 1800) / pings); }
  } rows[]{{"short", 5, 4.3}, {"long", 20, 30}, {"ten minutes", 20, 600}};

  std::printf("Start: `brisklet-render --version` %.3f s (median of %d)\n\n",
              medianProcess({render, "--version"}).wallSeconds, runs);
  std::printf(
      "| scene | pings | movie | whole process | times real time | peak memory | every frame encoded | ratio "
      "|\n"
      "|---|---|---|---|---|---|---|---|\n");
  double longEveryFrame = 0;
  for (const Row& row : rows) {
    const SequenceDocument document = row.document();
    QFile file(path("scene.json"));
    if (!file.open(QIODevice::WriteOnly)) return 1;
    file.write(encodeDocument(document));
    file.close();
    const ProcessFigures fast =
        medianProcess({render, file.fileName().toStdString(), path("movie.mp4").toStdString(), "--quiet"});

    // Ten minutes of every frame take as long as that: its first thirty seconds stand for the rest.
    const bool isExtrapolated = row.lengthSeconds > 60;
    const double everyFrame =
        isExtrapolated ? longEveryFrame * row.lengthSeconds / rows[1].lengthSeconds : seconds([&] {
          waitForTask(
              VideoExporter::exportMovie(document, {}, path("every.mp4"), {}, {}, makeEveryFrameMovieWriter));
        });
    longEveryFrame = everyFrame;
    std::printf("| %s | %d | %.1f s | %.2f s | %.0f | %.0f MB | %s%.1f s | %.0f |\n", row.name, row.pings,
                row.lengthSeconds, fast.wallSeconds, row.lengthSeconds / fast.wallSeconds, fast.peakMegabytes,
                isExtrapolated ? "about " : "", everyFrame, everyFrame / fast.wallSeconds);
    std::fflush(stdout);
  }

  std::printf(
      "\nStages, one at a time on one core, in milliseconds:\n\n"
      "| scene | first picture | further pictures, each | conversion | video | soundtrack | audio | file |\n"
      "|---|---|---|---|---|---|---|---|\n");
  for (const Row& row : rows) {
    const Stages cost = stages(row.document(), path("stages.mp4"));
    std::printf("| %s | %.0f | %.1f | %.0f | %.0f | %.0f | %.0f | %.0f |\n", row.name,
                cost.firstPicture * 1000, cost.otherPictures * 1000 / static_cast<double>(cost.pictures - 1),
                cost.conversion * 1000, cost.video * 1000, cost.synthesis * 1000, cost.audio * 1000,
                cost.file * 1000);
  }
  return 0;
}
