#pragma once

// The near end of a SOCKS proxy (RFC 1928 without a login; SOCKS4 and 4a), for programs of this machine that are to
// reach hosts through somebody else. Bytes in, bytes out.

#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune::comm {

class SocksServer
{
public:
    enum class Progress
    {
        More,  // of what the program says
        Wants, // a connection to Host and Port
        Refused
    };

    // What the program has said: one byte, then look at the answer. Nothing more is taken after Wants or Refused.
    Progress Take(char byte);
    std::string Answer(); // what is to be sent, perhaps nothing
    const std::string& Host() const { return host_; }
    std::uint16_t Port() const { return port_; }
    // The reply to what it wants.
    std::string Outcome(bool connected) const;

private:
    Progress TakeGreeting();
    Progress TakeRequest();
    Progress TakeOldRequest();

    std::string said_; // since the last step
    std::string answer_;
    std::string host_;
    std::uint16_t port_ = 0;
    bool greeted_ = false;
    bool old_ = false; // SOCKS4
};

} // namespace kestrune::comm
