#pragma once
// A thread of its own for one block of input or output at a time (a read
// into an empty buffer, a write of a full one), so that the decoding goes on
// meanwhile.
#include <functional>

#if !defined(VELMORA_NO_THREADS)
#include <condition_variable>
#include <mutex>
#include <thread>
#endif

namespace velmora {

#if defined(VELMORA_NO_THREADS)

// A build without threads (configured with VELMORA_THREADS=OFF, for a
// platform that has none): each block read or write is done where it is
// started, and the decoding waits for it.
class IoThread {
 public:
  void Start(std::function<void()> job) { job(); }
  void Wait() {}
};

#else

class IoThread {
 public:
  IoThread();
  ~IoThread();  // after the job in hand is done
  IoThread(const IoThread&) = delete;
  IoThread& operator=(const IoThread&) = delete;

  // Starts a job; only when none is in hand. What the job writes is the
  // caller's to read once Wait() has returned.
  void Start(std::function<void()> job);
  // Returns once the job in hand, if any, is done.
  void Wait();

 private:
  void Run();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::function<void()> job_;
  bool busy_ = false;
  bool stopping_ = false;
  std::thread thread_;  // last: starts once the members above exist
};

#endif

}  // namespace velmora
