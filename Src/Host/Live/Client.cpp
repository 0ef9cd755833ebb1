// One WebSocket by Boost.Beast; see Client.h. At most one message is being sent, so a
// client that does not read costs no more than that. Called by the server.
#include "Client.h"

#include "Guard.h"
#include "Sockets.h"

#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket/rfc6455.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <chrono>
#include <utility>

namespace host {
namespace {

namespace websocket = beast::websocket;

class WebSocket final : public Client, public std::enable_shared_from_this<WebSocket> {
  public:
    WebSocket(Upgrade &upgrade, ClientCalls calls)
        : mRequest(std::move(upgrade.request)), mStream(std::move(upgrade.stream)), mCalls(std::move(calls)) {}

    void Accept();
    void Wake() override;
    void Drop() override;

  private:
    void Read();
    void OnText();
    void Close(websocket::close_code code, const std::string &reason);
    void OnClosed();

    const Request mRequest;
    websocket::stream<beast::tcp_stream> mStream;
    const ClientCalls mCalls;
    beast::flat_buffer mBuffer;
    Outgoing mOutgoing;
    Rate mRate;
    bool mIsOpen = false;
    bool mIsSending = false;
    bool mHasClosed = false;
};

void WebSocket::Accept() {
    constexpr std::size_t kMostText = 16 * 1024;
    constexpr std::chrono::seconds kHandshake(10);
    constexpr std::chrono::seconds kIdle(300);
    beast::get_lowest_layer(mStream).expires_never(); // the WebSocket has its own timeouts
    mStream.set_option(websocket::stream_base::timeout{kHandshake, kIdle, /*keep_alive_pings=*/true});
    mStream.set_option(websocket::stream_base::decorator([](websocket::response_type &response) {
        AddCommonHeaders(response);
        response.set(http::field::sec_websocket_protocol, "avsk");
        response.erase(http::field::server);
    }));
    mStream.read_message_max(kMostText);
    mStream.auto_fragment(false);
    mStream.async_accept(mRequest, [self = shared_from_this()](error_code error) {
        if (error)
            return self->OnClosed();
        self->mIsOpen = true;
        self->Wake();
        self->Read();
    });
}

void WebSocket::Read() {
    mStream.async_read(mBuffer, [self = shared_from_this()](error_code error, std::size_t /*bytes*/) {
        if (error || self->mHasClosed)
            return self->OnClosed();
        self->OnText();
    });
}

void WebSocket::OnText() {
    const std::string text = beast::buffers_to_string(mBuffer.data());
    mBuffer.consume(mBuffer.size());
    if (!mStream.got_text())
        return Close(websocket::close_code::unknown_data, "only texts are understood");
    if (!mRate.Allows(std::chrono::steady_clock::now()))
        return Close(websocket::close_code::policy_error, "too many messages");
    if (const std::string reason = mCalls.message(text); !reason.empty())
        return Close(websocket::close_code::policy_error, reason);
    Read();
}

void WebSocket::Wake() {
    if (!mIsOpen || mIsSending)
        return;
    auto next = mCalls.next();
    if (!next)
        return;
    mOutgoing = std::move(*next);
    mIsSending = true;
    mStream.binary(mOutgoing.isBinary);
    mStream.async_write(asio::buffer(*mOutgoing.bytes), [self = shared_from_this()](error_code error, std::size_t) {
        self->mIsSending = false;
        if (!error)
            self->Wake(); // after an error the read fails too
    });
}

// Says why, and closes after the answer. Called when nothing is being read.
void WebSocket::Close(websocket::close_code code, const std::string &reason) {
    mIsOpen = false;
    mStream.async_close({code, reason}, [self = shared_from_this()](error_code) { self->OnClosed(); });
}

void WebSocket::Drop() {
    mIsOpen = false;
    beast::get_lowest_layer(mStream).close(); // ends the read
}

void WebSocket::OnClosed() {
    mIsOpen = false;
    if (!std::exchange(mHasClosed, true))
        mCalls.closed();
}

} // namespace

std::shared_ptr<Client> OpenClient(Upgrade &upgrade, ClientCalls calls) {
    const auto client = std::make_shared<WebSocket>(upgrade, std::move(calls));
    client->Accept();
    return client;
}

} // namespace host
