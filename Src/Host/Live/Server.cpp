// Serves HTTP by Boost.Beast; see Server.h. Called by `avsk live`.
#include "Server.h"

#include "Sockets.h"

#include "Common/UsageError.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/rfc7230.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/websocket/rfc6455.hpp>

#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

using asio::ip::tcp;

// What all connections share.
struct Served {
    Guard guard;
    const Pages pages;
    const Server::Calls calls;
    int connections = 0; // that have not become WebSockets
};

namespace {

constexpr int kUsualPort = 4780;
constexpr int kMostConnections = 256;
constexpr const char *kNoBody = "a request has no body here";

std::string_view View(beast::string_view text) { return {text.data(), text.size()}; }

// The value of a header that must occur once; empty if it does not.
std::string_view Only(const Request &request, http::field name) {
    return request.count(name) == 1 ? View(request[name]) : std::string_view();
}

class Connection : public std::enable_shared_from_this<Connection> {
  public:
    Connection(tcp::socket socket, std::shared_ptr<Served> served)
        : mStream(std::move(socket)), mServed(std::move(served)) {
        ++mServed->connections;
    }
    ~Connection() { --mServed->connections; }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    void Read();

  private:
    void OnRequest(error_code error);
    std::string Refusal(const Request &request, http::status &status) const;
    void Answer(const Request &request);
    void AcceptPage(Request request);
    void SendText(const Request &request, http::status status, std::string text,
                  std::string_view type = "text/plain; charset=utf-8");
    void Refuse(http::status status, const std::string &text);
    void Send(http::response<http::string_body> answer);
    void Drain();

    beast::tcp_stream mStream;
    const std::shared_ptr<Served> mServed;
    beast::flat_buffer mBuffer;
    std::optional<http::request_parser<http::empty_body>> mParser;
    http::response<http::string_body> mAnswer;
};

void Connection::Read() {
    constexpr std::uint32_t kMostHeader = 8 * 1024;
    constexpr std::chrono::seconds kPatience(10); // for a whole request
    mParser.emplace();
    mParser->header_limit(kMostHeader);
    mStream.expires_after(kPatience);
    http::async_read_header(mStream, mBuffer, *mParser,
                            [self = shared_from_this()](error_code error, std::size_t) { self->OnRequest(error); });
}

void Connection::OnRequest(error_code error) {
    if (error == http::error::header_limit)
        return Refuse(http::status::request_header_fields_too_large, "the header is too long");
    if (error == http::error::body_limit)
        return Refuse(http::status::payload_too_large, kNoBody);
    const bool isParsersError = error.category() == make_error_code(http::error::bad_method).category();
    if (isParsersError && error != http::error::end_of_stream && error != http::error::partial_message)
        return Refuse(http::status::bad_request, "this is no request");
    if (error)
        return; // closed, or too slow
    Request request = mParser->release();
    http::status status = http::status::ok;
    if (const std::string reason = Refusal(request, status); !reason.empty())
        return Refuse(status, reason);
    if (request.target() == "/live")
        return AcceptPage(std::move(request));
    Answer(request);
}

// Why a request is refused and its connection closed; empty if it is not.
std::string Connection::Refusal(const Request &request, http::status &status) const {
    status = http::status::forbidden;
    if (!mServed->guard.IsHost(Only(request, http::field::host)))
        return "the header Host must name 127.0.0.1 or localhost, with the port";
    const bool hasOrigin = request.count(http::field::origin) > 0;
    if (hasOrigin && !mServed->guard.IsOrigin(Only(request, http::field::origin)))
        return "the header Origin names another site";
    status = http::status::payload_too_large;
    if (request.chunked() ||
        (request.count(http::field::content_length) > 0 && request[http::field::content_length] != "0"))
        return kNoBody;
    status = http::status::method_not_allowed;
    if (request.method() != http::verb::get && request.method() != http::verb::head)
        return "only GET and HEAD are allowed";
    return "";
}

void Connection::Answer(const Request &request) {
    if (auto file = mServed->pages.Find(View(request.target())))
        return SendText(request, http::status::ok, std::move(file->content), file->type);
    SendText(request, http::status::not_found, "there is no such file\n");
}

// A browser cannot set other headers of a WebSocket, so the token is offered as a subprotocol.
void Connection::AcceptPage(Request request) {
    std::vector<std::string> protocols;
    for (const auto &protocol :
         http::token_list(beast::string_view(Only(request, http::field::sec_websocket_protocol))))
        protocols.emplace_back(protocol);
    const bool isKnown = protocols.size() == 2 && protocols[0] == "avsk" && mServed->guard.IsToken(protocols[1]);
    if (!isKnown || request.count(http::field::origin) == 0)
        return Refuse(http::status::forbidden,
                      "open the address that avsk has printed, including the part after the #");
    if (!beast::websocket::is_upgrade(request))
        return Refuse(http::status::bad_request, "this is no WebSocket");
    if (!mServed->calls.hasRoom())
        return Refuse(http::status::service_unavailable, "too many pages are open: close some");
    Upgrade upgrade{std::move(mStream), std::move(request)};
    mServed->calls.accept(upgrade);
}

void Connection::SendText(const Request &request, http::status status, std::string text, std::string_view type) {
    http::response<http::string_body> answer{status, request.version()};
    answer.set(http::field::content_type, beast::string_view(type));
    AddCommonHeaders(answer);
    answer.keep_alive(request.keep_alive());
    answer.content_length(text.size());
    if (request.method() != http::verb::head)
        answer.body() = std::move(text);
    Send(std::move(answer));
}

// Closes the connection too: what follows may belong to a body.
void Connection::Refuse(http::status status, const std::string &text) {
    http::response<http::string_body> answer{status, 11};
    answer.set(http::field::content_type, "text/plain; charset=utf-8");
    if (status == http::status::method_not_allowed)
        answer.set(http::field::allow, "GET, HEAD");
    AddCommonHeaders(answer);
    answer.keep_alive(false);
    answer.body() = text + "\n";
    answer.prepare_payload();
    Send(std::move(answer));
}

void Connection::Send(http::response<http::string_body> answer) {
    constexpr std::chrono::seconds kPatience(60);
    mAnswer = std::move(answer);
    mStream.expires_after(kPatience);
    http::async_write(mStream, mAnswer, [self = shared_from_this()](error_code error, std::size_t) {
        error_code ignored;
        if (error)
            return;
        if (self->mAnswer.keep_alive())
            return self->Read();
        self->mStream.socket().shutdown(tcp::socket::shutdown_send, ignored);
        self->mStream.expires_after(std::chrono::seconds(1));
        self->Drain();
    });
}

// Reads what is still on its way. If it stayed unread, the system would reset the
// connection, and the client could lose the answer.
void Connection::Drain() {
    mBuffer.clear();
    mStream.async_read_some(mBuffer.prepare(4096), [self = shared_from_this()](error_code error, std::size_t) {
        if (!error)
            self->Drain();
    });
}

} // namespace

class Server::Acceptor : public std::enable_shared_from_this<Acceptor> {
  public:
    Acceptor(Events &events, std::optional<int> port) : mAcceptor(events.Context()) {
        if (port)
            Listen(*port);
        else if (!TryToListen(kUsualPort))
            Listen(0);
    }

    int Port() const { return mAcceptor.local_endpoint().port(); }
    void Accept();
    void Close() {
        error_code ignored;
        mAcceptor.close(ignored);
    }

    std::shared_ptr<Served> served;

  private:
    error_code TryToListen(int port);
    void Listen(int port);

    tcp::acceptor mAcceptor;
};

error_code Server::Acceptor::TryToListen(int port) {
    error_code error;
    const tcp::endpoint place(asio::ip::address_v4::loopback(), static_cast<unsigned short>(port));
    mAcceptor.close(error);
    mAcceptor.open(tcp::v4(), error);
    if (!error)
        mAcceptor.set_option(tcp::acceptor::reuse_address(true), error);
    if (!error)
        mAcceptor.bind(place, error);
    if (!error)
        mAcceptor.listen(asio::socket_base::max_listen_connections, error);
    return error;
}

void Server::Acceptor::Listen(int port) {
    if (const error_code error = TryToListen(port))
        throw UsageError("--port: port " + std::to_string(port) + " of 127.0.0.1 cannot be used (" + error.message() +
                         "): name another one, or leave the option out");
}

void Server::Acceptor::Accept() {
    mAcceptor.async_accept([self = shared_from_this()](error_code error, tcp::socket socket) {
        if (error == asio::error::operation_aborted)
            return;
        if (!error && self->served->connections < kMostConnections) {
            error_code ignored;
            socket.set_option(tcp::no_delay(true), ignored);
            std::make_shared<Connection>(std::move(socket), self->served)->Read();
        }
        self->Accept();
    });
}

Server::Server(Events &events, std::optional<int> port, Calls calls)
    : mAcceptor(std::make_shared<Acceptor>(events, port)) {
    mAcceptor->served = std::make_shared<Served>(Served{Guard(Port()), Pages(), std::move(calls)});
    mAcceptor->Accept();
}

Server::~Server() { mAcceptor->Close(); }

int Server::Port() const { return mAcceptor->Port(); }

std::string Server::Address() const {
    return "http://127.0.0.1:" + std::to_string(Port()) + "/#" + mAcceptor->served->guard.Token();
}

} // namespace host
