// Messages between the server and the simulator's process, over a stream socket. A
// message is its length after the length field (32 bits, little endian), a byte for
// its kind, and its payload.
#ifndef AVSK_HOST_LIVE_CHANNEL_H
#define AVSK_HOST_LIVE_CHANNEL_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class MessageKind : char {
    Json = 'J', // one object
    Tiles = 'T',
};

struct ChannelMessage {
    MessageKind kind;
    std::string payload;
};

std::string PackMessage(MessageKind kind, std::string_view payload);

// Divides a stream into messages.
class MessageReader {
  public:
    void Add(std::string_view bytes) { mBytes.append(bytes); }
    // The next complete message. Throws std::runtime_error if the stream has no valid message here.
    std::optional<ChannelMessage> Take();

  private:
    std::string mBytes;
    std::size_t mTaken = 0; // bytes at the beginning
};

// The simulator's end.
class Channel {
  public:
    explicit Channel(int descriptor);
    ~Channel();
    Channel(const Channel &) = delete;
    Channel &operator=(const Channel &) = delete;

    // Readable if something has arrived, or the server has closed its end.
    int Descriptor() const { return mDescriptor; }
    // False once the server has closed its end.
    bool IsOpen() const { return mIsOpen; }
    // Waits until the server has room, which is soon: it reads at all times.
    void Send(MessageKind kind, std::string_view payload);
    // The messages that have arrived, without waiting. All are JSON.
    std::vector<std::string> Receive();

  private:
    const int mDescriptor;
    MessageReader mReader;
    bool mIsOpen = true;
};

} // namespace host

#endif
