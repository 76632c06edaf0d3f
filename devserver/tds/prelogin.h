// The exchange before the login: what the client wants of encryption, and the answer that there is none.
// Knows nothing of logins.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace devsql::tds {

/// What a client may say of encryption. It is not offered; a client that insists closes on the answer.
enum class Encryption : std::uint8_t { Off = 0, On = 1, NotSupported = 2, Required = 3 };

struct PreLogin {
    Encryption encryption = Encryption::Off;
    std::string instance; ///< the instance that the client looks for; may be empty
};

/// Throws ProtocolError (17828) for what is structurally wrong.
PreLogin ParsePreLogin(std::string_view data);

/// The answer's body: version, no encryption, any instance, no multiple active result sets.
std::string PreLoginAnswer();

} // namespace devsql::tds
