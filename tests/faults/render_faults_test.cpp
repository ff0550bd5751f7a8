#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <csignal>
#include <random>

#include "faults/faulty_machine.h"
#include "support/printing.h"

namespace brisklet {
namespace {

const QStringList scenes{"short.json", "long.json", "photo.json", "large.json", "photo.png"};

#if defined(__SANITIZE_ADDRESS__)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

struct RenderFaults : testing::Test {
  void SetUp() override { machine.writeScenes(); }

  /// One line that names what it is about.
  static void expectSentence(const Outcome& outcome, const QString& says) {
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.said.startsWith("brisklet-render: ")) << outcome.said.toStdString();
    EXPECT_TRUE(outcome.said.contains(says)) << outcome.said.toStdString();
    EXPECT_EQ(outcome.said.count('\n'), 1) << outcome.said.toStdString();
  }

  void expectMovie(const QString& name, const QByteArray& expected) const {
    EXPECT_TRUE(machine.read(name) == expected) << name.toStdString();
  }

  QByteArray undisturbedMovie(const QString& scene) const {
    EXPECT_EQ(machine.run({scene, "undisturbed.mp4"}).status, 0);
    const QByteArray movie = machine.read("undisturbed.mp4");
    EXPECT_FALSE(movie.isEmpty());
    QFile::remove(machine.path("undisturbed.mp4"));
    return movie;
  }

  FaultyMachine machine;
};

TEST_F(RenderFaults, aFullDiskEndsInASentenceAndLeavesNothing) {
  const auto size = static_cast<quint64>(undisturbedMovie("short.json").size());
  for (const quint64 limit : {quint64{10}, size / 2, size - 1}) {
    SCOPED_TRACE(limit);
    expectSentence(machine.run({"short.json", "out.mp4"}, fileSizeLimit(limit)),
                   "Could not write \"out.mp4\": the file would grow larger than this system allows.");
    EXPECT_EQ(machine.filesBeside(scenes), QStringList());
  }
  // What was there before a picture or a soundtrack stays.
  machine.write("old", "old");
  for (const QString option : {"--still", "--soundtrack"}) {
    expectSentence(machine.run({"short.json", option, "old"}, fileSizeLimit(4096)),
                   "old: it cannot be written: ");
    EXPECT_EQ(machine.read("old"), "old");
    EXPECT_EQ(machine.filesBeside(scenes), QStringList("old"));
  }
}

TEST_F(RenderFaults, aDiskThatFillsUpEndsInASentenceAndLeavesNothing) {
  // At the header; while the samples wait in a file of their own; while the movie is put together.
  const struct {
    QString scene;
    int kibibytes;
  } rows[]{{"short.json", 4}, {"large.json", 3000}, {"short.json", 160}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.kibibytes);
    // A page is the least that a file system of this kind has, and the filler takes it.
    const Outcome outcome = machine.runInOwnMounts(
        QString("mkdir disk; mount -t tmpfs -o size=%1k tmpfs disk || exit 77\n"
                "[ %1 != 4 ] || head -c 4096 /dev/zero >disk/filler\n"
                "\"$RENDER\" %2 disk/out.mp4; status=$?; rm -f disk/filler; ls -A disk; exit $status")
            .arg(row.kibibytes)
            .arg(row.scene));
    if (outcome.status == 77) GTEST_SKIP() << "no file system can be mounted here";
    expectSentence(outcome, "Could not write \"disk/out.mp4\": no space left on the device.");
    EXPECT_EQ(outcome.listing, "");
    QDir(machine.path("disk")).removeRecursively();
  }
}

TEST_F(RenderFaults, whatIsInThePlaceOfTheMovieStays) {
  QDir(machine.path()).mkdir("folder");
  QDir(machine.path()).mkdir("locked");
  machine.write("locked/out.mp4", "old");
  ASSERT_EQ(chmod(machine.path("locked").toLocal8Bit().constData(), 0555), 0);
  ASSERT_EQ(mkfifo(machine.path("pipe").toLocal8Bit().constData(), 0666), 0);
  for (const auto& [target, name] :
       {std::pair{"folder", "linked folder"}, std::pair{"short.json", "linked scene"},
        std::pair{"photo.png", "linked photo"}, std::pair{"nowhere", "dangling"}})
    ASSERT_TRUE(QFile::link(target, machine.path(name)));
  const QStringList all = machine.filesBeside({});
  const QString name300 = QString(296, 'x') + ".mp4";
  const struct {
    QString scene, movie, says;
  } rows[]{
      {"short.json", "folder", "it is a directory"},
      {"short.json", "folder/", "it is a directory"},
      {"short.json", "linked folder", "it is a directory"},
      {"short.json", "pipe", "it is not a regular file"},
      {"short.json", "/dev/null", "it is not a regular file"},
      {"short.json", "/dev/full", "it is not a regular file"},
      {"short.json", "dangling", "a file of that name already exists"},
      {"short.json", name300, "the name is too long"},
      {"short.json", "nowhere/out.mp4", "its folder does not exist"},
      {"short.json", "photo.png/out.mp4", "a part of its path is not a folder"},
      {"short.json", "/proc/out.mp4", "Could not write"},
      {"short.json", "locked/out.mp4", "permission denied"},
      {"short.json", "locked/new.mp4", "no permission to write there"},
      {"short.json", "short.json", "is the scene file"},
      {"short.json", "folder/../short.json", "is the scene file"},
      {"short.json", "linked scene", "is the scene file"},
      {"photo.json", "photo.png", "is the scene's photo"},
      {"photo.json", "linked photo", "is the scene's photo"},
  };
  const QByteArray scene = machine.read("short.json"), photo = machine.read("photo.png");
  for (const auto& row : rows) {
    SCOPED_TRACE(row.movie.toStdString());
    expectSentence(machine.run({row.scene, row.movie}, withoutPrivileges()), row.says);
    // A picture goes the same way, but for a link that leads nowhere yet.
    if (row.movie != "dangling") {
      EXPECT_EQ(machine.run({row.scene, "--still", row.movie}, withoutPrivileges()).status, 1);
    }
    EXPECT_EQ(machine.filesBeside({}), all);
    EXPECT_EQ(machine.read("short.json"), scene);
    EXPECT_EQ(machine.read("photo.png"), photo);
    EXPECT_EQ(machine.read("locked/out.mp4"), "old");
  }
}

TEST_F(RenderFaults, aFolderThatGoesAwayMidwayIsNoticed) {
  QDir(machine.path()).mkdir("folder");
  QProcess process;
  machine.start(process, {"long.json", "folder/out.mp4"});
  while (!QFile::exists(machine.path("folder/out.mp4")) && process.state() != QProcess::NotRunning)
    process.waitForFinished(5);
  ASSERT_TRUE(QDir(machine.path("folder")).removeRecursively());
  ASSERT_TRUE(process.waitForFinished(300000));
  EXPECT_EQ(process.exitCode(), 1);
  const QByteArray said = process.readAllStandardError();
  EXPECT_TRUE(said.startsWith("brisklet-render: Could not write \"folder/out.mp4\": ")) << said.constData();
  EXPECT_EQ(said.count('\n'), 1);
}

TEST_F(RenderFaults, afterBeingKilledAtAnyMomentTheNextRunWorks) {
  const QByteArray movie = undisturbedMovie("short.json");
  std::mt19937 random(std::random_device{}());
  for (int round = 0; round < 12; ++round) {
    QProcess process;
    machine.start(process, {"short.json", "out.mp4"});
    ASSERT_TRUE(process.waitForStarted());
    process.waitForFinished(static_cast<int>(random() % 300));
    process.kill();
    process.waitForFinished();
    for (const QString& left : machine.filesBeside(scenes)) EXPECT_EQ(left, "out.mp4");
  }
  EXPECT_EQ(machine.run({"short.json", "out.mp4"}).status, 0);
  expectMovie("out.mp4", movie);
}

TEST_F(RenderFaults, neitherHomeNorRoomForTemporaryFilesIsNeeded) {
  const QByteArray movie = undisturbedMovie("photo.json");
  QDir(machine.path()).mkdir("home");
  ASSERT_EQ(chmod(machine.path("home").toLocal8Bit().constData(), 0555), 0);
  for (const QString& home :
       {QString(), QString("/nonexistent"), machine.path("photo.png"), machine.path("home")}) {
    SCOPED_TRACE(home.toStdString());
    machine.environment.remove("HOME");
    if (!home.isNull()) machine.environment.insert("HOME", home);
    for (const QString variable : {"TMPDIR", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "XDG_DATA_HOME"})
      machine.environment.insert(variable, "/nonexistent");
    const Outcome outcome = machine.run({"photo.json", "out.mp4"}, withoutPrivileges());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.said, "");
    expectMovie("out.mp4", movie);
  }

  const Outcome outcome = machine.runInOwnMounts(
      "mkdir full; mount -t tmpfs -o size=4k tmpfs full || exit 77\n"
      "head -c 4096 /dev/zero >full/filler\n"
      "TMPDIR=\"$PWD/full\" HOME=\"$PWD/full\" \"$RENDER\" photo.json out.mp4");
  if (outcome.status == 77) GTEST_SKIP() << "no file system can be mounted here";
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.said, "");
  expectMovie("out.mp4", movie);
}

TEST_F(RenderFaults, aClockThatJumpsChangesNothing) {
  const QByteArray movie = undisturbedMovie("photo.json");
  machine.environment.insert("LD_PRELOAD", BRISKLET_FAULTY_SYSTEM);
  machine.environment.insert("ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0");
  const Outcome outcome = machine.run({"photo.json", "out.mp4"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.said, "");
  expectMovie("out.mp4", movie);
}

TEST_F(RenderFaults, tooLittleMemoryEndsInASentenceAndNoFile) {
  if (isSanitized) GTEST_SKIP() << "the sanitizer itself needs more than any limit";
  const QByteArray movie = undisturbedMovie("photo.json");
  int completed = 0, refused = 0;
  for (quint64 mebibytes = 360; mebibytes <= 900; mebibytes += 18) {
    SCOPED_TRACE(mebibytes);
    const Outcome outcome = machine.run({"photo.json", "out.mp4"}, memoryLimit(mebibytes));
    if (outcome.status == 127) continue;  // not even the libraries have room
    if (outcome.status == 0) {
      ++completed;
      expectMovie("out.mp4", movie);
      QFile::remove(machine.path("out.mp4"));
    } else {
      ++refused;
      expectSentence(outcome, "");
      EXPECT_EQ(machine.filesBeside(scenes), QStringList());
    }
  }
  EXPECT_GT(refused, 0);
}

TEST_F(RenderFaults, whereNoMoreThreadsCanBeStartedNothingWaitsForThem) {
  if (isSanitized) GTEST_SKIP() << "the sanitizer starts threads of its own";
  const QByteArray movie = undisturbedMovie("short.json");
  machine.environment.insert("LD_PRELOAD", BRISKLET_FAULTY_SYSTEM);
  int most = 0;
  for (;; ++most) {
    ASSERT_LT(most, 40);
    SCOPED_TRACE(most);
    machine.environment.insert("BRISKLET_MOST_THREADS", QString::number(most));
    const Outcome outcome = machine.run({"short.json", "out.mp4"});
    if (outcome.status == 0) break;
    expectSentence(outcome, "the system allows no more threads");
    EXPECT_EQ(machine.filesBeside(scenes), QStringList());
  }
  EXPECT_GT(most, 2);
  expectMovie("out.mp4", movie);
}

TEST_F(RenderFaults, tooFewFilesOrClosedStreamsDoNoHarm) {
  const QByteArray movie = undisturbedMovie("short.json");
  for (const quint64 files : {4, 5, 6, 8, 9, 12, 26, 28}) {
    if (isSanitized) break;  // the sanitizer opens pipes of its own to look at memory
    SCOPED_TRACE(files);
    const Outcome outcome = machine.run({"short.json", "out.mp4"}, openFilesLimit(files));
    EXPECT_TRUE(outcome.status == 0 || outcome.status == 1 || outcome.status == 127);
    if (outcome.status == 0) expectMovie("out.mp4", movie);
    if (outcome.status == 1) expectSentence(outcome, "");
    QFile::remove(machine.path("out.mp4"));
  }
  const Outcome closed = machine.run({"short.json", "out.mp4"}, [] {
    for (const int fd : {0, 1, 2}) close(fd);
  });
  EXPECT_EQ(closed.status, 0);
  expectMovie("out.mp4", movie);
}

TEST_F(RenderFaults, aSceneReachesNothingButThePhotoThatItNames) {
  // What is no photo is not read to its end, does not block and shows as the built-in wallpaper.
  ASSERT_EQ(mkfifo(machine.path("pipe").toLocal8Bit().constData(), 0666), 0);
  const auto stillOf = [this](const QByteArray& photo) {
    machine.write("scene.json",
                  R"({"dateLabel": "Mon Nov 16", "wallpaper": "custom", "wallpaperUrl": ")" + photo +
                      R"(", "notifications": [{"appId": "../../photo", "icon": "../photo.png"}]})");
    const Outcome outcome = machine.run({"scene.json", "--still", "out.png"});
    EXPECT_EQ(outcome.status, 0) << photo.constData();
    EXPECT_EQ(outcome.said, "") << photo.constData();
    return machine.read("out.png");
  };
  // Of this one, libpng complains on standard error.
  QByteArray broken = machine.read("photo.png");
  broken[16] = 0x7f;
  machine.write("broken.png", broken);
  const QByteArray plain = stillOf("");
  for (const char* path :
       {"/dev/zero", "/dev/stdin", "/proc/self/mem", "/proc/kcore", "/proc/self/environ", "pipe", ".",
        "scene.json", "broken.png", "photo.png\\u0000", "%70hoto.png", "file:photo.png", ":/images/two.jpg"})
    EXPECT_TRUE(stillOf(path) == plain) << path;
  EXPECT_FALSE(stillOf("photo.png") == plain);
}

TEST_F(RenderFaults, aSceneOfManyHoursIsRefusedOrMadeInLittleMemory) {
  const auto run = [this](double hours, const QStringList& outputs, const FaultyMachine::Fault& fault) {
    machine.write("hours.json",
                  R"({"notifications": [{"delayMs": )" + QByteArray::number(hours * 3600000, 'f') + "}]}");
    return machine.run(QStringList("hours.json") + outputs, fault);
  };
  for (const double hours : {24.1, 1e9, 1e290}) {
    expectSentence(run(hours, {"out.mp4"}, {}), "hours long; a movie can have 24 at most");
    expectSentence(run(hours, {"--soundtrack", "out.wav"}, {}), "hours long; a movie can have 24 at most");
  }
  EXPECT_EQ(run(1e290, {"--still", "out.png"}, {}).status, 0) << "a picture has no length";
  EXPECT_EQ(run(-1e290, {"--soundtrack", "out.wav"}, {}).status, 0);
  expectSentence(run(23, {"--soundtrack", "out.wav"}, {}), "too long for a WAV file");
  if (isSanitized) return;
  // The disk is full before the memory is.
  const auto both = [] {
    memoryLimit(1200)();
    fileSizeLimit(32 << 20)();
  };
  expectSentence(run(6, {"--soundtrack", "long.wav"}, both), "long.wav: it cannot be written: ");
}

}  // namespace
}  // namespace brisklet
