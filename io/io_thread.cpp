#include "io_thread.h"

#include <utility>

namespace velmora {

#if !defined(VELMORA_NO_THREADS)

IoThread::IoThread() : thread_([this] { Run(); }) {}

IoThread::~IoThread() {
  {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !busy_; });
    stopping_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void IoThread::Start(std::function<void()> job) {
  {
    std::lock_guard lock(mutex_);
    job_ = std::move(job);
    busy_ = true;
  }
  changed_.notify_all();
}

void IoThread::Wait() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return !busy_; });
}

void IoThread::Run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return stopping_ || busy_; });
    if (!busy_) return;
    lock.unlock();
    job_();
    lock.lock();
    busy_ = false;
    changed_.notify_all();
  }
}

#endif

}  // namespace velmora
