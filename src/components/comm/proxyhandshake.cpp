#include <comm/proxyhandshake.h>

#include <algorithm>
#include <utility>

namespace kestrune::comm {

namespace {

constexpr char SocksVersion = 5;
constexpr char MethodNone = 0;
constexpr char MethodPassword = 2;
constexpr char LoginVersion = 1;
constexpr char CommandConnect = 1;
constexpr char AddressIp4 = 1;
constexpr char AddressName = 3;
constexpr char AddressIp6 = 4;
constexpr std::size_t LongestSocksField = 255;
constexpr std::size_t MaxHttpHeader = 16384;

struct SocksReply // RFC 1928, 6
{
    char code;
    ProxyHandshake::Refusal refusal;
};
constexpr std::array SocksReplies{
    SocksReply{2, ProxyHandshake::Refusal::NotAllowed},      SocksReply{3, ProxyHandshake::Refusal::NetworkUnreachable},
    SocksReply{4, ProxyHandshake::Refusal::HostUnreachable}, SocksReply{5, ProxyHandshake::Refusal::HostRefused},
    SocksReply{6, ProxyHandshake::Refusal::TimedOut},
};

struct HttpStatus
{
    std::string_view code;
    ProxyHandshake::Refusal refusal;
};
constexpr std::array HttpStatuses{
    HttpStatus{"403", ProxyHandshake::Refusal::NotAllowed},
    HttpStatus{"405", ProxyHandshake::Refusal::NotAllowed},
    HttpStatus{"502", ProxyHandshake::Refusal::HostUnreachable},
    HttpStatus{"503", ProxyHandshake::Refusal::HostUnreachable},
    HttpStatus{"504", ProxyHandshake::Refusal::TimedOut},
};

std::string SocksField(const std::string& text)
{
    const std::string field = text.substr(0, LongestSocksField);
    return static_cast<char>(field.size()) + field;
}

std::string Base64(const std::string& text) // RFC 4648, 4
{
    static constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    for (std::size_t at = 0; at < text.size(); at += 3) {
        const std::size_t length = std::min<std::size_t>(3, text.size() - at);
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i)
            group = group << 8 | (i < length ? static_cast<unsigned char>(text[at + i]) : 0U);
        for (std::size_t i = 0; i < 4; ++i)
            out += i <= length ? digits[group >> (18 - 6 * i) & 63] : '=';
    }
    return out;
}

void WipeText(std::string& text)
{
    for (volatile char& c : text)
        c = 0;
    text.clear();
}

} // namespace

ProxyHandshake::ProxyHandshake(ProxyRequest request)
    : request_(std::move(request)), step_(request_.kind == ProxyKind::HttpConnect ? Step::Http : Step::Method)
{}

ProxyHandshake::~ProxyHandshake()
{
    WipeText(request_.password);
    WipeText(answer_);
}

std::string ProxyHandshake::Opening() const
{
    if (request_.kind == ProxyKind::Socks5)
        return request_.user.empty() ? std::string{SocksVersion, 1, MethodNone}
                                     : std::string{SocksVersion, 2, MethodNone, MethodPassword};
    const bool colons = request_.host.find(':') != std::string::npos;
    const std::string target =
        (colons ? "[" + request_.host + "]" : request_.host) + ":" + std::to_string(request_.port);
    std::string text = "CONNECT " + target + " HTTP/1.1\r\nHost: " + target + "\r\n";
    if (request_.hasPassword) // RFC 7617
        text += "Proxy-Authorization: Basic " + Base64(request_.user + ":" + request_.password) + "\r\n";
    return text + "\r\n";
}

std::string ProxyHandshake::Answer() { return std::exchange(answer_, {}); }

ProxyHandshake::Progress ProxyHandshake::Take(char byte)
{
    if (step_ == Step::Http)
        return TakeHttp(byte);
    taken_ += byte;
    return TakeSocks();
}

ProxyHandshake::Progress ProxyHandshake::Refuse(Refusal why)
{
    refusal_ = why;
    return Progress::Refused;
}

// --- SOCKS5

ProxyHandshake::Progress ProxyHandshake::TakeSocks()
{
    const char version = step_ == Step::Login ? LoginVersion : SocksVersion;
    if (taken_.front() != version)
        return Refuse(Refusal::NotAProxy);
    if (step_ == Step::Reply)
        return TakeReply();
    if (taken_.size() < 2)
        return Progress::More;
    if (step_ == Step::Method)
        return TakeMethod();
    if (taken_[1] != 0)
        return Progress::WantsPassword;
    answer_ = ConnectRequest();
    step_ = Step::Reply;
    taken_.clear();
    return Progress::More;
}

ProxyHandshake::Progress ProxyHandshake::TakeMethod()
{
    const char method = taken_[1];
    taken_.clear();
    if (method == MethodNone) {
        answer_ = ConnectRequest();
        step_ = Step::Reply;
        return Progress::More;
    }
    // What remains is that no method of ours is good enough: without a user's name we have not offered all.
    if (!request_.hasPassword || request_.user.empty())
        return Progress::WantsPassword;
    if (method != MethodPassword)
        return Refuse(Refusal::NotAllowed);
    answer_ = LoginRequest();
    step_ = Step::Login;
    return Progress::More;
}

std::string ProxyHandshake::LoginRequest() const
{
    return LoginVersion + SocksField(request_.user) + SocksField(request_.password);
}

std::string ProxyHandshake::ConnectRequest() const
{
    std::string text{SocksVersion, CommandConnect, 0};
    if (request_.address.empty())
        text += AddressName + SocksField(request_.host);
    else
        text += (request_.address.size() == 4 ? AddressIp4 : AddressIp6) + request_.address;
    text += static_cast<char>(request_.port >> 8);
    text += static_cast<char>(request_.port & 0xff);
    return text;
}

// Version, reply, reserved, kind of address, address, port: the length is known from the fifth byte on.
ProxyHandshake::Progress ProxyHandshake::TakeReply()
{
    if (taken_.size() < 2)
        return Progress::More;
    if (const char code = taken_[1]; code != 0) {
        const auto known = std::ranges::find(SocksReplies, code, &SocksReply::code);
        return Refuse(known == SocksReplies.end() ? Refusal::Other : known->refusal);
    }
    if (taken_.size() < 5)
        return Progress::More;
    std::size_t address = 0;
    if (taken_[3] == AddressIp4)
        address = 4;
    else if (taken_[3] == AddressIp6)
        address = 16;
    else if (taken_[3] == AddressName)
        address = 1 + static_cast<unsigned char>(taken_[4]);
    else
        return Refuse(Refusal::NotAProxy);
    return taken_.size() == 4 + address + 2 ? Progress::Through : Progress::More;
}

// --- HTTP

ProxyHandshake::Progress ProxyHandshake::TakeHttp(char byte)
{
    static constexpr std::string_view begin = "HTTP/1.";
    if (total_ < begin.size() && byte != begin[total_])
        return Refuse(Refusal::NotAProxy);
    if (++total_ > MaxHttpHeader)
        return Refuse(Refusal::NotAProxy);
    if (byte != '\n') {
        taken_ += byte;
        return Progress::More;
    }
    if (!taken_.empty() && taken_.back() == '\r')
        taken_.pop_back();
    if (taken_.empty())
        return EndHttp();
    if (line_.empty()) {
        std::erase_if(taken_, [](char c) { return c < 0x20 || c > 0x7e; });
        line_ = taken_.substr(0, 100);
    }
    taken_.clear();
    return Progress::More;
}

ProxyHandshake::Progress ProxyHandshake::EndHttp()
{
    const std::string code = line_.size() >= 12 ? line_.substr(9, 3) : std::string();
    if (code.empty() || !std::ranges::all_of(code, [](char c) { return c >= '0' && c <= '9'; }))
        return Refuse(Refusal::NotAProxy);
    if (code.front() == '1') { // an interim answer, RFC 9110 15.2: the real one follows
        line_.clear();
        return Progress::More;
    }
    if (code.front() == '2')
        return Progress::Through;
    if (code == "407")
        return Progress::WantsPassword;
    const auto known = std::ranges::find(HttpStatuses, code, &HttpStatus::code);
    return Refuse(known == HttpStatuses.end() ? Refusal::Other : known->refusal);
}

} // namespace kestrune::comm
