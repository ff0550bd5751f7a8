#include "playback/sequence_player.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

namespace brisklet {
namespace {

SequenceDocument documentWithPingAt(double delayMs) {
  SequenceDocument document = SequenceDocument::blank();
  document.notifications.emplaceBack();
  document.notifications.last().delayMs = delayMs;
  return document;
}

/// Whether a player plays, and its elapsed time.
using State = std::pair<bool, double>;
constexpr State finished{false, SequencePlayer::finishedMs};

/// A player whose time is set by hand; its run takes 2500 ms.
struct PlayerTest : testing::Test {
  double nowMs = 5000;
  SequencePlayer player{documentWithPingAt(700), [this] { return nowMs; }};

  [[nodiscard]] State state() const { return {player.isPlaying(), player.elapsedMs()}; }
  State stateAfter(double ms) {
    nowMs += ms;
    player.tick();
    return state();
  }
};

TEST_F(PlayerTest, aRunMeasuresTheClockAndEndsFinished) {
  EXPECT_EQ(stateAfter(100), finished) << "as long as nothing was played";
  player.play();
  EXPECT_EQ(state(), State(true, 0));
  EXPECT_EQ(stateAfter(1234.5), State(true, 1234.5));
  player.setDocument(documentWithPingAt(60000));  // moves no end
  EXPECT_EQ(stateAfter(1265), State(true, 2499.5));

  QList<double> seen;
  QObject::connect(&player, &SequencePlayer::elapsedMsChanged, [&] { seen.append(player.elapsedMs()); });
  EXPECT_EQ(stateAfter(0.5), finished);
  EXPECT_EQ(seen, (QList<double>{2500, SequencePlayer::finishedMs}));
}

TEST_F(PlayerTest, stoppingKeepsTheMomentAndPlayingStartsFromTheBeginning) {
  player.play();
  stateAfter(1000);
  player.play();
  EXPECT_EQ(state(), State(true, 0));
  EXPECT_EQ(stateAfter(500), State(true, 500));
  player.stop();
  EXPECT_EQ(stateAfter(100), State(false, 500));
}

TEST_F(PlayerTest, onlyChangedValuesAreAnnounced) {
  QSignalSpy elapsed(&player, &SequencePlayer::elapsedMsChanged);
  QSignalSpy documents(&player, &SequencePlayer::documentChanged);
  QSignalSpy playing(&player, &SequencePlayer::isPlayingChanged);
  player.setElapsedMs(SequencePlayer::finishedMs);
  player.setDocument(documentWithPingAt(700));
  player.stop();
  EXPECT_EQ(elapsed.size() + documents.size() + playing.size(), 0);

  player.setDocument(documentWithPingAt(701));
  player.setElapsedMs(33);
  EXPECT_EQ(elapsed.size(), 1);
  EXPECT_EQ(documents.size(), 1);
}

TEST_F(PlayerTest, anObserverMayStopTheRunOrStartAnotherAtItsLastTick) {
  player.play();
  const auto connection = QObject::connect(&player, &SequencePlayer::elapsedMsChanged, [this] {
    if (player.elapsedMs() == 2500) player.play();
  });
  EXPECT_EQ(stateAfter(2500), State(true, 0));
  QObject::disconnect(connection);

  QObject::connect(&player, &SequencePlayer::elapsedMsChanged, [this] { player.stop(); });
  EXPECT_EQ(stateAfter(2500), State(false, 2500));
}

TEST(SequencePlayer, ticksByItselfOnTheEventLoop) {
  // Every look at the clock is 100 ms after the last, so the run needs few real ticks.
  double nowMs = 0;
  SequencePlayer player(SequenceDocument::blank(), [&nowMs] { return nowMs += 100; });
  QSignalSpy playing(&player, &SequencePlayer::isPlayingChanged);
  player.play();
  ASSERT_TRUE(playing.wait(5000));
  EXPECT_EQ(State(player.isPlaying(), player.elapsedMs()), finished);
}

}  // namespace
}  // namespace brisklet
