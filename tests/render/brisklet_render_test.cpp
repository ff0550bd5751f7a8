#include "support/printing.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <functional>
#include <random>

namespace brisklet {
namespace {

struct Outcome {
  int status = -1;  // -1: it crashed
  QString said;     // on standard error
};

/// Runs the real program in a directory of its own, without display, network of sound, home or room for
/// temporary files.
struct BriskletRender : testing::Test {
  QTemporaryDir directory;

  QString file(const QString& name) const { return directory.path() + '/' + name; }

  QString write(const QString& name, const QByteArray& bytes) const {
    QFile out(file(name));
    EXPECT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(bytes);
    return name;
  }

  QByteArray read(const QString& name) const {
    QFile in(file(name));
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
  }

  QStringList entries() const {
    return QDir(directory.path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
  }

  /// `before` happens in the process before the program begins.
  void start(QProcess& process, const QStringList& arguments, std::function<void()> before = {}) const {
    QProcessEnvironment environment;
    environment.insert("PATH", "/usr/bin:/bin:/usr/sbin:/sbin");
    for (const char* variable : {"HOME", "TMPDIR", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
      environment.insert(variable, "/nonexistent");
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(directory.path());
    if (before) process.setChildProcessModifier(before);
    process.start(arguments.first(), arguments.mid(1));
  }

  Outcome run(const QStringList& arguments, std::function<void()> before = {},
              const QByteArray& input = {}) const {
    QProcess process;
    start(process, QStringList(BRISKLET_RENDER) + arguments, std::move(before));
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(120000));
    EXPECT_EQ(process.readAllStandardOutput(), "");
    const bool crashed = process.exitStatus() == QProcess::CrashExit;
    return {crashed ? -1 : process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
  }

  void expectSentence(const QStringList& arguments, const QString& says,
                      std::function<void()> before = {}) const {
    SCOPED_TRACE(arguments.join(' ').toStdString());
    const Outcome outcome = run(arguments, std::move(before));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.said.startsWith("brisklet-render: ")) << outcome.said.toStdString();
    EXPECT_TRUE(outcome.said.contains(says)) << outcome.said.toStdString();
    EXPECT_EQ(outcome.said.count('\n'), 1) << outcome.said.toStdString();
  }
};

/// Being root opens no door that is locked.
void dropPrivileges() {
  for (const int capability : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH, CAP_FOWNER})
    prctl(PR_CAPBSET_DROP, static_cast<unsigned long>(capability), 0, 0, 0);
}

std::function<void()> fileSizeLimit(quint64 bytes) {
  return [bytes] {
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
  };
}

/// Noise, of which a frame takes megabytes.
QImage noise() {
  QImage photo(585, 1266, QImage::Format_RGB32);
  quint32 state = 1;
  for (int y = 0; y < photo.height(); ++y)
    for (int x = 0; x < photo.width(); ++x)
      photo.setPixel(x, y, 0xff000000 | (state = state * 1664525 + 1013904223) >> 8);
  return photo;
}

const QByteArray shortScene =
    R"({"dateLabel": "Mon Nov 16", "notifications": [{"appId": "snapchat", "delayMs": 100}]})";

TEST_F(BriskletRender, makesEveryOutputAndTheSameBytesTwice) {
  write("scene.json", shortScene);
  // A name with a colon is a file and nothing of Qt's; closed streams leave their numbers to no output.
  for (const QString n : {"1", ":2"}) {
    const Outcome outcome = run(
        {"scene.json", n + ".mp4", "--still", n + ".png", "--at", "0.1", "--soundtrack", n + ".wav"}, [&n] {
          for (int fd = 0; fd < 3 && n != "1"; ++fd) close(fd);
        });
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.said, "");
  }
  for (const QString ending : {".mp4", ".png", ".wav"}) {
    EXPECT_FALSE(read("1" + ending).isEmpty()) << ending.toStdString();
    EXPECT_TRUE(read("1" + ending) == read(":2" + ending)) << ending.toStdString();
  }
  const QImage still(file("1.png"));
  EXPECT_EQ(still.size(), QSize(1170, 2532));
  // 1900 ms of stereo, the tone from 100 ms on.
  const QByteArray wav = read("1.wav");
  EXPECT_EQ(wav.size(), 44 + 83790 * 4);
  EXPECT_EQ(wav.mid(44, 4410 * 4), QByteArray(4410 * 4, 0));
  EXPECT_EQ(wav.mid(44 + 4410 * 4, 4), QByteArray::fromHex("03000300"));

  EXPECT_EQ(run({"scene.json", "--still", "0.png", "--at", "0"}).status, 0);
  EXPECT_NE(QImage(file("0.png")), still);
}

TEST_F(BriskletRender, readsStandardInputAndFindsAPhotoBesideItsScene) {
  QDir(directory.path()).mkdir("scenes");
  noise().save(file("scenes/photo.png"));
  write("scenes/scene.json", R"({"wallpaper": "custom", "wallpaperUrl": "photo.png"})");
  EXPECT_EQ(run({"scenes/scene.json", "--still", "beside.png"}).status, 0);
  const QByteArray scene = R"({"wallpaper": "custom", "wallpaperUrl": "scenes/photo.png"})";
  EXPECT_EQ(run({"-", "--still", "in.png"}, {}, scene).status, 0);
  EXPECT_TRUE(read("in.png") == read("beside.png"));
  EXPECT_EQ(run({"-", "--still", "plain.png"}, {}, "{}").status, 0);
  EXPECT_FALSE(read("plain.png") == read("beside.png"));
}

TEST_F(BriskletRender, saysInOneLineWhatIsWrongAndTouchesNothing) {
  write("scene.json", shortScene);
  write("number.json", R"({"title": 5})");
  write("broken.json", "{\n  \"title\": \"a\"\n");
  write("endless.json", R"({"notifications": [{"delayMs": 1e300}]})");
  write("hours.json", R"({"notifications": [{"delayMs": 80000000}]})");
  write("photo.json", R"({"wallpaper": "custom", "wallpaperUrl": "photo.png"})");
  write("photo.png", "precious");
  QDir(directory.path()).mkdir("folder");
  QDir(directory.path()).mkdir("locked");
  write("locked/out.mp4", "old");
  ASSERT_EQ(chmod(QFile::encodeName(file("locked")).constData(), 0555), 0);
  ASSERT_EQ(mkfifo(QFile::encodeName(file("pipe")).constData(), 0666), 0);
  QFile::link("photo.png", file("linked photo"));
  const struct {
    QStringList arguments;
    QString says;
  } rows[]{
      {{"number.json", "out.mp4"}, "number.json: \"title\" must be a string"},
      {{"broken.json", "out.mp4"}, "broken.json: it is not valid JSON at line 3"},
      {{"endless.json", "out.mp4"}, "endless.json: The sequence is"},
      {{"hours.json", "--soundtrack", "out.wav"}, "too long for a WAV file"},
      {{"missing.json", "out.mp4"}, "missing.json: it cannot be read: no such file"},
      {{"scene.json", "--soundtrack", "locked/a.wav"}, "no permission to write there"},
      {{"scene.json", "locked/out.mp4"}, "no permission to write there"},
      // Nothing is drawn before all outputs are looked at.
      {{"scene.json", "pipe", "--still", "a.png"}, "\"pipe\": it is not a regular file"},
      {{"scene.json", "a.mp4", "--soundtrack", "/dev/full"}, "\"/dev/full\": it is not a regular file"},
      {{"scene.json", "folder/../scene.json"}, "is the scene file"},
      {{"photo.json", "--still", "linked photo"}, "is the scene's photo"},
      {{"scene.json", "out.mp4", "--soundtrack", "./out.mp4"}, "two outputs"},
      {{"--into", "scene.json/movies", "scene.json"}, "a part of its path is not a folder"},
      {{"--into", "new/movies", "number.json", "--quiet"}, "must be a string"},
  };
  const QStringList all = entries();
  for (const auto& row : rows) {
    expectSentence(row.arguments, row.says, dropPrivileges);
    EXPECT_EQ(entries(), all);
  }
  EXPECT_EQ(read("scene.json"), shortScene);
  EXPECT_EQ(read("photo.png"), "precious");
  EXPECT_EQ(read("locked/out.mp4"), "old");
  EXPECT_EQ(run({"endless.json", "--still", "out.png"}).status, 0) << "a picture has no length";
}

TEST_F(BriskletRender, aBatchGoesOnAfterABadSceneAndSparesThePhotosOfAll) {
  write("a.json", shortScene);
  write("b.json", "nonsense");
  write("c.json", shortScene);
  const Outcome outcome = run({"--into", "out/movies", "a.json", "b.json", "c.json"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.said.startsWith("brisklet-render: b.json: "));
  EXPECT_TRUE(outcome.said.endsWith("brisklet-render: 2 of 3 movies made, 1 not made: b.json\n"));
  EXPECT_EQ(QDir(file("out/movies")).entryList(QDir::Files), (QStringList{"a.mp4", "c.mp4"}));
  EXPECT_TRUE(read("out/movies/a.mp4") == read("out/movies/c.mp4"));

  write("photo.json", R"({"wallpaper": "custom", "wallpaperUrl": "out/movies/a.mp4"})");
  expectSentence({"--into", "out/movies", "a.json", "photo.json", "-q"},
                 "a.mp4: it is the photo of another scene");
  EXPECT_TRUE(read("out/movies/a.mp4") == read("out/movies/c.mp4"));
}

TEST_F(BriskletRender, aWorkerThatDiesTakesOneMovieWithItAndTheNextRunMakesThatOne) {
  QStringList batch{"--into", "out", "--jobs", "2", "--keep"};
  for (int i = 0; i < 6; ++i) {
    QByteArray pings;
    for (int k = 0; k < 12; ++k) pings += "{\"delayMs\": " + QByteArray::number(i + 300 * k) + "},";
    batch.append(write(QString("%1.json").arg(i), R"({"notifications": [)" + pings + "{}]}"));
  }
  QProcess process;
  start(process, QStringList(BRISKLET_RENDER) + batch);
  ASSERT_TRUE(process.waitForStarted());
  QByteArray workers;
  while (workers.isEmpty() && !process.waitForFinished(1)) {
    QFile children(QString("/proc/%1/task/%1/children").arg(process.processId()));
    if (children.open(QIODevice::ReadOnly)) workers = children.readAll();
  }
  const int worker = workers.left(workers.indexOf(' ')).toInt();
  ASSERT_GT(worker, 0) << "and 0 would be this process and all beside it";
  kill(worker, SIGKILL);
  ASSERT_TRUE(process.waitForFinished(120000));
  EXPECT_EQ(process.exitCode(), 1);
  const QString said = QString::fromUtf8(process.readAllStandardError());
  EXPECT_TRUE(said.contains("the process that was making its movie crashed (signal 9)"))
      << said.toStdString();
  EXPECT_TRUE(said.contains("5 of 6 movies made, 1 not made")) << said.toStdString();
  const Outcome again = run(batch);
  EXPECT_EQ(again.status, 0);
  EXPECT_EQ(again.said, "brisklet-render: 1 of 6 movies made, 5 kept\n");
  for (int i = 0; i < 6; ++i) {
    run({QString("%1.json").arg(i), "alone.mp4"});
    EXPECT_TRUE(read("alone.mp4") == read(QString("out/%1.mp4").arg(i))) << i;
  }
  // What a movie is made from is newer than the movie.
  QFile scene(file("3.json"));
  ASSERT_TRUE(scene.open(QIODevice::ReadWrite) &&
              scene.setFileTime(QDateTime::currentDateTime().addSecs(60), QFileDevice::FileModificationTime));
  EXPECT_EQ(run(batch).said, "brisklet-render: 1 of 6 movies made, 5 kept\n");
}

TEST_F(BriskletRender, aDiskThatFillsUpEndsInASentenceAndLeavesNothing) {
  write("scene.json", shortScene);
  write("old", "old");
  noise().save(file("photo.png"));
  // Its samples do not fit in memory.
  write("large.json",
        R"({"wallpaper": "custom", "wallpaperUrl": "photo.png", "notifications": [{"delayMs": 12000}]})");
  const QStringList all = entries();
  const std::pair<QStringList, int> rows[]{{{"scene.json", "out.mp4"}, 0},
                                           {{"scene.json", "out.mp4"}, 160000},
                                           {{"large.json", "out.mp4"}, 3000000},
                                           {{"scene.json", "--still", "old"}, 4096},
                                           {{"scene.json", "--soundtrack", "old"}, 4096}};
  for (const auto& [arguments, bytes] : rows) {
    expectSentence(arguments, "\": the file would grow larger than this system allows.",
                   fileSizeLimit(static_cast<quint64>(bytes)));
    EXPECT_EQ(entries(), all);
    EXPECT_EQ(read("old"), "old");
  }
}

TEST_F(BriskletRender, killedAtAnyMomentItLeavesAWholeMovieOrNone) {
  write("scene.json", shortScene);
  ASSERT_EQ(run({"scene.json", "whole.mp4"}).status, 0);
  const QByteArray movie = read("whole.mp4");
  QStringList all = entries();
  std::mt19937 random(std::random_device{}());
  for (int round = 0; round < 12; ++round) {
    QProcess process;
    start(process, {BRISKLET_RENDER, "scene.json", "whole.mp4"});
    ASSERT_TRUE(process.waitForStarted());
    process.waitForFinished(static_cast<int>(random() % 500));
    process.kill();
    process.waitForFinished();
    const bool isThere = QFile::exists(file("whole.mp4"));
    EXPECT_TRUE(read("whole.mp4") == (isThere ? movie : QByteArray()));
    EXPECT_EQ(entries(), isThere ? all : QStringList("scene.json"));
  }
}

TEST_F(BriskletRender, whatIsNoPhotoIsNotReadAndShowsAsTheBuiltInWallpaper) {
  ASSERT_EQ(mkfifo(QFile::encodeName(file("pipe")).constData(), 0666), 0);
  noise().save(file("photo.png"));
  QByteArray broken = read("photo.png");
  broken[16] = 0x7f;  // of this one, libpng complains on standard error
  write("broken.png", broken);
  const auto stillOf = [this](const QByteArray& photo) {
    write("scene.json",
          R"({"dateLabel": "Mon Nov 16", "wallpaper": "custom", "wallpaperUrl": ")" + photo + R"("})");
    const Outcome outcome = run({"scene.json", "--still", "out.png"});
    EXPECT_EQ(outcome.said, "") << photo.constData();
    return read("out.png");
  };
  const QByteArray plain = stillOf("");
  for (const char* path : {"/dev/zero", "pipe", "broken.png", "photo.png\\u0000", ":/images/two.jpg"})
    EXPECT_TRUE(stillOf(path) == plain) << path;
  EXPECT_FALSE(stillOf("photo.png") == plain);
}

TEST_F(BriskletRender, anInterruptEndsItWithItsOwnStatusAndLeavesNothing) {
  // A picture every frame for a long time.
  QByteArray scene = R"({"notifications": [)";
  for (int i = 0; i < 3000; ++i)
    scene += QString(R"({"title": "%1", "delayMs": %2},)").arg(i).arg(i * 34).toUtf8();
  write("long.json", scene + "{}]}");
  write("hours.json", R"({"notifications": [{"delayMs": 20000000}]})");
  write("old", "old");
  // While it encodes, while it waits for a scene, and while it writes a soundtrack of hours.
  for (const QStringList& arguments :
       {QStringList{"long.json", "out.mp4"}, QStringList{"-", "--still", "old"},
        QStringList{"hours.json", "--soundtrack", "old"}}) {
    SCOPED_TRACE(arguments.first().toStdString());
    const QStringList all = entries();
    QProcess process;
    start(process, QStringList(BRISKLET_RENDER) + arguments);
    EXPECT_FALSE(process.waitForFinished(1500)) << process.readAllStandardError().constData();
    kill(static_cast<pid_t>(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_TRUE(process.readAllStandardError().contains("interrupted"));
    EXPECT_EQ(entries(), all);
    EXPECT_EQ(read("old"), "old");
  }
}

}  // namespace
}  // namespace brisklet
