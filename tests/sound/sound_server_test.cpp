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
class SoundServer {
 public:
  SoundServer() {
    qputenv("PULSE_SERVER", "unix:" + socket().toUtf8());
    qputenv("PULSE_COOKIE", folder_.filePath(u"cookie"_s).toUtf8());
  }
  ~SoundServer() { kill(); }

  [[nodiscard]] static bool isInstalled() {
    return !QStandardPaths::findExecutable(u"pulseaudio"_s).isEmpty() &&
           !QStandardPaths::findExecutable(u"parec"_s).isEmpty();
  }

  bool start() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* folder : {"HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH"})
      environment.insert(QString::fromLatin1(folder), folder_.path());
    daemon_.setProcessEnvironment(environment);
    daemon_.setProcessChannelMode(QProcess::MergedChannels);
    daemon_.start(u"pulseaudio"_s,
                  {u"-n"_s, u"--daemonize=no"_s, u"--use-pid-file=no"_s, u"--exit-idle-time=-1"_s, u"-L"_s,
                   u"module-null-sink sink_name=out rate=44100 channels=2 format=s16le"_s, u"-L"_s,
                   u"module-native-protocol-unix auth-anonymous=1 socket="_s + socket()});
    return daemon_.waitForStarted() && QTest::qWaitFor([] { return answers(); }, 20000);
  }

  void kill() {
    daemon_.kill();
    daemon_.waitForFinished();
    QFile::remove(socket());
  }

 private:
  [[nodiscard]] QString socket() const { return folder_.filePath(u"native"_s); }
  static bool answers() { return QProcess::execute(u"pactl"_s, {u"list"_s, u"short"_s, u"sinks"_s}) == 0; }

  QTemporaryDir folder_;
  QProcess daemon_;
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

std::vector<int> toneSamples(const QString& appId) {
  std::vector<int> samples;
  for (const float sample : NotificationSounds::rendered(appId))
    samples.push_back(NotificationSounds::pcm16(sample));
  return samples;
}

/// Where between two samples of the recording the tone fits best.
std::size_t bestPlace(const std::vector<int>& recorded, const std::vector<int>& tone, std::size_t from,
                      std::size_t to) {
  std::size_t best = from;
  double bestFit = -1;
  for (std::size_t at = from; at < std::min(to, recorded.size()); ++at) {
    double fit = 0;
    for (std::size_t i = 0; i < tone.size() && at + i < recorded.size(); ++i)
      fit += static_cast<double>(tone[i]) * recorded[at + i];
    if (fit > bestFit) {
      bestFit = fit;
      best = at;
    }
  }
  return best;
}

void takeAway(std::vector<int>& recorded, const std::vector<int>& tone, std::size_t at) {
  for (std::size_t i = 0; i < tone.size() && at + i < recorded.size(); ++i) recorded[at + i] -= tone[i];
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

struct SoundServerTest : testing::Test {
  void SetUp() override {
    if (!SoundServer::isInstalled()) GTEST_SKIP() << "pulseaudio and pulseaudio-utils are not installed";
    ASSERT_TRUE(server.start());
  }
  SoundServer server;
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
  const auto firstAt = static_cast<std::size_t>(first - recorded.begin());
  const double firstCardMs = tones.cards.first().second;
  constexpr double toleranceMs = 50;
  for (const auto& [appId, cardMs] : tones.cards) {
    const std::vector<int> tone = toneSamples(appId);
    const double expected = static_cast<double>(firstAt) + (cardMs - firstCardMs) * samplesPerMs;
    const std::size_t at = bestPlace(
        recorded, tone, static_cast<std::size_t>(std::max(0.0, expected - 2 * toleranceMs * samplesPerMs)),
        static_cast<std::size_t>(expected + 2 * toleranceMs * samplesPerMs));
    const double lateMs = (static_cast<double>(at) - expected) / samplesPerMs;
    if (std::abs(lateMs) > toleranceMs)
      return u"%1 sounded %2 ms after its card, counted from the first."_s.arg(appId).arg(lateMs);
    takeAway(recorded, tone, at);
  }
  // Once every tone is taken away whole, nothing may be left: no gap, no cut, no repeat.
  const auto rest = std::find_if(recorded.begin(), recorded.end(), isSound);
  if (rest != recorded.end())
    return u"Something else sounded %1 ms after the first tone."_s.arg(
        (static_cast<double>(rest - recorded.begin()) - static_cast<double>(firstAt)) / samplesPerMs);
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
  server.kill();
  for (int i = 0; i < 5; ++i) {
    player.play(u"messages"_s);
    QTest::qWait(30);
  }
  ASSERT_TRUE(server.start());
  Recording recording;
  player.prepare();
  QTest::qWait(200);
  player.play(u"cashapp"_s);
  const std::vector<int> tone = toneSamples(u"cashapp"_s);
  std::vector<int> recorded;
  const auto hasSounded = [&] {
    recorded = recording.samples();
    const auto first = std::find_if(recorded.begin(), recorded.end(), isSound);
    return recorded.end() - first > std::ssize(tone);
  };
  ASSERT_TRUE(QTest::qWaitFor(hasSounded, 20000));
  const auto first = std::find_if(recorded.begin(), recorded.end(), isSound) - recorded.begin();
  const std::size_t from = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, first - 500));
  takeAway(recorded, tone, bestPlace(recorded, tone, from, from + 1000));
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
