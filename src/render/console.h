#pragma once

#include <QString>

namespace brisklet {

enum ExitStatus { Done = 0, Failed = 1, WrongUse = 2, Interrupted = 130 };

/// What the program says on standard error: messages, and on a terminal a line of progress.
class Console {
 public:
  explicit Console(bool showsProgress) : showsProgress_(showsProgress) {}

  /// One line, whatever a file name or a scene may hold.
  void message(const QString& text);

  /// Takes the place of the progress told before.
  void progress(const QString& text);
  void clearProgress();

 private:
  bool showsProgress_;
  QString shown_;
};

/// Writes to standard error as it is.
void say(const QString& text);

/// Some libraries remark on photos there, beside the error that they return, and ask nobody. From here on
/// only `Console` and `say` reach it.
void silenceLibraries();

}  // namespace brisklet
