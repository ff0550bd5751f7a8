#include "platform/session_bus.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <QByteArray>
#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include "platform/unique_fd.h"

namespace brisklet {

namespace {

constexpr int patienceMs = 3000;

/// The bus's socket as an address; of length 0 if it has none.
socklen_t findSocket(sockaddr_un& address) {
  QByteArray bus = qgetenv("DBUS_SESSION_BUS_ADDRESS");
  if (bus.isEmpty()) bus = "unix:path=" + qgetenv("XDG_RUNTIME_DIR") + "/bus";
  for (const char* kind : {"unix:path=", "unix:abstract="}) {
    if (!bus.startsWith(kind)) continue;
    const QByteArray rest = bus.sliced(static_cast<qsizetype>(std::strlen(kind)));
    const auto end = std::find_if(rest.begin(), rest.end(), [](char c) { return c == ',' || c == ';'; });
    QByteArray name = QByteArray::fromPercentEncoding(rest.first(end - rest.begin()));
    if (kind[5] == 'a') name.prepend('\0');
    if (name.isEmpty() || name.size() >= static_cast<qsizetype>(sizeof address.sun_path)) return 0;
    address.sun_family = AF_UNIX;
    std::copy(name.begin(), name.end(), address.sun_path);
    return static_cast<socklen_t>(offsetof(sockaddr_un, sun_path)) + static_cast<socklen_t>(name.size());
  }
  return 0;
}

/// Asks which ways of logging in there are, which any bus answers at once.
bool isSilent(const sockaddr_un& address, socklen_t length) {
  const UniqueFd bus(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!bus) return false;
  if (::connect(bus.get(), reinterpret_cast<const sockaddr*>(&address), length) != 0) return errno == EAGAIN;
  constexpr char question[] = "\0AUTH\r\n";
  if (::send(bus.get(), question, sizeof question - 1, MSG_NOSIGNAL) < 0) return false;
  pollfd answer{bus.get(), POLLIN, 0};
  return ::poll(&answer, 1, patienceMs) == 0;
}

}  // namespace

void leaveSilentSessionBus() {
  sockaddr_un address{};
  const socklen_t length = findSocket(address);
  if (length > 0 && isSilent(address, length)) qputenv("DBUS_SESSION_BUS_ADDRESS", "none:");
}

}  // namespace brisklet
