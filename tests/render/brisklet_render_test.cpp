#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>

#include "support/printing.h"

namespace brisklet {
namespace {

struct Outcome {
  int status = -1;
  QString said;
};

/// Runs the real program in a directory of its own, without display, home or network of sound.
struct BriskletRender : testing::Test {
  QTemporaryDir directory;

  QString file(const QString& name) const { return directory.filePath(name); }

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

  void start(QProcess& process, const QStringList& arguments) const {
    QProcessEnvironment environment;
    environment.insert("PATH", "/usr/bin:/bin");
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(directory.path());
    process.start(BRISKLET_RENDER, arguments);
  }

  Outcome run(const QStringList& arguments, const QByteArray& input = {}) const {
    QProcess process;
    start(process, arguments);
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(120000));
    EXPECT_EQ(process.readAllStandardOutput(), "");
    const bool crashed = process.exitStatus() == QProcess::CrashExit;
    return {crashed ? -1 : process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
  }
};

const QByteArray shortScene =
    R"({"dateLabel": "Mon Nov 16", "notifications": [{"appId": "snapchat", "delayMs": 100}]})";

TEST_F(BriskletRender, makesEveryOutputAndTheSameBytesTwice) {
  write("scene.json", shortScene);
  for (const QString n : {"1", "2"}) {
    const Outcome outcome =
        run({"scene.json", n + ".mp4", "--still", n + ".png", "--at", "0.1", "--soundtrack", n + ".wav"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.said, "");
  }
  for (const QString ending : {".mp4", ".png", ".wav"}) {
    EXPECT_FALSE(read("1" + ending).isEmpty()) << ending.toStdString();
    EXPECT_EQ(read("1" + ending), read("2" + ending)) << ending.toStdString();
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
  QImage photo(40, 80, QImage::Format_RGB32);
  photo.fill(QColor(200, 30, 30));
  ASSERT_TRUE(photo.save(file("scenes/red.png")));
  write("scenes/scene.json", R"({"wallpaper": "custom", "wallpaperUrl": "red.png"})");
  EXPECT_EQ(run({"scenes/scene.json", "--still", "beside.png"}).status, 0);
  EXPECT_EQ(QImage(file("beside.png")).pixelColor(20, 1600), QColor(200, 30, 30));

  EXPECT_EQ(
      run({"-", "--still", "in.png"}, R"({"wallpaper": "custom", "wallpaperUrl": "scenes/red.png"})").status,
      0);
  EXPECT_EQ(read("in.png"), read("beside.png"));
}

TEST_F(BriskletRender, saysInOneLineWhatIsWrong) {
  write("scene.json", shortScene);
  write("number.json", R"({"title": 5})");
  write("broken.json", "{\n  \"title\": \"a\"\n");
  write("endless.json", R"({"notifications": [{"delayMs": 1e300}]})");
  const QByteArray photoScene = R"({"wallpaper": "custom", "wallpaperUrl": "photo.png"})";
  write("photo.json", photoScene);
  write("photo.png", "precious");
  QDir(directory.path()).mkdir("folder");
  const QString longName = QString(300, 'x') + ".mp4";
  const struct {
    QStringList arguments;
    int status;
    QString says;
  } rows[]{
      {{"number.json", "out.mp4"}, 1, "number.json: \"title\" must be a string"},
      {{"broken.json", "out.mp4"}, 1, "broken.json: it is not valid JSON at line 3"},
      {{"endless.json", "out.mp4"}, 1, "endless.json: The sequence is"},
      {{"missing.json", "out.mp4"}, 1, "missing.json: it cannot be read: no such file"},
      {{"folder", "out.mp4"}, 1, "folder: it cannot be read: it is a directory"},
      {{"scene.json", "folder"}, 1, "it is a directory"},
      {{"scene.json", "nowhere/out.mp4"}, 1, "nowhere/out.mp4"},
      {{"scene.json", longName}, 1, longName},
      {{"scene.json", "/dev/full"}, 1, "/dev/full"},
      {{"scene.json", "--still", "folder"}, 1, "folder"},
      {{"scene.json", "--still", "nowhere/a.png"}, 1, "nowhere/a.png"},
      {{"scene.json", "./scene.json"}, 1, "is the scene file"},
      {{"photo.json", "--still", "photo.png"}, 1, "is the scene's photo"},
      {{"scene.json", "out.mp4", "--soundtrack", "out.mp4"}, 1, "two outputs"},
      {{"scene.json"}, 2, "nothing to make"},
      {{"--quick"}, 2, "quick"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.arguments.join(' ').toStdString());
    const Outcome outcome = run(row.arguments);
    EXPECT_EQ(outcome.status, row.status);
    EXPECT_TRUE(outcome.said.startsWith("brisklet-render: ")) << outcome.said.toStdString();
    EXPECT_TRUE(outcome.said.contains(row.says)) << outcome.said.toStdString();
    EXPECT_EQ(outcome.said.count('\n'), 1);
    EXPECT_FALSE(QFile::exists(file("out.mp4")));
  }
  EXPECT_EQ(read("scene.json"), shortScene);
  EXPECT_EQ(read("photo.png"), "precious");
}

TEST_F(BriskletRender, aBatchGoesOnAfterABadScene) {
  write("a.json", shortScene);
  write("b.json", "nonsense");
  write("c.json", shortScene);
  const Outcome outcome = run({"--into", "out/movies", "a.json", "b.json", "c.json"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.said.startsWith("brisklet-render: b.json: "));
  EXPECT_EQ(QDir(file("out/movies")).entryList(QDir::Files), (QStringList{"a.mp4", "c.mp4"}));
  EXPECT_EQ(read("out/movies/a.mp4"), read("out/movies/c.mp4"));
}

TEST_F(BriskletRender, anInterruptEndsItWithItsOwnStatus) {
  // A picture every frame for a long time.
  QByteArray scene = R"({"notifications": [)";
  for (int i = 0; i < 3000; ++i) scene += "{\"delayMs\": " + QByteArray::number(i * 34) + "},";
  write("long.json", scene + "{}]}");
  write("hours.json", R"({"notifications": [{"delayMs": 20000000}]})");
  // While it encodes, while it waits for a scene, and while it writes a soundtrack of hours.
  for (const QStringList& arguments : {QStringList{"long.json", "out.mp4"}, QStringList{"-", "never.mp4"},
                                       QStringList{"hours.json", "--soundtrack", "out.wav"}}) {
    SCOPED_TRACE(arguments.first().toStdString());
    QProcess process;
    start(process, arguments);
    // Nothing is to be seen of the other two while they run.
    const int looks = arguments.last() == "out.mp4" ? 600 : 20;
    for (int i = 0; i < looks && !QFile::exists(file(arguments.last())); ++i) process.waitForFinished(50);
    ASSERT_EQ(process.state(), QProcess::Running) << process.readAllStandardError().constData();
    kill(static_cast<pid_t>(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    EXPECT_TRUE(process.readAllStandardError().contains("interrupted"));
  }
  EXPECT_EQ(QDir(directory.path()).entryList({"*.wav*"}), QStringList());
}

}  // namespace
}  // namespace brisklet
