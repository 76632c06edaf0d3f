// Reads and writes the prelogin message: a table of options (token, offset, length) that ends with 0xFF, and
// then the options' values. See prelogin.h.
#include "devserver/tds/prelogin.h"

#include <array>
#include <utility>

#include "devserver/tds/bytes.h"
#include "devserver/tds/server_version.h"

namespace devsql::tds {

namespace {

constexpr std::uint8_t kVersionOption = 0;
constexpr std::uint8_t kEncryptionOption = 1;
constexpr std::uint8_t kInstanceOption = 2;
constexpr std::uint8_t kThreadOption = 3;
constexpr std::uint8_t kMarsOption = 4;
constexpr std::uint8_t kTerminator = 0xFF;
constexpr std::size_t kOptionEntrySize = 5;

ProtocolError BadPreLogin() {
    return {
        error_number::kPreLoginInvalid, kFatalSeverity,
        "The prelogin packet used to open the connection is structurally invalid; the connection has been "
        "closed."};
}

void TakeOption(PreLogin& result, std::uint8_t option, std::string_view value) {
    if (option == kEncryptionOption) {
        if (value.empty()) {
            throw BadPreLogin();
        }
        result.encryption = static_cast<Encryption>(value.front());
    } else if (option == kInstanceOption) {
        result.instance = value.substr(0, value.find('\0'));
    }
}

} // namespace

PreLogin ParsePreLogin(std::string_view data) {
    PreLogin result;
    ByteReader reader(data);
    try {
        for (std::uint8_t option = reader.Byte(); option != kTerminator; option = reader.Byte()) {
            const std::size_t offset = reader.Be16();
            const std::size_t length = reader.Be16();
            if (offset > data.size() || length > data.size() - offset) {
                throw BadPreLogin();
            }
            TakeOption(result, option, data.substr(offset, length));
        }
    } catch (const ProtocolError&) {
        throw BadPreLogin();
    }
    return result;
}

std::string PreLoginAnswer() {
    std::string version;
    AppendByte(version, kServerMajor);
    AppendByte(version, kServerMinor);
    AppendBe(version, kServerBuild);
    AppendBe(version, std::uint16_t{0});
    const std::array<std::pair<std::uint8_t, std::string>, 5> options{{
        {kVersionOption, version},
        {kEncryptionOption, std::string(1, static_cast<char>(Encryption::NotSupported))},
        {kInstanceOption, std::string(1, '\0')},
        {kThreadOption, std::string()},
        {kMarsOption, std::string(1, '\0')},
    }};
    std::string table;
    std::string values;
    for (const auto& [option, value] : options) {
        AppendByte(table, option);
        AppendBe(table, static_cast<std::uint16_t>(options.size() * kOptionEntrySize + 1 + values.size()));
        AppendBe(table, static_cast<std::uint16_t>(value.size()));
        values += value;
    }
    AppendByte(table, kTerminator);
    return table + values;
}

} // namespace devsql::tds
