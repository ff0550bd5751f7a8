#pragma once

#include <QCoroTask>
#include <functional>
#include <stop_token>

#include "render/render_options.h"

namespace brisklet {

/// Frames done, and frames in all.
using RenderProgress = std::function<void(qint64 framesDone, qint64 frames)>;

/// Makes what the job asks for: the still, then the soundtrack, then the movie. Throws `Error`, which names
/// the file that it is about, and `ExportCancelled` soon after a stop is requested.
[[nodiscard]] QCoro::Task<> runRenderJob(RenderJob job, RenderProgress progress, std::stop_token stop);

}  // namespace brisklet
