// Packs and reads messages; see Channel.h. Called by the server and by the simulator's process.
#include "Channel.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <stdexcept>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace host {
namespace {

constexpr std::size_t kLengthBytes = 4;
constexpr std::size_t kMostBytes = 4 * 1024 * 1024; // of kind and payload

} // namespace

std::string PackMessage(MessageKind kind, std::string_view payload) {
    const auto length = static_cast<std::uint32_t>(payload.size() + 1);
    std::string message;
    message.reserve(kLengthBytes + length);
    for (std::size_t i = 0; i < kLengthBytes; ++i)
        message += static_cast<char>(length >> (8 * i) & 0xff);
    message += static_cast<char>(kind);
    return message.append(payload);
}

std::optional<ChannelMessage> MessageReader::Take() {
    const std::string_view rest = std::string_view(mBytes).substr(mTaken);
    std::uint32_t length = 0;
    for (std::size_t i = 0; i < kLengthBytes && i < rest.size(); ++i)
        length |= static_cast<std::uint32_t>(static_cast<unsigned char>(rest[i])) << (8 * i);
    if (rest.size() >= kLengthBytes && (length == 0 || length > kMostBytes))
        throw std::runtime_error("a message has an impossible length");
    if (rest.size() < kLengthBytes || rest.size() < kLengthBytes + length) {
        mBytes.erase(0, mTaken);
        mTaken = 0;
        return std::nullopt;
    }
    const auto kind = static_cast<MessageKind>(rest[kLengthBytes]);
    if (kind != MessageKind::Json && kind != MessageKind::Tiles)
        throw std::runtime_error("a message has an unknown kind");
    mTaken += kLengthBytes + length;
    return ChannelMessage{kind, std::string(rest.substr(kLengthBytes + 1, length - 1))};
}

Channel::Channel(int descriptor) : mDescriptor(descriptor) {
    fcntl(mDescriptor, F_SETFD, FD_CLOEXEC); // programs that plugins start do not keep it open
}

Channel::~Channel() { close(mDescriptor); }

void Channel::Send(MessageKind kind, std::string_view payload) {
    const std::string message = PackMessage(kind, payload);
    for (std::size_t sent = 0; mIsOpen && sent < message.size();) {
        const ssize_t count = send(mDescriptor, message.data() + sent, message.size() - sent, MSG_NOSIGNAL);
        if (count > 0)
            sent += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            mIsOpen = false;
    }
}

std::vector<std::string> Channel::Receive() {
    std::array<char, 16 * 1024> part{};
    ssize_t count = 0;
    while ((count = recv(mDescriptor, part.data(), part.size(), MSG_DONTWAIT)) > 0)
        mReader.Add({part.data(), static_cast<std::size_t>(count)});
    if (count == 0 || (errno != EAGAIN && errno != EINTR))
        mIsOpen = false;
    std::vector<std::string> messages;
    while (auto message = mReader.Take())
        messages.push_back(std::move(message->payload));
    return messages;
}

} // namespace host
