#pragma once

namespace brisklet {

/// Starts the threads on which Qt scales and converts pictures; they stay until the program ends. Qt would
/// start them on demand, and where the system allows no more threads it waits for their work for ever.
/// Returns whether all are there. If not, the program has to leave by `_Exit`: Qt waits for them even at the
/// end.
[[nodiscard]] bool startPictureThreads();

}  // namespace brisklet
