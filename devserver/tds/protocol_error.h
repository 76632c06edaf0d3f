// The errors that the protocol itself reports to a client, each with a number, a severity and a text.
// Knows nothing of sockets.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "devserver/engine/engine.h"

namespace devsql::tds {

/// The numbers and texts are those that SQL Server's documentation gives for the same mistakes.
class ProtocolError : public std::runtime_error {
  public:
    ProtocolError(std::int32_t number, std::uint8_t severity, const std::string& text)
        : std::runtime_error(text), number_(number), severity_(severity) {}

    std::int32_t number() const { return number_; }
    /// If it is 20 or more, the connection must be closed.
    std::uint8_t severity() const { return severity_; }

  private:
    std::int32_t number_;
    std::uint8_t severity_;
};

namespace error_number {
inline constexpr std::int32_t kStreamEnded = 4002;
inline constexpr std::int32_t kInputStream = 4014;
inline constexpr std::int32_t kUnknownProcedureId = 2812;
inline constexpr std::int32_t kRpcUnknownType = 8009;
inline constexpr std::int32_t kRpcInvalidLength = 8016;
inline constexpr std::int32_t kRpcInvalidValue = 8023;
inline constexpr std::int32_t kInternal = 3624;
inline constexpr std::int32_t kNotSupported = 40510;
inline constexpr std::int32_t kTooManyConnections = 17809;
inline constexpr std::int32_t kPreLoginInvalid = 17828;
inline constexpr std::int32_t kLoginInvalid = 17832;
inline constexpr std::int32_t kPacketLength = 17836;
inline constexpr std::int32_t kLoginUntrusted = 18452;
inline constexpr std::int32_t kLoginFailed = 18456;
} // namespace error_number

inline constexpr std::uint8_t kRequestSeverity = 16;
inline constexpr std::uint8_t kFatalSeverity = 20;

/// The error for a request that has fewer bytes than its lengths announce.
inline ProtocolError StreamEnded() {
    return {error_number::kStreamEnded, kRequestSeverity,
            "The incoming tabular data stream (TDS) protocol stream is incorrect. The stream ended "
            "unexpectedly."};
}

/// The error for an exception that the language throws. That is a defect of this server; the client gets the
/// exception's text.
inline ProtocolError InternalError(const std::exception& error) {
    return {error_number::kInternal, kRequestSeverity,
            std::string("A system assertion check has failed: ") + error.what()};
}

inline Message ErrorMessage(const ProtocolError& error) {
    return {error.number(), error.severity(), 1, error.what(), {}, 1};
}

} // namespace devsql::tds
