#include "render/batch.h"

#include "base/cores.h"
#include "base/system_cause.h"
#include "base/unique_fd.h"
#include "render/interruption.h"
#include "render/render_job.h"

#include <fcntl.h>
#include <malloc.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <list>
#include <map>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// What became of a job, as a worker reports it: this head, then the message in UTF-8.
struct ReportHead {
  qint32 outcome;
  quint32 messageBytes;
};

bool readWhole(int fd, void* to, std::size_t bytes) {
  auto* at = static_cast<char*>(to);
  while (bytes > 0) {
    const ssize_t count = ::read(fd, at, bytes);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    at += count;
    bytes -= static_cast<std::size_t>(count);
  }
  return true;
}

bool writeWhole(int fd, const void* from, std::size_t bytes) {
  const auto* at = static_cast<const char*>(from);
  while (bytes > 0) {
    const ssize_t count = ::write(fd, at, bytes);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    at += count;
    bytes -= static_cast<std::size_t>(count);
  }
  return true;
}

/// A worker's life: takes places in the list of jobs from `orders`, until there are no more.
void work(const QList<RenderJob>& jobs, const Photos& photos, int orders, int reports) {
  std::stop_source stop;
  const Interruption interruption(stop);
  LockScreenCache cache;
  qint32 place = 0;
  while (readWhole(orders, &place, sizeof place)) {
    const JobResult result = attempt(jobs[place], photos, {}, stop.get_token(), cache);
    ::malloc_trim(0);  // what stays is shared with the next movie, and the rest is free
    const QByteArray message = result.message.toUtf8();
    const ReportHead head{static_cast<qint32>(result.outcome), static_cast<quint32>(message.size())};
    if (!writeWhole(reports, &head, sizeof head) ||
        !writeWhole(reports, message.constData(), static_cast<std::size_t>(message.size())))
      return;
  }
}

struct Worker {
  pid_t process = -1;
  UniqueFd orders, reports;
  qsizetype job = -1;  // the one in its hands
};

class Batch {
 public:
  Batch(const RenderOptions& options, Console& console,
        const std::function<std::shared_ptr<void>()>& setUpWorker)
      : options_(options), console_(console), setUpWorker_(setUpWorker), survey_(surveyOf(options.jobs)) {
    for (qsizetype job = 0; job < options.jobs.size(); ++job) waiting_.push_back(job);
  }

  ExitStatus run() {
    listen();
    clock_.start();
    workers_.resize(static_cast<std::size_t>(std::min<qsizetype>(options_.workers, options_.jobs.size())));
    for (Worker& worker : workers_) employ(worker);
    while (std::any_of(workers_.begin(), workers_.end(), [](const Worker& w) { return w.process > 0; }))
      waitForNews();
    console_.clearProgress();
    if (isStopped_) {
      console_.message(u"interrupted; %1 of %2 movies made"_s.arg(made_).arg(options_.jobs.size()));
      return Interrupted;
    }
    if (!options_.quiet) summarise();
    return notMade_.isEmpty() ? Done : Failed;
  }

 private:
  void listen() {
    sigset_t heard;
    sigemptyset(&heard);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
      struct sigaction action = {};
      sigaction(number, nullptr, &action);
      // What was ignored from outside, as nohup does, stays ignored.
      if (action.sa_handler != SIG_IGN) sigaddset(&heard, number);
    }
    sigprocmask(SIG_BLOCK, &heard, &unheard_);
    signals_ = UniqueFd(::signalfd(-1, &heard, SFD_CLOEXEC));
    std::signal(SIGPIPE, SIG_IGN);  // a worker that has died is noticed by its reports
  }

  /// Starts the worker on the next job; without one it has nothing to start for.
  void employ(Worker& worker) {
    if (waiting_.empty() || isStopped_) return;
    int orders[2], reports[2];
    if (::pipe2(orders, O_CLOEXEC) != 0) throw Error(systemCause(errno));
    UniqueFd itsOrders(orders[0]);
    worker.orders = UniqueFd(orders[1]);
    if (::pipe2(reports, O_CLOEXEC) != 0) throw Error(systemCause(errno));
    worker.reports = UniqueFd(reports[0]);
    UniqueFd itsReports(reports[1]);
    worker.process = ::fork();
    if (worker.process < 0) throw Error(systemCause(errno));
    if (worker.process == 0) {
      // The other workers' pipes must not stay open in here: their ends are how they know that it is over.
      workers_.clear();
      signals_ = {};
      hasOneCore = options_.jobs.size() > 1;
      ::prctl(PR_SET_PDEATHSIG, SIGTERM);
      sigprocmask(SIG_SETMASK, &unheard_, nullptr);
      const std::shared_ptr<void> setting = setUpWorker_();
      work(options_.jobs, survey_.photos, itsOrders.get(), itsReports.get());
      ::_exit(0);  // what the parent holds is the parent's to clear up
    }
    give(worker);
  }

  void give(Worker& worker) {
    const qsizetype last = std::exchange(worker.job, -1);
    if (waiting_.empty() || isStopped_) {
      worker.orders = {};
      return;
    }
    // A worker stays with its wallpaper as long as it can, since that is drawn once then.
    auto job = std::find_if(waiting_.begin(), waiting_.end(), [&](qsizetype other) {
      return last >= 0 && survey_.wallpapers[other] == survey_.wallpapers[last];
    });
    if (job == waiting_.end()) job = waiting_.begin();
    worker.job = *job;
    waiting_.erase(job);
    const auto place = static_cast<qint32>(worker.job);
    (void)writeWhole(worker.orders.get(), &place, sizeof place);
  }

  void waitForNews() {
    std::vector<pollfd> ends{{signals_.get(), POLLIN, 0}};
    for (const Worker& worker : workers_)
      ends.push_back({worker.reports ? worker.reports.get() : -1, POLLIN, 0});
    if (::poll(ends.data(), ends.size(), -1) < 0) return;
    if (ends[0].revents != 0) stop();
    for (std::size_t i = 0; i < workers_.size(); ++i)
      if (ends[i + 1].revents != 0) hear(workers_[i]);
  }

  void hear(Worker& worker) {
    ReportHead head = {};
    QByteArray message;
    bool isWhole = readWhole(worker.reports.get(), &head, sizeof head);
    if (isWhole) {
      message.resize(head.messageBytes);
      isWhole = readWhole(worker.reports.get(), message.data(), head.messageBytes);
    }
    if (isWhole) {
      settle(worker.job, {static_cast<JobOutcome>(head.outcome), QString::fromUtf8(message)});
      give(worker);
      return;
    }
    int status = 0;
    ::waitpid(worker.process, &status, 0);
    const qsizetype job = worker.job;
    worker = {};
    if (job < 0 || isStopped_) return;
    const QString cause = WIFSIGNALED(status) ? u"signal %1"_s.arg(WTERMSIG(status))
                                              : u"exit status %1"_s.arg(WEXITSTATUS(status));
    settle(job, {JobOutcome::Failed, u"%1: the process that was making its movie crashed (%2)"_s.arg(
                                         options_.jobs[job].scene, cause)});
    employ(worker);
  }

  void settle(qsizetype job, JobResult result) {
    if (result.outcome == JobOutcome::Made) ++made_;
    if (result.outcome == JobOutcome::Kept) ++kept_;
    ++settled_;
    results_[job] = std::move(result);
    for (auto first = results_.begin(); first != results_.end() && first->first == told_;
         first = results_.erase(first), ++told_) {
      if (first->second.outcome != JobOutcome::Failed) continue;
      console_.message(first->second.message);
      notMade_.append(options_.jobs[told_].scene);
    }
    const double seconds = static_cast<double>(clock_.elapsed()) / 1000;
    const double perSecond = static_cast<double>(settled_) / std::max(seconds, 0.001);
    const qsizetype left = options_.jobs.size() - settled_;
    console_.progress(u"%1 of %2 movies, %3 per second, %4 s left"_s.arg(settled_)
                          .arg(options_.jobs.size())
                          .arg(perSecond, 0, 'f', 1)
                          .arg(static_cast<double>(left) / perSecond, 0, 'f', 0));
  }

  void stop() {
    signalfd_siginfo heard;
    (void)readWhole(signals_.get(), &heard, sizeof heard);
    isStopped_ = true;
    for (Worker& worker : workers_) {
      worker.orders = {};
      if (worker.process > 0) ::kill(worker.process, SIGTERM);
    }
  }

  void summarise() {
    QString text = u"%1 of %2 movies made"_s.arg(made_).arg(options_.jobs.size());
    if (kept_ > 0) text += u", %1 kept"_s.arg(kept_);
    if (!notMade_.isEmpty()) text += u", %1 not made: %2"_s.arg(notMade_.size()).arg(notMade_.join(u", "_s));
    console_.message(text);
  }

  const RenderOptions& options_;
  Console& console_;
  const std::function<std::shared_ptr<void>()>& setUpWorker_;
  const SceneSurvey survey_;
  std::list<qsizetype> waiting_;  // jobs that nobody has begun
  UniqueFd signals_;
  sigset_t unheard_ = {};
  std::vector<Worker> workers_;
  QElapsedTimer clock_;
  qsizetype settled_ = 0, told_ = 0;
  qsizetype made_ = 0, kept_ = 0;
  QStringList notMade_;
  std::map<qsizetype, JobResult> results_;  // those that wait for an earlier one
  bool isStopped_ = false;
};

}  // namespace

ExitStatus runBatch(const RenderOptions& options, Console& console,
                    const std::function<std::shared_ptr<void>()>& setUpWorker) {
  return Batch(options, console, setUpWorker).run();
}

}  // namespace brisklet
