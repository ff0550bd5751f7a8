#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QtEndian>

#include "lockscreen/lock_screen_view.h"
#include "model/document_json.h"
#include "playback/sequence_player.h"
#include "sound/notification_sounds.h"
#include "sound/tone_player.h"
#include "studio/studio_view.h"
#include "support/printing.h"

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

struct CountedTones : TonePlayer {
  void prepare() override {}
  void play(const QString&) override { ++played; }
  int played = 0;
};

struct LoadedStudio : testing::Test {
  StudioView::Services services() {
    StudioView::Services services;
    services.tones = &tones;
    services.clock = [this] { return nowMs; };
    return services;
  }
  void tick(double ms) {
    nowMs += ms;
    view.player()->tick();
    QCoreApplication::sendPostedEvents();
  }

  double nowMs = 0;
  CountedTones tones;
  StudioView view{services()};
};

QImage frameAt(const SequenceDocument& document, double timeMs) {
  SequencePlayer player(document);
  player.setElapsedMs(timeMs);
  LockScreenCache cache;
  return captureFrame({document, player, CaptureMode::Capture}, cache);
}

TEST(Load, tenThousandPingsAreReadShownAndHeard) {
  SequenceDocument document = SequenceDocument::blank();
  document.maxVisible = std::numeric_limits<qint64>::max();
  for (int i = 0; i < 10000; ++i) {
    Ping ping;
    ping.id = QString::number(i);
    ping.appId = i % 2 ? u"messages"_s : u"snapchat"_s;
    ping.title = u"Ping %1"_s.arg(i);
    ping.color = u"#223344"_s;
    ping.delayMs = i * 3;
    document.notifications.append(ping);
  }
  const SequenceDocument read = decodeDocument(encodeDocument(document));
  EXPECT_TRUE(read == document);

  // Only the newest fit the screen.
  SequenceDocument newest = document;
  newest.notifications = document.notifications.last(40);
  EXPECT_EQ(frameAt(read, SequencePlayer::finishedMs), frameAt(newest, SequencePlayer::finishedMs));
  EXPECT_EQ(NotificationSounds::stereoPCM(read).size(), 4 * NotificationSounds::soundtrackFrames(document));
}

TEST(Load, twoHundredPingsAtOnceAddUpAndClip) {
  SequenceDocument document = SequenceDocument::blank();
  for (int i = 0; i < 200; ++i) {
    Ping ping;
    ping.appId = u"snapchat"_s;
    ping.delayMs = 500;
    document.notifications.append(ping);
  }
  const QByteArray track = NotificationSounds::stereoPCM(document);
  const std::vector<float> tone = NotificationSounds::rendered(u"snapchat"_s);
  for (std::size_t i = 0; i < tone.size(); ++i) {
    float sum = 0;
    for (int each = 0; each < 200; ++each) sum += tone[i];
    const qsizetype at = (22050 + static_cast<qsizetype>(i)) * 4;
    ASSERT_EQ(qFromLittleEndian<qint16>(track.constData() + at), NotificationSounds::pcm16(sum)) << i;
    ASSERT_EQ(qFromLittleEndian<qint16>(track.constData() + at + 2), NotificationSounds::pcm16(sum)) << i;
  }
}

TEST(Load, textsOfAMegabyteAreDrawnLikeTheirBeginning) {
  const QStringList pieces{u"word "_s,
                           u"x"_s,
                           u" "_s,
                           u"\n"_s,
                           u"\u0301"_s,
                           u"👩‍👩‍👧‍👦"_s,
                           u"مرحبا "_s,
                           u"क्षि"_s,
                           u"日本の"_s,
                           u"\u202e\u2066"_s,
                           u"a\u200d\ufe0f"_s};
  for (const QString& piece : pieces) {
    SCOPED_TRACE(piece.toStdString());
    const auto documentOf = [&piece](qsizetype length) {
      const QString text = u"a"_s + piece.repeated(length / piece.size());
      SequenceDocument document = SequenceDocument::blank();
      document.dateLabel = u"Mon Nov 16"_s;
      for (const QString& appId : {u"custom"_s, u"another"_s, text}) {
        Ping ping;
        ping.id = text;
        ping.appId = appId;
        ping.appLabel = ping.icon = ping.color = ping.title = ping.message = text;
        document.notifications.append(ping);
      }
      return document;
    };
    const SequenceDocument document = documentOf(1 << 20);
    EXPECT_TRUE(decodeDocument(encodeDocument(document)) == document);
    EXPECT_EQ(frameAt(document, SequencePlayer::finishedMs),
              frameAt(documentOf(1 << 16), SequencePlayer::finishedMs));
    SequenceDocument labels = document;
    labels.notifications.clear();
    labels.dateLabel = labels.timeLabel = document.notifications[0].title;
    EXPECT_EQ(frameAt(labels, 0).size(), QSize(1170, 2532));
  }
}

TEST_F(LoadedStudio, tenThousandPingsAreEditedAndPlayed) {
  constexpr int count = 10000;
  for (int i = 0; i < count; ++i) view.addPing();
  ASSERT_EQ(view.document().notifications.size(), count);
  const Ping middle = view.document().notifications[count / 2];
  view.selectPing(middle);
  view.setSenderText(u"Dad"_s);
  view.setDelayText(u"1"_s);
  EXPECT_EQ(view.document().notifications[count / 2].title, u"Dad");
  view.removePing(view.document().notifications.last().id);

  view.play();
  // Every card comes into view on its own, the one that was moved among the first.
  while (view.isPlaying()) tick(350);
  EXPECT_EQ(tones.played, count - 1);
}

TEST_F(LoadedStudio, aThousandPlaysSoundAThousandTimes) {
  for (int i = 0; i < 3; ++i) view.addPing();
  for (int play = 0; play < 1000; ++play) {
    view.play();
    while (view.isPlaying()) tick(200);
  }
  EXPECT_EQ(tones.played, 3000);
}

}  // namespace
}  // namespace brisklet
