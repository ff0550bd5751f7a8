// Plays through a private sound server and compares what its monitor records with the tones.

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>
#include <algorithm>
#include <cmath>

#include "sound/notification_sound_player.h"
#include "sound/notification_sounds.h"
#include "studio/studio_view.h"
#include "support/printing.h"

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

constexpr double samplesPerMs = AudioSource::sampleRate / 1000.0;

/// PulseAudio with a loudspeaker that nobody hears, apart from the session's own.
struct SoundServerTest : testing::Test {
  void SetUp() override {
    for (const QString& program : {u"pulseaudio"_s, u"parec"_s}) {
      if (QStandardPaths::findExecutable(program).isEmpty())
        GTEST_SKIP() << "pulseaudio and pulseaudio-utils are not installed";
    }
    qputenv("PULSE_SERVER", "unix:" + socket.toUtf8());
    qputenv("PULSE_COOKIE", folder.filePath(u"cookie"_s).toUtf8());
    ASSERT_TRUE(start());
  }
  ~SoundServerTest() override { kill(); }

  bool start() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& variable : {u"HOME"_s, u"XDG_RUNTIME_DIR"_s, u"PULSE_RUNTIME_PATH"_s})
      environment.insert(variable, folder.path());
    daemon.setProcessEnvironment(environment);
    daemon.setProcessChannelMode(QProcess::MergedChannels);
    daemon.start(u"pulseaudio"_s,
                 {u"-n"_s, u"--daemonize=no"_s, u"--use-pid-file=no"_s, u"--exit-idle-time=-1"_s, u"-L"_s,
                  u"module-null-sink sink_name=out rate=44100 channels=2 format=s16le"_s, u"-L"_s,
                  u"module-native-protocol-unix auth-anonymous=1 socket="_s + socket});
    const auto answers = [] {
      return QProcess::execute(u"pactl"_s, {u"list"_s, u"short"_s, u"sinks"_s}) == 0;
    };
    return daemon.waitForStarted() && QTest::qWaitFor(answers, 20000);
  }
  void kill() {
    daemon.kill();
    daemon.waitForFinished();
    QFile::remove(socket);
  }

  QTemporaryDir folder;
  QString socket = folder.filePath(u"native"_s);
  QProcess daemon;
};

/// What the loudspeaker gets, from the construction on.
class Recording {
 public:
  Recording() {
    recorder_.start(u"parec"_s, {u"--raw"_s, u"--device=out.monitor"_s, u"--rate=44100"_s, u"--channels=1"_s,
                                 u"--format=s16le"_s, u"--latency-msec=20"_s});
    EXPECT_TRUE(QTest::qWaitFor([this] { return recorder_.bytesAvailable() > 0; }, 20000));
  }
  ~Recording() {
    recorder_.kill();
    recorder_.waitForFinished();
  }

  [[nodiscard]] std::vector<int> samples() {
    pcm_ += recorder_.readAllStandardOutput();
    std::vector<int> samples;
    for (qsizetype i = 0; i + 1 < pcm_.size(); i += 2)
      samples.push_back(qFromLittleEndian<qint16>(pcm_.constData() + i));
    return samples;
  }

 private:
  QProcess recorder_;
  QByteArray pcm_;
};

/// Silence may come as a sample or two of rounding.
bool isSound(int sample) {
  return std::abs(sample) > 2;
}

/// Takes a tone away from a recording, where it fits best from one sample to another, and returns that place.
std::size_t takeAway(std::vector<int>& recorded, const QString& appId, double from, double to) {
  std::vector<int> tone;
  for (const float sample : NotificationSounds::rendered(appId))
    tone.push_back(NotificationSounds::pcm16(sample));
  const auto forEachSample = [&](std::size_t at, auto&& action) {
    for (std::size_t i = 0; i < tone.size() && at + i < recorded.size(); ++i)
      action(recorded[at + i], tone[i]);
  };
  std::size_t best = 0;
  double bestFit = -1;
  for (auto at = static_cast<std::size_t>(std::max(0.0, from)); static_cast<double>(at) < to; ++at) {
    double fit = 0;
    forEachSample(at, [&fit](int heard, int meant) { fit += static_cast<double>(heard) * meant; });
    if (fit > bestFit) best = at;
    bestFit = std::max(fit, bestFit);
  }
  forEachSample(best, [](int& heard, int meant) { heard -= meant; });
  return best;
}

/// Notes when each tone was asked for, which is when its card appears.
struct TimedTones : TonePlayer {
  explicit TimedTones(TonePlayer& tones) : player(tones) {}
  void prepare() override { player.prepare(); }
  void play(const QString& appId) override {
    player.play(appId);
    cards.append({appId, SequencePlayer::steadyClockMs()});
  }
  TonePlayer& player;
  QList<std::pair<QString, double>> cards;
};

/// Plays a sequence and says what was wrong with its sound; nothing when all was right.
QString faultOfAPlayedSequence() {
  NotificationSoundPlayer player(makeAudioOutput);
  TimedTones tones(player);
  StudioView view({.tones = &tones});
  const struct {
    QString appId, seconds;
  } pings[] = {{u"tiktok"_s, u"0.4"_s},                                // alone
               {u"cashapp"_s, u"0.9"_s},                               // overlapped by the next
               {u"snapchat"_s, u"0.95"_s}, {u"messages"_s, u"1.4"_s},  // at the same moment as the next
               {u"instagram"_s, u"1.4"_s}, {u"custom"_s, u"2"_s}};
  for (const auto& [appId, seconds] : pings) {
    view.pickApp(appId);
    view.addPing();
    view.selectPing(view.document().notifications.last());
    view.setDelayText(seconds);
  }
  Recording recording;
  view.play();
  if (!QTest::qWaitFor([&] { return !view.isPlaying(); }, 20000)) return u"The run did not end."_s;
  if (tones.cards.size() != std::ssize(pings)) return u"%1 tones were asked for."_s.arg(tones.cards.size());

  std::vector<int> recorded = recording.samples();
  const auto first = std::find_if(recorded.begin(), recorded.end(), isSound);
  if (first == recorded.end()) return u"There was no sound."_s;
  const auto firstAt = static_cast<double>(first - recorded.begin());
  constexpr double toleranceMs = 50, reach = 2 * toleranceMs * samplesPerMs;
  for (const auto& [appId, cardMs] : tones.cards) {
    const double expected = firstAt + (cardMs - tones.cards.first().second) * samplesPerMs;
    const auto at = static_cast<double>(takeAway(recorded, appId, expected - reach, expected + reach));
    const double lateMs = (at - expected) / samplesPerMs;
    if (std::abs(lateMs) > toleranceMs)
      return u"%1 sounded %2 ms after its card, counted from the first."_s.arg(appId).arg(lateMs);
  }
  // Once every tone is taken away whole, nothing may be left: no gap, no cut, no repeat.
  const auto rest = std::find_if(recorded.begin(), recorded.end(), isSound);
  if (rest != recorded.end())
    return u"Something else sounded %1 ms after the first tone."_s.arg(
        (static_cast<double>(rest - recorded.begin()) - firstAt) / samplesPerMs);
  return {};
}

TEST_F(SoundServerTest, everyToneSoundsWholeWithItsCard) {
  // A machine that is busy elsewhere for long enough leaves a gap in anything that plays.
  QString fault;
  for (int attempt = 0; attempt < 3; ++attempt) {
    fault = faultOfAPlayedSequence();
    if (fault.isEmpty()) return;
    std::cerr << "Attempt " << attempt + 1 << ": " << fault.toStdString() << '\n';
  }
  FAIL() << fault.toStdString();
}

TEST_F(SoundServerTest, soundComesBackWithAServerThatWasKilled) {
  NotificationSoundPlayer player(makeAudioOutput);
  player.play(u"tiktok"_s);
  QTest::qWait(50);
  kill();
  for (int i = 0; i < 5; ++i) {
    player.play(u"messages"_s);
    QTest::qWait(30);
  }
  ASSERT_TRUE(start());
  Recording recording;
  player.prepare();
  QTest::qWait(200);
  player.play(u"cashapp"_s);
  std::vector<int> recorded;
  std::ptrdiff_t first = 0;
  ASSERT_TRUE(QTest::qWaitFor(
      [&] {
        recorded = recording.samples();
        first = std::find_if(recorded.begin(), recorded.end(), isSound) - recorded.begin();
        return std::ssize(recorded) - first > std::ssize(NotificationSounds::rendered(u"cashapp"_s));
      },
      20000));
  takeAway(recorded, u"cashapp"_s, static_cast<double>(first) - 500, static_cast<double>(first) + 500);
  EXPECT_TRUE(std::none_of(recorded.begin(), recorded.end(), isSound)) << "tones of the dead time sound late";
}

TEST(SoundServer, withoutOnePlayingIsSilentAndEndsAtOnce) {
  qputenv("PULSE_SERVER", "unix:/nonexistent/native");
  NotificationSoundPlayer player(makeAudioOutput);
  for (int i = 0; i < 20; ++i) player.play(u"tiktok"_s);
  QTest::qWait(20);
  player.play(u"tiktok"_s);
}

}  // namespace
}  // namespace brisklet
