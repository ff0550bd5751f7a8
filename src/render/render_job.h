#pragma once

#include "lockscreen/lock_screen_view.h"
#include "render/render_options.h"

#include <sys/types.h>

#include <QString>
#include <functional>
#include <set>
#include <stop_token>
#include <utility>

namespace brisklet {

/// Frames done, and frames in all.
using RenderProgress = std::function<void(qint64 framesDone, qint64 frames)>;

/// Photos of scenes, which no movie may replace, by device and inode.
using Photos = std::set<std::pair<dev_t, ino_t>>;

/// What the scenes of a run are like, as far as they can be read now and again later.
struct SceneSurvey {
  Photos photos;
  /// Of each job. Jobs of one wallpaper have much to draw in common.
  QStringList wallpapers;
};
[[nodiscard]] SceneSurvey surveyOf(const QList<RenderJob>& jobs);

enum class JobOutcome { Made, Kept, Failed, Interrupted };

struct JobResult {
  JobOutcome outcome;
  /// What went wrong, as a sentence that names the file.
  QString message;
};

/// Makes what the job asks for: the still, then the soundtrack, then the movie, or keeps the movie that is
/// there. Overwrites neither its inputs nor any of `photos`. What it has in common with the job before comes
/// from `cache`. Ends soon after a stop is requested. Runs an
/// event loop.
[[nodiscard]] JobResult attempt(const RenderJob& job, const Photos& photos, const RenderProgress& progress,
                                std::stop_token stop, LockScreenCache& cache);

}  // namespace brisklet
