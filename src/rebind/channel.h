#pragma once

// The local connection between the process in a login and the process that holds the session: packets over a Unix
// socket of the user's own folder. Nothing blocks but Flush().

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrune::rebind {

enum class Packet : char
{
    Hello = 'h',  // to the holder: bits (7 or 8) and count received, as text; then WindowSize follows
    Ready = 'r',  // to the login: count received
    Gone = 'g',   // to the login: the session cannot be resumed from there
    Window = 'w', // to the holder: rows and columns, as text
    Data = 'd',   // the streams
    Exit = 'x',   // to the login: the exit code of the session's program
};

class Channel
{
public:
    explicit Channel(int socket);
    ~Channel();
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    int Socket() const { return socket_; }
    bool IsOpen() const { return open_; } // false after an error, a nonsense packet, or the other side's end

    void Send(Packet kind, std::string_view payload);
    std::size_t Unsent() const { return out_.size(); }
    void Write(); // as much as goes
    void Read();  // as much as is there
    struct Message
    {
        Packet kind;
        std::string payload;
    };
    std::optional<Message> Next();

private:
    int socket_;
    bool open_ = true;
    std::string in_;
    std::string out_;
};

} // namespace kestrune::rebind
