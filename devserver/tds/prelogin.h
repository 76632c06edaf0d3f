// The exchange before the login: the client asks for encryption or not, and the server answers that it has
// none. Knows nothing of logins.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace devsql::tds {

/// The encryption that a client asks for. The server has none; a client that requires it closes the
/// connection when it reads the answer.
enum class Encryption : std::uint8_t { Off = 0, On = 1, NotSupported = 2, Required = 3 };

/// The options of the client's message that the server reads.
struct PreLogin {
    Encryption encryption = Encryption::Off;
    std::string instance; ///< the instance that the client looks for; may be empty
};

/// Throws ProtocolError (17828) for a message that is structurally wrong.
PreLogin ParsePreLogin(std::string_view data);

/// The body of the answer: the server's version, no encryption, any instance, no multiple active result sets.
std::string PreLoginAnswer();

} // namespace devsql::tds
