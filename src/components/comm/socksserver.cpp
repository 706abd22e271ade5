#include <comm/socksserver.h>

#include <cstdio>
#include <utility>

namespace kestrune::comm {

namespace {

constexpr char Version5 = 5;
constexpr char Version4 = 4;
constexpr char ConnectCommand = 1;
constexpr char RefusedCommand = 7; // of the replies of RFC 1928, 6
constexpr char RefusedAddress = 8;
constexpr std::size_t LongestOldRequest = 600; // user name and host name, both ended by NUL

constexpr unsigned Byte(char c) { return static_cast<unsigned char>(c); }

std::uint16_t PortAt(std::string_view bytes, std::size_t at)
{
    return static_cast<std::uint16_t>(Byte(bytes[at]) << 8 | Byte(bytes[at + 1]));
}

std::string DottedAddress(std::string_view four)
{
    std::string text;
    for (const char part : four) {
        if (!text.empty())
            text += '.';
        text += std::to_string(Byte(part));
    }
    return text;
}

std::string GroupedAddress(std::string_view sixteen)
{
    std::string text;
    for (std::size_t i = 0; i < sixteen.size(); i += 2) {
        char group[6];
        std::snprintf(group, sizeof group, "%s%x", i == 0 ? "" : ":", PortAt(sixteen, i));
        text += group;
    }
    return text;
}

} // namespace

SocksServer::Progress SocksServer::Take(char byte)
{
    said_ += byte;
    if (said_.front() == Version4)
        return TakeOldRequest();
    if (said_.front() != Version5)
        return Progress::Refused;
    return greeted_ ? TakeRequest() : TakeGreeting();
}

std::string SocksServer::Answer() { return std::exchange(answer_, {}); }

// Version, number of ways to log in, the ways (RFC 1928, 3).
SocksServer::Progress SocksServer::TakeGreeting()
{
    if (said_.size() < 2 || said_.size() < 2 + Byte(said_[1]))
        return Progress::More;
    const bool withoutLogin = said_.find('\0', 2) != std::string::npos;
    answer_ = {Version5, withoutLogin ? '\0' : '\xff'};
    said_.clear();
    greeted_ = true;
    return withoutLogin ? Progress::More : Progress::Refused;
}

// Version, command, reserved, kind of address, address, port (RFC 1928, 4).
SocksServer::Progress SocksServer::TakeRequest()
{
    constexpr std::size_t Head = 4;
    if (said_.size() <= Head)
        return Progress::More;
    const char kind = said_[3];
    const std::size_t prefix = kind == 3 ? 1 : 0;
    const std::size_t length = kind == 1 ? 4 : kind == 4 ? 16 : kind == 3 ? Byte(said_[Head]) : 0;
    if (length == 0 || said_[1] != ConnectCommand) {
        answer_ = {Version5, length == 0 ? RefusedAddress : RefusedCommand, 0, 1, 0, 0, 0, 0, 0, 0};
        return Progress::Refused;
    }
    if (said_.size() < Head + prefix + length + 2)
        return Progress::More;
    const std::string_view address = std::string_view(said_).substr(Head + prefix, length);
    host_ = kind == 1 ? DottedAddress(address) : kind == 4 ? GroupedAddress(address) : std::string(address);
    port_ = PortAt(said_, Head + prefix + length);
    return Progress::Wants;
}

// Version, command, port, address, user name, NUL; 4a: the address 0.0.0.x, and the host name with a NUL besides.
SocksServer::Progress SocksServer::TakeOldRequest()
{
    constexpr std::size_t Head = 8;
    old_ = true;
    if (said_.size() > LongestOldRequest)
        return Progress::Refused;
    const std::size_t userEnd = said_.find('\0', Head);
    if (said_.size() <= Head || userEnd == std::string::npos)
        return Progress::More;
    const bool named = said_[4] == 0 && said_[5] == 0 && said_[6] == 0 && said_[7] != 0;
    if (named && (said_.size() == userEnd + 1 || said_.back() != '\0'))
        return Progress::More;
    if (said_[1] != ConnectCommand) {
        answer_ = Outcome(false);
        return Progress::Refused;
    }
    port_ = PortAt(said_, 2);
    host_ = named ? said_.substr(userEnd + 1, said_.size() - userEnd - 2)
                  : DottedAddress(std::string_view(said_).substr(4, 4));
    return host_.empty() ? Progress::Refused : Progress::Wants;
}

std::string SocksServer::Outcome(bool connected) const
{
    if (old_)
        return {0, connected ? '\x5a' : '\x5b', 0, 0, 0, 0, 0, 0};
    return {Version5, connected ? '\0' : '\x05', 0, 1, 0, 0, 0, 0, 0, 0};
}

} // namespace kestrune::comm
