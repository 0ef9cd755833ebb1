// Events by Boost.Asio; see Events.h. Called by the server.
#include "Events.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <csignal>
#include <utility>

namespace host {

namespace asio = boost::asio;
using boost::system::error_code;

struct Events::Signals {
    Signals(asio::io_context &context, std::function<void()> onSignal)
        : set(context, SIGINT, SIGTERM, SIGHUP), call(std::move(onSignal)) {
        Await();
    }

    void Await() {
        set.async_wait([this](error_code error, int /*signal*/) {
            if (error)
                return;
            Await();
            call();
        });
    }

    asio::signal_set set;
    const std::function<void()> call;
};

Events::Events() : mContext(std::make_unique<asio::io_context>(1)) {}

Events::~Events() = default;

void Events::Run() { mContext->run(); }

void Events::Stop() { mContext->stop(); }

void Events::OnEndSignal(std::function<void()> call) {
    mSignals = std::make_unique<Signals>(*mContext, std::move(call));
}

struct Descriptor::Stream : std::enable_shared_from_this<Stream> {
    Stream(asio::io_context &context, int descriptor) : stream(context, descriptor) {}

    // A call that is due when the descriptor is destroyed must not be made.
    void Await(asio::posix::descriptor_base::wait_type what, std::function<void()> call) {
        stream.async_wait(what, [weak = weak_from_this(), call = std::move(call)](error_code error) {
            const auto self = weak.lock();
            if (!error && self && self->stream.is_open())
                call();
        });
    }

    asio::posix::stream_descriptor stream;
};

Descriptor::Descriptor(Events &events, int descriptor)
    : mStream(std::make_shared<Stream>(events.Context(), descriptor)) {
    mStream->stream.non_blocking(true);
}

Descriptor::~Descriptor() {
    error_code ignored;
    mStream->stream.close(ignored);
}

int Descriptor::Get() const { return mStream->stream.native_handle(); }

void Descriptor::AwaitReadable(std::function<void()> call) {
    mStream->Await(asio::posix::descriptor_base::wait_read, std::move(call));
}

void Descriptor::AwaitWritable(std::function<void()> call) {
    mStream->Await(asio::posix::descriptor_base::wait_write, std::move(call));
}

struct Timer::Clock {
    explicit Clock(asio::io_context &context) : timer(context) {}

    asio::steady_timer timer;
    unsigned count = 0; // of starts and stops
};

Timer::Timer(Events &events) : mClock(std::make_shared<Clock>(events.Context())) {}

Timer::~Timer() = default;

void Timer::Start(std::chrono::milliseconds delay, std::function<void()> call) {
    mClock->timer.expires_after(delay);
    const unsigned count = ++mClock->count;
    mClock->timer.async_wait([weak = std::weak_ptr(mClock), count, call = std::move(call)](error_code error) {
        const auto clock = weak.lock();
        if (!error && clock && clock->count == count)
            call();
    });
}

void Timer::Stop() {
    ++mClock->count;
    mClock->timer.cancel();
}

} // namespace host
