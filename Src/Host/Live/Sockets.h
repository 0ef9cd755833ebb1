// Boost.Beast's types, for the sources that serve connections.
#ifndef AVSK_HOST_LIVE_SOCKETS_H
#define AVSK_HOST_LIVE_SOCKETS_H

#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/fields.hpp>
#include <boost/beast/http/message.hpp>

#include <string>

namespace host {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using boost::system::error_code;
using Request = http::request<http::empty_body>;

struct Upgrade {
    beast::tcp_stream stream;
    Request request;
};

// The headers of all answers.
inline void AddCommonHeaders(http::fields &fields) {
    fields.set("Content-Security-Policy",
               "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob:; connect-src 'self'; "
               "base-uri 'none'; form-action 'none'; frame-ancestors 'none'");
    fields.set("X-Content-Type-Options", "nosniff");
    fields.set("Referrer-Policy", "no-referrer");
    fields.set("Cache-Control", "no-store");
    fields.set("Cross-Origin-Opener-Policy", "same-origin");
    fields.set("Cross-Origin-Resource-Policy", "same-origin");
}

} // namespace host

#endif
