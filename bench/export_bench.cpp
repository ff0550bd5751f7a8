// Measures exports as whole processes, beside the same movies with every frame encoded, and the stages of an
// export one at a time: brisklet_export_bench BRISKLET_RENDER. Prints Markdown tables.

#include "base/unique_fd.h"
#include "export/event_loop.h"
#include "export/frame_pictures.h"
#include "export/libraries.h"
#include "export/video_exporter.h"
#include "model/catalogue.h"
#include "model/document_json.h"
#include "movie/aac_encoder.h"
#include "movie/held_picture_encoder.h"
#include "movie/mp4_file.h"
#include "ping_scene.h"
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
#include <span>
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
  double processorSeconds = 0;
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
  const auto inSeconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return {wall, inSeconds(usage.ru_utime) + inSeconds(usage.ru_stime),
          static_cast<double>(usage.ru_maxrss) / 1024};
}

ProcessFigures medianProcess(const std::vector<std::string>& command) {
  std::vector<double> walls, processor;
  double peak = 0;
  for (int i = 0; i < runs; ++i) {
    const ProcessFigures figures = runProcess(command);
    walls.push_back(figures.wallSeconds);
    processor.push_back(figures.processorSeconds);
    peak = std::max(peak, figures.peakMegabytes);
  }
  return {median(walls), median(processor), peak};
}

struct Stages {
  std::size_t pictures = 0;
  double firstPicture = 0, otherPictures = 0, conversion = 0, video = 0, synthesis = 0, audio = 0, file = 0;
};

/// Each stage on its own, on this thread.
Stages stages(const SequenceDocument& document, const MovieStyle& style, const QString& path) {
  Stages result;
  const QSize size = FramePictures::size(style);
  LockScreenCache cache;
  FramePictures pictures(document, style, cache);
  const std::string folder = QFile::encodeName(QFileInfo(path).path()).toStdString();
  SampleSpool videoSpool(folder);
  SampleSpool audioSpool(folder);
  qint64 frame = 0;
  const H264Settings settings{size.width(), size.height(), VideoExporter::framesPerSecond};
  HeldPictureEncoder encoder(settings, 8'000'000, [&](std::span<const uint8_t> unit, bool isIdr) {
    videoSpool.append(unit, frame++, 1, isIdr);
  });
  PictureGroups groups(settings.framesPerSecond);
  std::shared_ptr<const YuvPicture> previous;
  qint64 shown = 0;
  for (qint64 i = 0; i < VideoExporter::frameCount(document); ++i) {
    QImage image;
    const double painting =
        seconds([&] { image = pictures.at(static_cast<double>(i) / VideoExporter::framesPerSecond * 1000); });
    const PictureCoding coding = groups.append(image.cacheKey() != shown, 1);
    if (image.cacheKey() == shown) {
      result.video += seconds([&] { encoder.hold(); });
      continue;
    }
    shown = image.cacheKey();
    ++result.pictures;
    (i == 0 ? result.firstPicture : result.otherPictures) += painting;
    std::shared_ptr<YuvPicture> picture;
    std::vector<uint8_t> unchanged;
    result.conversion += seconds([&] {
      picture = std::make_shared<YuvPicture>(size.width(), size.height());
      picture->setFromRgb(reinterpret_cast<const uint32_t*>(image.constBits()), image.bytesPerLine() / 4);
      if (coding == PictureCoding::Predicted) unchanged = equalMacroblocks(*previous, *picture);
    });
    previous = picture;
    const Stay stay = pictures.isMoving() ? Stay::Brief : Stay::Long;
    result.video += seconds([&] { encoder.show(picture, coding, unchanged, stay); });
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
             {size.width(), size.height(), VideoExporter::framesPerSecond, encoder.decoderConfiguration(),
              videoSpool},
             &audioTrack);
  });
  return result;
}

/// The seconds that a movie's video takes when nothing is known of the frame before.
double everyFrameEncoded(const SequenceDocument& document) {
  const QSize size = FramePictures::size({});
  LockScreenCache cache;
  FramePictures pictures(document, {}, cache);
  H264Encoder encoder({size.width(), size.height(), VideoExporter::framesPerSecond});
  YuvPicture picture(size.width(), size.height());
  return seconds([&] {
    for (qint64 i = 0; i < VideoExporter::frameCount(document); ++i) {
      const QImage& image = pictures.at(static_cast<double>(i) / VideoExporter::framesPerSecond * 1000);
      picture.setFromRgb(reinterpret_cast<const uint32_t*>(image.constBits()), image.bytesPerLine() / 4);
      (void)encoder.encode(picture, i % 150 == 0 ? PictureCoding::Idr : PictureCoding::Predicted, 14);
    }
  });
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication application(argc, argv);
  setUpLibraries(Remarks::Silent);
  if (argc != 2) {
    std::fprintf(stderr, "usage: brisklet_export_bench BRISKLET_RENDER\n");
    return 2;
  }
  const std::string render = argv[1];
  QTemporaryDir directory;
  const auto path = [&directory](const QString& name) { return directory.filePath(name); };

  const auto writeScene = [](const SequenceDocument& document, const QString& name) {
    QFile file(name);
    if (file.open(QIODevice::WriteOnly)) file.write(encodeDocument(document));
  };
  const QString scene = path("scene.json");

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
    writeScene(document, scene);
    const ProcessFigures fast =
        medianProcess({render, scene.toStdString(), path("movie.mp4").toStdString(), "--quiet"});

    // Ten minutes of every frame take as long as that: its first thirty seconds stand for the rest.
    const bool isExtrapolated = row.lengthSeconds > 60;
    const double everyFrame = isExtrapolated ? longEveryFrame * row.lengthSeconds / rows[1].lengthSeconds
                                             : everyFrameEncoded(document);
    longEveryFrame = everyFrame;
    std::printf("| %s | %d | %.1f s | %.2f s | %.0f | %.0f MB | %s%.1f s | %.0f |\n", row.name, row.pings,
                row.lengthSeconds, fast.wallSeconds, row.lengthSeconds / fast.wallSeconds, fast.peakMegabytes,
                isExtrapolated ? "about " : "", everyFrame, everyFrame / fast.wallSeconds);
    std::fflush(stdout);
  }

  const struct Look {
    const char* name;
    std::vector<std::string> options;
    MovieStyle style;
  } looks[]{{"plain", {}, {}},
            {"in motion", {"--motion"}, {.inMotion = true, .page = {}}},
            {"in motion, 1080 x 1920",
             {"--motion", "--page", "1080x1920"},
             {.inMotion = true, .page = {1080, 1920}}}};
  std::printf(
      "\nIn motion, whole processes:\n\n"
      "| scene | look | whole process | times real time | peak memory |\n|---|---|---|---|---|\n");
  for (const Row& row : rows) {
    writeScene(row.document(), scene);
    for (const Look& look : std::span(looks).subspan(1)) {
      std::vector<std::string> command{render, scene.toStdString(), path("movie.mp4").toStdString(),
                                       "--quiet"};
      command.insert(command.end(), look.options.begin(), look.options.end());
      const ProcessFigures figures = medianProcess(command);
      std::printf("| %s | %s | %.2f s | %.1f | %.0f MB |\n", row.name, look.name, figures.wallSeconds,
                  row.lengthSeconds / figures.wallSeconds, figures.peakMegabytes);
      std::fflush(stdout);
    }
  }

  std::printf(
      "\nStages, one at a time on one core, in milliseconds:\n\n"
      "| scene | look | pictures | first picture | further pictures, each | conversion | video | soundtrack "
      "| "
      "audio | file |\n"
      "|---|---|---|---|---|---|---|---|---|---|\n");
  for (const Row& row : rows) {
    for (const Look& look : looks) {
      const Stages cost = stages(row.document(), look.style, path("stages.mp4"));
      std::printf("| %s | %s | %zu | %.0f | %.1f | %.0f | %.0f | %.0f | %.0f | %.0f |\n", row.name, look.name,
                  cost.pictures, cost.firstPicture * 1000,
                  cost.otherPictures * 1000 / static_cast<double>(cost.pictures - 1), cost.conversion * 1000,
                  cost.video * 1000, cost.synthesis * 1000, cost.audio * 1000, cost.file * 1000);
    }
  }

  constexpr int scenesInRun = 40;
  std::vector<std::string> scenes;
  for (int i = 0; i < scenesInRun; ++i) {
    SequenceDocument document = rows[0].document();
    document.wallpaper = Studio::wallpapers()[i % Studio::wallpapers().size()].id;
    for (Ping& ping : document.notifications) ping.title = QStringLiteral("Follower %1").arg(i);
    const QString name = path(QStringLiteral("scene%1.json").arg(i));
    writeScene(document, name);
    scenes.push_back(name.toStdString());
  }
  std::printf(
      "\nA run of %d short scenes:\n\n"
      "| jobs | whole run | movies per second | processor time per movie | peak memory per job |\n"
      "|---|---|---|---|---|\n",
      scenesInRun);
  for (const char* jobs : {"1", "2"}) {
    std::vector<std::string> command{render, "--into", path("run").toStdString(), "--quiet", "--jobs", jobs};
    command.insert(command.end(), scenes.begin(), scenes.end());
    const ProcessFigures figures = medianProcess(command);
    std::printf("| %s | %.2f s | %.1f | %.2f s | %.0f MB |\n", jobs, figures.wallSeconds,
                scenesInRun / figures.wallSeconds, figures.processorSeconds / scenesInRun,
                figures.peakMegabytes);
    std::fflush(stdout);
  }
  return 0;
}
