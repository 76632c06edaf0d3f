// Fuzzes the functions that parse a client's messages. The first byte of the input chooses the kind of
// message and the version, the rest is the message. Only ProtocolError may be thrown.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "devserver/tds/login.h"
#include "devserver/tds/prelogin.h"
#include "devserver/tds/protocol_error.h"
#include "devserver/tds/requests.h"

namespace {

using namespace devsql::tds;

void Prelogin(std::string_view data, Version) {
    ParsePreLogin(data);
}

void LogIn(std::string_view data, Version version) {
    ParseLogin(data, version);
}

void Batch(std::string_view data, Version version) {
    ParseBatch(data, version);
}

void Rpc(std::string_view data, Version version) {
    ParseRpc(data, version);
}

void Transaction(std::string_view data, Version version) {
    ParseTransaction(data, version);
}

constexpr std::array kTargets{Prelogin, LogIn, Batch, Rpc, Transaction};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view data(reinterpret_cast<const char*>(bytes + 1), size - 1);
    const Version version = bytes[0] >= 128 ? Version::V71 : Version::V74;
    try {
        kTargets[bytes[0] % kTargets.size()](data, version);
    } catch (const ProtocolError&) {
        return 0;
    }
    return 0;
}
