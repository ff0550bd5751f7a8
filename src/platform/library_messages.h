#pragma once

namespace brisklet {

/// Keeps from the console what Qt says when it looks for a font for a script that our first ones lack. Once
/// is enough.
void dropFontSearchMessages();

/// While one of these lives, warnings of Qt and its plug-ins on this thread are not written to the console.
class QuietLibraries {
 public:
  QuietLibraries();
  ~QuietLibraries();
  QuietLibraries(const QuietLibraries&) = delete;
  QuietLibraries& operator=(const QuietLibraries&) = delete;
};

}  // namespace brisklet
