#pragma once

#include "render/console.h"
#include "render/render_options.h"

#include <functional>
#include <memory>

namespace brisklet {

/// Makes the movies of `options.jobs`, several at once, in worker processes: one that crashes takes only the
/// movie in its hands with it. Messages come in the order of the scenes. `setUpWorker` runs once in each
/// worker, and what it returns lives as long as the worker. The caller must have no other thread.
[[nodiscard]] ExitStatus runBatch(const RenderOptions& options, Console& console,
                                  const std::function<std::shared_ptr<void>()>& setUpWorker);

}  // namespace brisklet
