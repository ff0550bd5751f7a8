#include "base/error.h"
#include "model/document_json.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

using namespace brisklet;

/// Reads any bytes as a document. One that is read can be written, unless a landing time has no number in
/// JSON, and comes back equal.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  SequenceDocument document;
  try {
    document = decodeDocument(
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
  } catch (const Error& error) {
    if (error.text().isEmpty() || error.text().contains(u'\n')) std::abort();
    return 0;
  }
  (void)document.visiblePings(document.durationMs());
  (void)document.visiblePings(std::numeric_limits<double>::infinity());
  for (const Ping& ping : document.notifications) {
    if (ping.lockTimeLabel().isEmpty()) std::abort();
  }
  if (!(decodeDocument(encodeDocument(document)) == document)) std::abort();
  return 0;
}
