// The events of the server's one thread: descriptors, timers and signals. Keeps the
// templates of Boost.Asio out of the other sources.
#ifndef AVSK_HOST_LIVE_EVENTS_H
#define AVSK_HOST_LIVE_EVENTS_H

#include <chrono>
#include <functional>
#include <memory>

namespace boost::asio {
class io_context;
}

namespace host {

class Events {
  public:
    Events();
    ~Events();
    Events(const Events &) = delete;
    Events &operator=(const Events &) = delete;

    // Calls what is due until Stop().
    void Run();
    void Stop();
    // At each SIGINT, SIGTERM and SIGHUP.
    void OnEndSignal(std::function<void()> call);
    boost::asio::io_context &Context() { return *mContext; }

  private:
    struct Signals;

    std::unique_ptr<boost::asio::io_context> mContext;
    std::unique_ptr<Signals> mSignals;
};

// Owns a descriptor. Pending calls are dropped when it is destroyed.
class Descriptor {
  public:
    // It becomes non-blocking.
    Descriptor(Events &events, int descriptor);
    ~Descriptor();
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int Get() const;
    // Once each; the call may wait again, or destroy the descriptor.
    void AwaitReadable(std::function<void()> call);
    void AwaitWritable(std::function<void()> call);

  private:
    struct Stream;

    std::shared_ptr<Stream> mStream;
};

// Calls once, unless it is destroyed, stopped or started again before.
class Timer {
  public:
    explicit Timer(Events &events);
    ~Timer();
    Timer(const Timer &) = delete;
    Timer &operator=(const Timer &) = delete;

    void Start(std::chrono::milliseconds delay, std::function<void()> call);
    void Stop();

  private:
    struct Clock;

    std::shared_ptr<Clock> mClock;
};

} // namespace host

#endif
