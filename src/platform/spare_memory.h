#pragma once

namespace brisklet {

/// Throws `std::bad_alloc` unless there is memory left for what libraries take in small pieces: to find
/// fonts, to read them, to lay out text. Some of them do not look whether they got it, and fall.
void requireSpareMemory();

}  // namespace brisklet
