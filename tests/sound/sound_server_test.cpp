// Plays through a private sound server and compares what its loudspeaker gets with the tones.

#include "sound/notification_sound_player.h"
#include "sound/notification_sounds.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>
#include <atomic>
#include <vector>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

/// Nothing takes so long, however busy the machine is.
constexpr int longestMs = 60000;

/// PulseAudio apart from the session's own, whose loudspeaker is a pipe.
struct SoundServerTest : testing::Test {
  void SetUp() override {
    for (const QString& program : {u"pulseaudio"_s, u"pactl"_s}) {
      if (QStandardPaths::findExecutable(program).isEmpty())
        GTEST_SKIP() << "pulseaudio and pulseaudio-utils are not installed";
    }
    for (const char* variable : {"HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH"})
      qputenv(variable, folder.path().toUtf8());
    qputenv("PULSE_SERVER", "unix:" + socket.toUtf8());
    qputenv("PULSE_COOKIE", folder.filePath(u"cookie"_s).toUtf8());
    ASSERT_TRUE(start());
  }
  ~SoundServerTest() override { kill(); }

  bool start() {
    daemon.start(u"pulseaudio"_s,
                 {u"-n"_s, u"--daemonize=no"_s, u"--use-pid-file=no"_s, u"--exit-idle-time=-1"_s, u"-L"_s,
                  u"module-pipe-sink rate=44100 channels=1 use_system_clock_for_timing=yes file="_s + speaker,
                  u"-L"_s, u"module-native-protocol-unix auth-anonymous=1 socket="_s + socket});
    const auto answers = [] {
      return QProcess::execute(u"pactl"_s, {u"list"_s, u"short"_s, u"sinks"_s}) == 0;
    };
    return daemon.waitForStarted() && QTest::qWaitFor(answers, longestMs);
  }
  void kill() {
    daemon.kill();
    daemon.waitForFinished();
    QFile::remove(socket);
  }

  QTemporaryDir folder;
  QString speaker = folder.filePath(u"speaker"_s);
  QString socket = folder.filePath(u"native"_s);
  QProcess daemon;
};

using Samples = std::vector<int>;

/// A server that is late leaves silence in what plays, and loses nothing of it: silence tells nothing here.
Samples withoutSilence(Samples samples) {
  std::erase(samples, 0);
  return samples;
}

Samples toneOf(const QString& appId) {
  Samples tone;
  for (const float sample : NotificationSounds::rendered(appId))
    tone.push_back(NotificationSounds::pcm16(sample));
  return withoutSilence(std::move(tone));
}

/// What the loudspeaker gets, from the construction on.
class Recording {
 public:
  explicit Recording(const QString& speaker) {
    recorder_.start(u"cat"_s, {speaker});
    EXPECT_TRUE(QTest::qWaitFor([this] { return recorder_.bytesAvailable() > 0; }, longestMs));
  }
  ~Recording() {
    recorder_.kill();
    recorder_.waitForFinished();
  }

  /// Takes what was heard, once there are so many samples of it.
  Samples take(std::size_t samples) {
    Samples heard;
    const auto isThere = [&] {
      pcm_ += recorder_.readAllStandardOutput();
      heard.clear();
      for (qsizetype i = 0; i + 1 < pcm_.size(); i += 2)
        heard.push_back(qFromLittleEndian<qint16>(pcm_.constData() + i));
      heard = withoutSilence(std::move(heard));
      return heard.size() >= samples;
    };
    EXPECT_TRUE(QTest::qWaitFor(isThere, longestMs)) << heard.size() << " samples of " << samples;
    pcm_.remove(0, pcm_.size() / 2 * 2);
    return heard;
  }

 private:
  QProcess recorder_;
  QByteArray pcm_;
};

/// Stands between a player and its output, and can see to it that nothing is forgotten: a busy machine may
/// stand still for longer than a tone may wait.
struct WatchedSource : AudioSource {
  bool next(std::span<qint16> samples) override {
    ++asked;
    return source->next(samples);
  }
  void skipWaiting() override {
    if (!isPatient) source->skipWaiting();
    ++forgot;
  }
  MakeAudioOutput maker() {
    return [this](AudioSource& player) {
      source = &player;
      return makeAudioOutput(*this);
    };
  }

  AudioSource* source = nullptr;
  std::atomic<bool> isPatient = false;
  std::atomic<int> asked = 0, forgot = 0;
};

TEST_F(SoundServerTest, everyToneSoundsWhole) {
  WatchedSource watched;
  watched.isPatient = true;
  NotificationSoundPlayer player(watched.maker());
  Recording recording(speaker);
  for (const char* appId : {"tiktok", "cashapp", "snapchat", "messages", "instagram", "custom"}) {
    const Samples tone = toneOf(QString::fromLatin1(appId));
    player.play(QString::fromLatin1(appId));
    EXPECT_TRUE(recording.take(tone.size()) == tone) << appId;
  }
}

TEST_F(SoundServerTest, soundComesBackWithAServerThatWasKilled) {
  WatchedSource watched;
  NotificationSoundPlayer player(watched.maker());
  player.play(u"tiktok"_s);
  ASSERT_TRUE(QTest::qWaitFor([&] { return watched.asked > 0; }, longestMs));
  int forgotten = watched.forgot;
  const auto forgetsMore = [&] { return watched.forgot > forgotten; };
  kill();
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(QTest::qWaitFor(forgetsMore, longestMs));
    forgotten = watched.forgot;
    player.play(u"messages"_s);
  }
  ASSERT_TRUE(QTest::qWaitFor(forgetsMore, longestMs));
  ASSERT_TRUE(start());
  watched.isPatient = true;
  Recording recording(speaker);
  player.play(u"cashapp"_s);
  const Samples tone = toneOf(u"cashapp"_s);
  EXPECT_TRUE(recording.take(tone.size()) == tone)
      << "tones of the dead time sound late, or the new one does not";
}

}  // namespace
}  // namespace brisklet
