#include "desktop/window_manager.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <cstdlib>
#include <memory>

namespace brisklet {

bool lacksWindowManager() {
  // Not every platform plugin that knows of X11 has a connection to it.
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  xcb_connection_t* connection = x11 ? x11->connection() : nullptr;
  if (!connection) return false;
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  const std::unique_ptr<xcb_get_window_attributes_reply_t, decltype(&std::free)> reply(
      xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, root), nullptr),
      &std::free);
  // This is what makes a client of the display its window manager; there can be only one.
  return reply && !(reply->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
}

}  // namespace brisklet
