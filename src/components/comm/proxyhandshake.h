#pragma once

// What is said to a proxy before it passes bytes on: SOCKS5 (RFC 1928, with a password RFC 1929) and HTTP CONNECT
// (RFC 9110, 9.3.6). A machine: the proxy's bytes in one at a time, answers out. It takes no byte more than is the
// proxy's own, so that the first one of the host is the next to be read, and keeps a bounded amount.

#include <array>
#include <cstdint>
#include <string>

namespace kestrune::comm {

// As ProxyType stands in session files.
enum class ProxyKind : std::int16_t
{
    None = 0,
    Socks5 = 1,
    HttpConnect = 2
};

struct ProxyRequest
{
    ProxyKind kind = ProxyKind::None;
    std::string host;    // in ASCII: name or numeric address, which the proxy looks up
    std::string address; // of a numeric host: its 4 or 16 bytes in network order
    std::uint16_t port = 0;
    std::string user; // UTF-8
    std::string password;
    bool hasPassword = false; // false: the proxy's wish for one ends the attempt
};

class ProxyHandshake
{
public:
    enum class Progress
    {
        More,          // answer, if there is one, and go on
        Through,       // the next byte is the host's
        WantsPassword, // none was given, or another one is wanted
        Refused        // see Reason
    };
    enum class Refusal
    {
        None,
        NotAProxy, // it speaks something else
        NotAllowed,
        NetworkUnreachable,
        HostUnreachable,
        HostRefused,
        TimedOut,
        Other
    };

    explicit ProxyHandshake(ProxyRequest request);
    ~ProxyHandshake();

    std::string Opening() const; // the first words are ours
    Progress Take(char byte);
    std::string Answer(); // what Take has made to be sent; empty: nothing

    Refusal Reason() const { return refusal_; }
    const std::string& StatusLine() const { return line_; } // of an HTTP proxy, printable ASCII

private:
    enum class Step
    {
        Method,
        Login,
        Reply,
        Http
    };

    Progress TakeSocks();
    Progress TakeMethod();
    Progress TakeReply();
    Progress TakeHttp(char byte);
    Progress EndHttp();
    Progress Refuse(Refusal why);
    std::string ConnectRequest() const;
    std::string LoginRequest() const;

    ProxyRequest request_;
    Step step_;
    std::string answer_;
    std::string taken_; // of the present SOCKS message, or of the present HTTP header line
    std::string line_;  // the HTTP status line
    std::size_t total_ = 0;
    Refusal refusal_ = Refusal::None;
};

} // namespace kestrune::comm
