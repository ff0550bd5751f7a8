#pragma once

#include "base/error.h"
#include "lockscreen/lock_screen_view.h"
#include "model/movie_style.h"
#include "model/sequence_document.h"
#include "movie/movie_writer.h"

#include <QCoroTask>
#include <QString>
#include <functional>
#include <memory>
#include <stop_token>

namespace brisklet {

/// The movie could not be written, and nothing more is known.
class ExportError : public Error {
 public:
  ExportError();
};

namespace VideoExporter {

inline constexpr int framesPerSecond = 30;
inline constexpr double longestMs = 24.0 * 60 * 60 * 1000;

/// Frames appended so far, and frames in all. Called on the exporting thread.
using Progress = std::function<void(qint64 framesDone, qint64 frames)>;

/// The number of frames of a document's movie; frame i shows the moment i / 30 s. At least one.
[[nodiscard]] qint64 frameCount(const SequenceDocument& document);

/// Throws `Error` for a document that is longer than `longestMs` or never ends.
void requireExportable(const SequenceDocument& document);

/// Writes the document's movie to `path`. A file that is there goes when this begins, and the movie is there
/// when it is complete. Runs on the calling thread, which needs an event loop, and suspends whenever it
/// waits, so that the thread's other work goes on; encoding is done elsewhere. Works on its own copy of the
/// document. `cache` saves what a movie has in common with the one before; it
/// must live as long as the task. Throws `Error`: an `ExportCancelled` once `stop` is requested, else what
/// went wrong.
[[nodiscard]] QCoro::Task<> exportMovie(SequenceDocument document, MovieStyle style, QString path,
                                        Progress progress = {}, std::stop_token stop = {},
                                        LockScreenCache* cache = nullptr);

}  // namespace VideoExporter

}  // namespace brisklet
