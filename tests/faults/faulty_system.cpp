#include <dlfcn.h>
#include <pthread.h>
#include <sys/time.h>
#include <time.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

// Loaded before a program's libraries, it makes the time of day jump back and forth by up to ten years, at
// every look. Clocks that only count go on as they do. With BRISKLET_MOST_THREADS, no more than so many
// threads can be started.

namespace {

std::atomic<unsigned> looks = 0;
std::atomic<int> threads = 0;

time_t jumped(time_t seconds) {
  return seconds + static_cast<time_t>(looks++ * 2654435761U % 630720000U) - 315360000;
}

}  // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* now) {
  static const auto real = reinterpret_cast<int (*)(clockid_t, timespec*)>(dlsym(RTLD_NEXT, "clock_gettime"));
  const int result = real(clock, now);
  if (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE) now->tv_sec = jumped(now->tv_sec);
  return result;
}

extern "C" int gettimeofday(timeval* now, void*) {
  timespec precise{};
  clock_gettime(CLOCK_REALTIME, &precise);
  *now = {precise.tv_sec, precise.tv_nsec / 1000};
  return 0;
}

extern "C" time_t time(time_t* now) {
  timespec precise{};
  clock_gettime(CLOCK_REALTIME, &precise);
  if (now) *now = precise.tv_sec;
  return precise.tv_sec;
}

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                              void* argument) {
  static const auto real = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  const char* most = std::getenv("BRISKLET_MOST_THREADS");
  if (most && threads++ >= std::atoi(most)) return EAGAIN;
  return real(thread, attributes, run, argument);
}
