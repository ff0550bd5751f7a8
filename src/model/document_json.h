#pragma once

#include "model/sequence_document.h"

#include <QByteArray>

namespace brisklet {

/// The most bytes that a document may have, and the most levels of arrays and objects in it.
inline constexpr qsizetype maxDocumentBytes = qsizetype{64} << 20;
inline constexpr int maxDocumentDepth = 64;
/// The most pings that a document may have.
inline constexpr qsizetype maxDocumentPings = 100000;

/// The JSON text of a document: UTF-8, indented by two spaces, keys in the order of the fields. Throws
/// `Error`, naming the ping, if a landing time is not finite: JSON cannot say it.
[[nodiscard]] QByteArray encodeDocument(const SequenceDocument& document);

/// The document that a JSON text says. Missing and null keys take defaults, unknown keys are ignored. Throws
/// `Error` for text that is not JSON (with line and column), for a value of the wrong type (with its path, as
/// in `notifications[2].color must be a string`) and for text beyond the limits above.
[[nodiscard]] SequenceDocument decodeDocument(const QByteArray& json);

}  // namespace brisklet
