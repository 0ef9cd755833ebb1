// Accepts connections on 127.0.0.1 and answers requests: the page's files, and WebSockets
// for the pages.
#ifndef AVSK_HOST_LIVE_SERVER_H
#define AVSK_HOST_LIVE_SERVER_H

#include "Client.h"
#include "Events.h"
#include "Guard.h"
#include "Pages.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace host {

class Server {
  public:
    struct Calls {
        std::function<bool()> hasRoom;         // for one more page
        std::function<void(Upgrade &)> accept; // a page
    };

    // Throws UsageError if the port is taken, or the page is not installed.
    Server(Events &events, std::optional<int> port, Calls calls);
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    int Port() const;
    // The address of the page, with the token in its fragment, which browsers do not send.
    std::string Address() const;

  private:
    class Acceptor;

    std::shared_ptr<Acceptor> mAcceptor;
};

} // namespace host

#endif
