#pragma once

#include <QString>
#include <optional>

namespace brisklet {

/// One notification of a sequence, identified by `id`.
struct Ping {
  QString id;
  /// The id of a catalogue app, or "custom" for an app that the user named. Chooses the tone.
  QString appId;
  QString appLabel;
  /// One character, drawn on the app's tile where there is no picture of the app.
  QString icon;
  /// "#" and six hexadecimal digits, read with `Color::fromHex`.
  QString color;
  /// The card's first line: the sender.
  QString title;
  QString message;
  /// The moment at which the ping lands, in milliseconds from the start of the sequence.
  double delayMs = 0;
  /// Stored only: tones do not depend on it.
  std::optional<QString> sound;

  /// How long ago the ping landed, as its card says it: "now", or whole minutes and "m ago". It depends on
  /// `delayMs` alone, not on the time of playing.
  [[nodiscard]] QString lockTimeLabel() const;

  /// Texts are equal when they are canonically equivalent.
  friend bool operator==(const Ping& a, const Ping& b);
};

}  // namespace brisklet
