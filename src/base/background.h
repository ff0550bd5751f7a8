#pragma once

#include <QFutureWatcher>
#include <QObject>
#include <QPromise>
#include <QThreadPool>
#include <memory>
#include <type_traits>
#include <utility>

namespace brisklet {

/// Does work on another thread, then `done` with its result on this one, unless `context` has gone by then.
/// The work must not throw.
template <class Work, class Done>
void inBackground(QObject* context, Work work, Done done, int priority = 0) {
  using Result = std::invoke_result_t<Work>;
  auto* watcher = new QFutureWatcher<Result>(context);
  QObject::connect(watcher, &QFutureWatcherBase::finished, context, [watcher, done = std::move(done)] {
    watcher->deleteLater();
    done(watcher->result());
  });
  const auto promise = std::make_shared<QPromise<Result>>();
  promise->start();
  watcher->setFuture(promise->future());
  QThreadPool::globalInstance()->start(
      [promise, work = std::move(work)] {
        promise->addResult(work());
        promise->finish();
      },
      priority);
}

}  // namespace brisklet
