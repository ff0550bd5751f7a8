#include "playback/sequence_player.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <cmath>
#include <memory>

namespace brisklet {
namespace {

SequenceDocument documentWithPingAt(double delayMs) {
  SequenceDocument document = SequenceDocument::blank();
  Ping ping;
  ping.id = "a";
  ping.delayMs = delayMs;
  document.notifications.append(ping);
  return document;
}

/// A player whose time is set by hand.
struct PlayerTest : testing::Test {
  double nowMs = 5000;
  SequencePlayer player{documentWithPingAt(700), [this] { return nowMs; }};

  void tickAt(double sinceStartMs) {
    nowMs = 5000 + sinceStartMs;
    player.tick();
  }
};

TEST_F(PlayerTest, aNewPlayerShowsTheFinishedSequence) {
  EXPECT_FALSE(player.isPlaying());
  EXPECT_EQ(player.elapsedMs(), SequencePlayer::finishedMs);
  tickAt(100);
  EXPECT_EQ(player.elapsedMs(), SequencePlayer::finishedMs);
}

TEST_F(PlayerTest, aRunMeasuresTheClockAndEndsFinished) {
  player.play();
  EXPECT_TRUE(player.isPlaying());
  EXPECT_EQ(player.elapsedMs(), 0);
  tickAt(1234.5);
  EXPECT_EQ(player.elapsedMs(), 1234.5);
  tickAt(2499.9);
  EXPECT_TRUE(player.isPlaying());

  QList<double> seen;
  QObject::connect(&player, &SequencePlayer::elapsedMsChanged, [&] { seen.append(player.elapsedMs()); });
  tickAt(2500);
  EXPECT_FALSE(player.isPlaying());
  EXPECT_EQ(seen, (QList<double>{2500, SequencePlayer::finishedMs}));
}

TEST_F(PlayerTest, stoppingKeepsTheMomentAndLaterTicksChangeNothing) {
  player.play();
  tickAt(1234);
  player.stop();
  tickAt(1300);
  EXPECT_EQ(player.elapsedMs(), 1234);
  EXPECT_FALSE(player.isPlaying());
}

TEST_F(PlayerTest, playingAgainStartsFromTheBeginning) {
  player.play();
  tickAt(1000);
  player.play();
  EXPECT_EQ(player.elapsedMs(), 0);
  tickAt(1500);
  EXPECT_EQ(player.elapsedMs(), 500);
}

TEST_F(PlayerTest, aDocumentHandedOverDuringARunDoesNotMoveItsEnd) {
  player.play();
  tickAt(100);
  player.setDocument(documentWithPingAt(60000));
  EXPECT_TRUE(player.isPlaying());
  tickAt(2500);
  EXPECT_FALSE(player.isPlaying());
}

TEST_F(PlayerTest, onlyChangedValuesAreAnnounced) {
  QSignalSpy elapsed(&player, &SequencePlayer::elapsedMsChanged);
  QSignalSpy documents(&player, &SequencePlayer::documentChanged);
  QSignalSpy playing(&player, &SequencePlayer::isPlayingChanged);
  player.setElapsedMs(SequencePlayer::finishedMs);
  player.setDocument(documentWithPingAt(700));
  player.stop();
  EXPECT_EQ(elapsed.size() + documents.size() + playing.size(), 0);

  SequenceDocument looping = documentWithPingAt(700);
  looping.loop = true;
  player.setDocument(looping);
  player.setElapsedMs(33);
  EXPECT_EQ(elapsed.size(), 1);
  EXPECT_EQ(documents.size(), 1);
}

TEST_F(PlayerTest, anObserverMayStopTheRunOrStartAnotherAtItsLastTick) {
  player.play();
  const auto connection = QObject::connect(&player, &SequencePlayer::elapsedMsChanged, [this] {
    if (player.elapsedMs() == 2500) player.play();
  });
  tickAt(2500);
  EXPECT_TRUE(player.isPlaying());
  EXPECT_EQ(player.elapsedMs(), 0);
  QObject::disconnect(connection);

  QObject::connect(&player, &SequencePlayer::elapsedMsChanged, [this] { player.stop(); });
  tickAt(2600);
  EXPECT_EQ(player.elapsedMs(), 100);
}

TEST(SequencePlayer, ticksByItselfOnTheEventLoop) {
  // Every look at the clock is 100 ms after the last, so the run needs few real ticks.
  double nowMs = 0;
  SequencePlayer player(SequenceDocument::blank(), [&nowMs] { return nowMs += 100; });
  QSignalSpy playing(&player, &SequencePlayer::isPlayingChanged);
  player.play();
  ASSERT_TRUE(playing.wait(5000));
  EXPECT_FALSE(player.isPlaying());
  EXPECT_EQ(player.elapsedMs(), SequencePlayer::finishedMs);
}

TEST(SequencePlayer, discardedDuringARunItTicksNoMore) {
  auto player = std::make_unique<SequencePlayer>(SequenceDocument::blank());
  bool ticked = false;
  player->play();
  QObject::connect(player.get(), &SequencePlayer::elapsedMsChanged, [&ticked] { ticked = true; });
  player.reset();
  QTest::qWait(50);
  EXPECT_FALSE(ticked);
}

}  // namespace
}  // namespace brisklet
