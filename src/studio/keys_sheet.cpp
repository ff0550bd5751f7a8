#include "studio/keys_sheet.h"

using namespace Qt::StringLiterals;

namespace brisklet {

Alert::Content keysSheet() {
  return {
      .title = u"Keys, and what is good to know"_s,
      .message = {},
      .confirm = {},
      .cancel = u"Done"_s,
      .lines = {
          {u"Ctrl+Enter"_s, u"Add a ping, from anywhere. Enter does it in Sender and Text."_s},
          {u"Ctrl+D"_s, u"Duplicate the selected ping."_s},
          {u"Ctrl+C, X, V"_s, u"Copy, cut, paste the selected ping, also into another window."_s},
          {u"Delete"_s, u"Remove it."_s},
          {u"Ctrl+Z, Ctrl+Shift+Z"_s, u"Undo and redo, also after New."_s},
          {u"Alt+Left, Alt+Right"_s, u"Land 0.1 s earlier or later. With Shift, 0.01 s."_s},
          {u"Space, Ctrl+P"_s, u"Play. Space does it while nothing has the focus."_s},
          {u"Ctrl+E"_s, u"Export."_s},
          {u"Tab, arrows, Space"_s, u"Go to the next control, walk choices and rows, press."_s},
          {u"Escape"_s, u"Let go of the selected ping, then leave the field."_s},
          {u"Ctrl+N, Ctrl+W, Ctrl+Q"_s, u"Open a window, close it, quit."_s},
          {{}, {}},
          {{}, u"Pick the app and the type before you write: each pick fills Text anew."_s},
          {{}, u"While a ping is selected, the choices and fields edit it. Escape lets go of it."_s},
          {{}, u"Times count from the start. The last row stands on top of the stack, whenever it lands."_s},
          {{}, u"Drop a photo on the window, or paste one, and it becomes the wallpaper."_s},
          {{}, u"A sequence lasts as long as its window: export what is to stay."_s},
      }};
}

}  // namespace brisklet
