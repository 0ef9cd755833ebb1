// The queue and its threads; see Pool.h.
#include "Pool.h"

#include <thread>
#include <utility>
#include <vector>

namespace host {

void Pool::Push(std::function<void()> task) {
    const std::scoped_lock lock(mMutex);
    mTasks.push(std::move(task));
    mChanged.notify_one();
}

void Pool::Run(unsigned threads) {
    std::vector<std::jthread> workers;
    for (unsigned i = 0; i < threads; ++i)
        workers.emplace_back([this] { Work(); });
    workers.clear(); // joins them
    if (mFault)
        std::rethrow_exception(mFault);
}

void Pool::Work() {
    std::unique_lock lock(mMutex);
    while (true) {
        mChanged.wait(lock, [this] { return !mTasks.empty() || mBusy == 0; });
        if (mTasks.empty() || mFault)
            break;
        const std::function<void()> task = std::move(mTasks.front());
        mTasks.pop();
        ++mBusy;
        lock.unlock();
        std::exception_ptr fault;
        try {
            task();
        } catch (...) {
            fault = std::current_exception();
        }
        lock.lock();
        --mBusy;
        if (fault && !mFault)
            mFault = fault;
        mChanged.notify_all();
    }
    mChanged.notify_all();
}

} // namespace host
