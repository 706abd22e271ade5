#pragma once

// The ciphers that SSHCipher in a session file stands for.

#include <array>
#include <string>
#include <string_view>

namespace kestrune::comm {

// SSHCipher 1 is the first row. Names: RFC 4253, 4344, 5647 and their registry. The last rows are for old hosts
// only: they are offered when they are asked for, and never otherwise.
inline constexpr std::array<std::string_view, 9> SshCiphers{"aes256-gcm@openssh.com",
                                                            "aes128-gcm@openssh.com",
                                                            "chacha20-poly1305@openssh.com",
                                                            "aes256-ctr",
                                                            "aes192-ctr",
                                                            "aes128-ctr",
                                                            "aes256-cbc",
                                                            "aes128-cbc",
                                                            "3des-cbc"};
inline constexpr std::size_t ModernSshCiphers = 6;

// A list for the negotiation, the best first. Empty: nothing is preferred, and the user's SSH configuration decides.
inline std::string SshCipherList(int preferred, bool onlyPreferred)
{
    if (preferred < 1 || preferred > static_cast<int>(SshCiphers.size()))
        return {};
    const std::string_view first = SshCiphers[static_cast<std::size_t>(preferred - 1)];
    std::string list(first);
    for (std::size_t i = 0; i < ModernSshCiphers && !onlyPreferred; ++i)
        if (SshCiphers[i] != first)
            list.append(",").append(SshCiphers[i]);
    return list;
}

} // namespace kestrune::comm
