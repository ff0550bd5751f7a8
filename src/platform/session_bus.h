#pragma once

namespace brisklet {

/// Makes this program do without a session bus that takes connections and never answers: Qt would wait for
/// it, and no window would open. To be called before Qt meets the bus.
void leaveSilentSessionBus();

}  // namespace brisklet
