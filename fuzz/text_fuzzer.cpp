#include "base/graphemes.h"
#include "model/color.h"
#include "model/text.h"
#include "studio/editor/delay_text.h"
#include "studio/editor/slug.h"

#include <QString>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace brisklet;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

bool isShare(double value) {
  return value >= 0 && value <= 1;
}

}  // namespace

/// Any text as a colour, as a delay, as a title and as a label.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  // Unpaired surrogates come as they are, as from a keyboard.
  const QString text =
      size > 0 && data[0] == 0xff
          ? QString(reinterpret_cast<const QChar*>(data + 2 - size % 2),
                    size < 2 ? 0 : static_cast<qsizetype>((size - 2 + size % 2) / 2))
          : QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));

  const Color color = Color::fromHex(text);
  require(isShare(color.red) && isShare(color.green) && isShare(color.blue) && color.opacity == 1);

  if (const std::optional<double> ms = readSeconds(text)) {
    require(std::isfinite(*ms) && *ms >= 0 && !std::signbit(*ms));
    require(!delayLabel(*ms).isEmpty());
    const std::optional<double> again = readSeconds(secondsText(*ms));
    // Six digits remain; the greatest numbers round up beyond what can be read.
    if (again)
      require(std::abs(*again - *ms) <= *ms * 1e-5);
    else
      require(*ms > 1e300);
  }

  const QString first = firstGrapheme(text);
  require(text.startsWith(first) && first.isEmpty() == text.isEmpty());
  require(sameText(text, text) && (text.isEmpty() || !sameText(text, QString())));
  for (const QChar unit : slug(text)) require(unit.unicode() < 0x80 && !unit.isUpper());
  return 0;
}
