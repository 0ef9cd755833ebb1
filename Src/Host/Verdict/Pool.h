// Threads that work on a queue of tasks, which may add further tasks.
#ifndef AVSK_HOST_VERDICT_POOL_H
#define AVSK_HOST_VERDICT_POOL_H

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <queue>

namespace host {

class Pool {
  public:
    void Push(std::function<void()> task);
    // Works on the tasks with so many threads until none is left. Throws the first
    // exception of a task after the tasks under way have ended.
    void Run(unsigned threads);

  private:
    void Work();

    std::mutex mMutex;
    std::condition_variable mChanged;
    std::queue<std::function<void()>> mTasks;
    unsigned mBusy = 0;
    std::exception_ptr mFault;
};

} // namespace host

#endif
