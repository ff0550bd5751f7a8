#pragma once

namespace brisklet {

enum class Remarks {
  /// Only what ends the program, unless QT_LOGGING_RULES asks for more.
  Silent,
  /// Our own stages and times, and the warnings of libraries.
  Told
};

/// The switches of libraries and of the system that hold for the whole process; called once, at its start.
void setUpLibraries(Remarks remarks);

}  // namespace brisklet
