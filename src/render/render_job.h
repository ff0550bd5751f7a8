#pragma once

#include "render/render_options.h"

#include <QCoroTask>
#include <functional>
#include <stop_token>

namespace brisklet {

/// Frames done, and frames in all.
using RenderProgress = std::function<void(qint64 framesDone, qint64 frames)>;

/// The photos of the jobs' scenes, as far as these can be read now and again later.
[[nodiscard]] QStringList photosOf(const QList<RenderJob>& jobs);

/// Makes what the job asks for: the still, then the soundtrack, then the movie. Overwrites neither its inputs
/// nor any of `photos`. Throws `Error`, which names the file that it is about, and `ExportCancelled` soon
/// after a stop is requested.
[[nodiscard]] QCoro::Task<> runRenderJob(RenderJob job, QStringList photos, RenderProgress progress,
                                         std::stop_token stop);

}  // namespace brisklet
