#include "platform/picture_threads.h"

#include <QSemaphore>
#include <QThreadPool>
#include <algorithm>

namespace brisklet {

bool startPictureThreads() {
  constexpr int most = 4, patienceMs = 5000;
  static QSemaphore started, allAreStarted;  // for a thread that starts too late, too
  QThreadPool& pool = *QThreadPool::globalInstance();
  const int count = std::min(pool.maxThreadCount(), most);
  pool.setMaxThreadCount(count);
  pool.setExpiryTimeout(-1);
  for (int i = 0; i < count; ++i) {
    pool.start([] {
      started.release();
      allAreStarted.acquire();
    });
    if (!started.tryAcquire(1, patienceMs)) return false;
  }
  allAreStarted.release(count);
  return true;
}

}  // namespace brisklet
