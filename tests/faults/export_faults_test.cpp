#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <functional>

#include "base/wait_for_task.h"
#include "export/video_exporter.h"
#include "lockscreen/wallpaper_store.h"
#include "support/decoded_movie.h"
#include "support/printing.h"

namespace brisklet {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

SequenceDocument documentWith(const QList<double>& delays) {
  SequenceDocument document = SequenceDocument::blank();
  for (const double delayMs : delays) {
    Ping ping;
    ping.id = QString::number(document.notifications.size());
    ping.appId = "messages";
    ping.title = "Mom";
    ping.delayMs = delayMs;
    document.notifications.append(ping);
  }
  return document;
}

qsizetype entriesOf(const QString& directory) {
  return QDir(directory).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

qint64 residentBytes() {
  QFile file("/proc/self/statm");
  EXPECT_TRUE(file.open(QIODevice::ReadOnly));
  return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

struct ExportFaults : testing::Test {
  QTemporaryDir directory;

  QString file(const QString& name) const { return directory.filePath(name); }

  QByteArray read(const QString& name) const {
    QFile in(file(name));
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
  }

  QString savedPhoto(const QColor& color) const {
    QImage photo(300, 650, QImage::Format_RGB32);
    photo.fill(color);
    EXPECT_TRUE(photo.save(file("photo.png")));
    return file("photo.png");
  }
};

TEST_F(ExportFaults, aMovieHasOneWallpaperWhateverHappensToThePhoto) {
  SequenceDocument document = documentWith({100, 600});
  document.wallpaper = "custom";
  const std::vector<std::function<void()>> events{
      [this] { savedPhoto(Qt::blue); },
      [this] { EXPECT_TRUE(QFile::resize(file("photo.png"), 40)); },
      [this] { EXPECT_TRUE(QFile::remove(file("photo.png"))); },
      [this] { EXPECT_TRUE(QFile::remove(file("photo.png")) && QDir().mkdir(file("photo.png"))); },
  };
  for (const auto& event : events) {
    document.wallpaperUrl = savedPhoto(Qt::red);
    waitForTask(VideoExporter::exportMovie(document, file("movie.mp4"), [&event](qint64 framesDone, qint64) {
      if (framesDone == 10) event();
    }));
    const DecodedMovie movie = decodedMovie(file("movie.mp4"));
    EXPECT_EQ(movie.changes(), (std::vector<qint64>{3, 18}));
    for (const std::size_t frame : {std::size_t{0}, movie.frames.size() - 1}) {
      const QColor color = movie.pictureAt(frame).rgb(600, 1900);
      EXPECT_GT(color.red(), 200);
      EXPECT_LT(color.blue(), 50);
    }
    QDir(file("photo.png")).removeRecursively();
  }
}

TEST_F(ExportFaults, exportsAtOnceAreTheSameAsOneAfterTheOther) {
  const SequenceDocument first = documentWith({100, 700}), second = documentWith({300});
  waitForTask(VideoExporter::exportMovie(first, file("a.mp4")));
  waitForTask(VideoExporter::exportMovie(second, file("b.mp4")));
  QCoro::Task<> a = VideoExporter::exportMovie(first, file("a at once.mp4"));
  QCoro::Task<> b = VideoExporter::exportMovie(second, file("b at once.mp4"));
  waitForTask(std::move(a));
  waitForTask(std::move(b));
  EXPECT_TRUE(read("a at once.mp4") == read("a.mp4"));
  EXPECT_TRUE(read("b at once.mp4") == read("b.mp4"));
  // In the same place, the one that comes later takes it, and keeps it when the other fails.
  QCoro::Task<> earlier = VideoExporter::exportMovie(second, file("same.mp4"));
  QCoro::Task<> later = VideoExporter::exportMovie(first, file("same.mp4"));
  EXPECT_THROW(waitForTask(std::move(earlier)), Error);
  waitForTask(std::move(later));
  EXPECT_TRUE(read("same.mp4") == read("a.mp4"));
}

TEST_F(ExportFaults, manyExportsTakeNoMoreThanOne) {
  const int count = qEnvironmentVariableIntValue("BRISKLET_EXPORTS");
  const SequenceDocument document = documentWith({100, 300, 500});
  const auto exportOnce = [&](int number) {
    std::stop_source stop;
    const auto progress = [&](qint64 framesDone, qint64) {
      // Among those that complete, some are stopped and some fail.
      if (number % 5 == 3 && framesDone == 2) stop.request_stop();
    };
    try {
      const QString name = number % 5 == 4 ? "nowhere/movie.mp4" : "movie.mp4";
      waitForTask(VideoExporter::exportMovie(document, file(name), progress, stop.get_token()));
    } catch (const Error&) {
      EXPECT_GE(number % 5, 3);
    }
  };
  // The allocator and the caches settle first.
  for (int i = 0; i < 10; ++i) exportOnce(i);
  const qsizetype files = entriesOf("/proc/self/fd"), threads = entriesOf("/proc/self/task");
  const qint64 memory = residentBytes();
  for (int i = 0; i < std::max(count, 20); ++i) exportOnce(i);
  EXPECT_EQ(entriesOf("/proc/self/fd"), files);
  EXPECT_EQ(entriesOf("/proc/self/task"), threads);
  if (!isSanitized) {
    // The allocator's arenas differ from run to run; a picture kept by each export would be 240 MB.
    EXPECT_LT(residentBytes() - memory, 96 << 20);
  }
}

TEST_F(ExportFaults, aPhotoIsStoredWholeOrNotAtAll) {
  QImage photo(400, 300, QImage::Format_RGB32);
  photo.fill(Qt::darkGreen);
  const QByteArray before = qgetenv("XDG_DATA_HOME");
  qputenv("XDG_DATA_HOME", directory.path().toLocal8Bit());
  const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
  rlimit former{};
  getrlimit(RLIMIT_FSIZE, &former);
  const rlimit limited{300, former.rlim_max};
  setrlimit(RLIMIT_FSIZE, &limited);
  EXPECT_THROW((void)WallpaperStore::save(photo), Error);
  setrlimit(RLIMIT_FSIZE, &former);
  EXPECT_EQ(entriesOf(WallpaperStore::directory()), 0);

  EXPECT_TRUE(QFile::exists(WallpaperStore::save(photo)));
  // A folder for data that cannot be one.
  qputenv("XDG_DATA_HOME", "/proc/self");
  EXPECT_THROW((void)WallpaperStore::save(photo), Error);
  std::signal(SIGXFSZ, formerHandler);
  before.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", before);
}

}  // namespace
}  // namespace brisklet
