// A page that is connected: one WebSocket.
#ifndef AVSK_HOST_LIVE_CLIENT_H
#define AVSK_HOST_LIVE_CLIENT_H

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace host {

struct Outgoing {
    std::shared_ptr<const std::string> bytes;
    bool isBinary = false;
};

struct ClientCalls {
    // A text has arrived. Returns why the client must be closed; empty if not.
    std::function<std::string(const std::string &)> message;
    // What to send next. Called when nothing is being sent.
    std::function<std::optional<Outgoing>()> next;
    // Nothing is called afterwards.
    std::function<void()> closed;
};

class Client {
  public:
    virtual ~Client() = default;

    // There may be something to send.
    virtual void Wake() = 0;
    // Ends the connection at once.
    virtual void Drop() = 0;
};

struct Upgrade; // a connection and its request; see Sockets.h

// Takes the connection over and accepts the request. The client stays alive until it
// has called `closed`.
std::shared_ptr<Client> OpenClient(Upgrade &upgrade, ClientCalls calls);

} // namespace host

#endif
