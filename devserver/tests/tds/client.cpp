// A TDS client for the tests. It uses none of the server's own code for reading and writing the protocol, so
// that it does not repeat the server's mistakes.
#include "devserver/tests/tds/client.h"

#include <arpa/inet.h>
#include <array>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>

namespace devsql::fakes {

namespace {

void Append16(std::string& out, std::size_t value) {
    out += static_cast<char>(value & 0xFF);
    out += static_cast<char>(value >> 8 & 0xFF);
}

void Append32(std::string& out, std::size_t value) {
    Append16(out, value & 0xFFFF);
    Append16(out, value >> 16);
}

std::size_t ByteAt(std::string_view data, std::size_t position) {
    if (position >= data.size()) {
        throw std::runtime_error("the answer ends within a token");
    }
    return static_cast<std::uint8_t>(data[position]);
}

/// Reads the bytes of an answer one after the other.
class Cursor {
  public:
    explicit Cursor(std::string_view data) : data_(data) {}
    bool AtEnd() const { return position_ == data_.size(); }
    std::uint64_t Number(int bytes) {
        std::uint64_t value = 0;
        for (int i = 0; i < bytes; ++i) {
            value |= static_cast<std::uint64_t>(ByteAt(data_, position_++)) << (8 * i);
        }
        return value;
    }
    std::string Take(std::size_t count) {
        if (count > data_.size() - position_) {
            throw std::runtime_error("the answer ends within a token");
        }
        std::string taken(data_.substr(position_, count));
        position_ += count;
        return taken;
    }
    std::size_t position() const { return position_; }
    std::string From(std::size_t start) const { return std::string(data_.substr(start, position_ - start)); }

  private:
    std::string_view data_;
    std::size_t position_ = 0;
};

/// UTF-16 to text; the tests use only ASCII.
std::string Narrow(const std::string& wide) {
    std::string text;
    for (std::size_t i = 0; i + 1 < wide.size(); i += 2) {
        text += wide[i];
    }
    return text;
}

/// A column of the current result set: its type on the wire, and whether its values are sent in chunks.
struct WireColumn {
    std::uint8_t type;
    bool chunked;
};

std::vector<WireColumn> ReadColumns(Cursor& cursor, bool has72) {
    std::vector<WireColumn> columns(cursor.Number(2));
    for (WireColumn& column : columns) {
        cursor.Take(has72 ? 6 : 4);
        column.type = static_cast<std::uint8_t>(cursor.Number(1));
        if (column.type == 0x26) {
            cursor.Take(1);
        } else if (column.type == 0xE7 || column.type == 0xA7) {
            column.chunked = cursor.Number(2) == 0xFFFF;
            cursor.Take(5);
        } else {
            throw std::runtime_error("a column of a type that this client does not know");
        }
        cursor.Take(cursor.Number(1) * 2);
    }
    return columns;
}

void ReadRow(Cursor& cursor, const std::vector<WireColumn>& columns) {
    for (const WireColumn& column : columns) {
        if (column.type == 0x26) {
            cursor.Take(cursor.Number(1));
        } else if (column.chunked) {
            if (cursor.Number(8) != ~std::uint64_t{0}) {
                for (std::uint64_t size = cursor.Number(4); size != 0; size = cursor.Number(4)) {
                    cursor.Take(size);
                }
            }
        } else if (const std::uint64_t size = cursor.Number(2); size != 0xFFFF) {
            cursor.Take(size);
        }
    }
}

void ReadMessageFields(Token& token, bool has72) {
    Cursor body(token.body);
    token.number = static_cast<std::int32_t>(body.Number(4));
    body.Take(1);
    token.severity = static_cast<std::uint8_t>(body.Number(1));
    token.text = Narrow(body.Take(body.Number(2) * 2));
    body.Take(body.Number(1) * 2);
    body.Take(body.Number(1) * 2);
    token.line = static_cast<std::int32_t>(body.Number(has72 ? 4 : 2));
    if (!body.AtEnd()) {
        throw std::runtime_error("a message is longer than its fields");
    }
}

} // namespace

std::string Utf16(std::string_view ascii) {
    std::string wide;
    for (const char character : ascii) {
        wide += character;
        wide += '\0';
    }
    return wide;
}

namespace {

/// The password as a login message has it: the halves of each byte swapped, then the byte xored with A5.
std::string Hidden(const std::string& password) {
    std::string hidden = Utf16(password);
    for (char& character : hidden) {
        const auto byte = static_cast<std::uint8_t>(character);
        character = static_cast<char>(static_cast<std::uint8_t>(byte << 4 | byte >> 4) ^ 0xA5);
    }
    return hidden;
}

} // namespace

std::string LoginMessage(const LoginFields& fields) {
    const bool has72 = fields.version >= 0x72000000;
    const std::size_t fixed = has72 ? 94 : 86;
    std::string table;
    std::string texts;
    const auto add = [&](const std::string& bytes, std::size_t units) {
        Append16(table, fixed + texts.size());
        Append16(table, units);
        texts += bytes;
    };
    add(Utf16(fields.host), fields.host.size());
    add(Utf16(fields.user), fields.user.size());
    add(Hidden(fields.password), fields.password.size());
    add(Utf16(fields.application), fields.application.size());
    add(Utf16(fields.server), fields.server.size());
    std::string pointer;
    if (!fields.features.empty()) {
        // The position of the features is known only at the end; the pointer is set then.
        pointer.assign(4, '\0');
    }
    const std::size_t pointer_at = fixed + texts.size();
    add(pointer, pointer.size());
    add(Utf16("library"), 7);
    add("", 0);
    add(Utf16(fields.database), fields.database.size());
    table += std::string("\x01\x02\x03\x04\x05\x06", 6);
    add("", 0); // SSPI
    add("", 0); // database file
    if (has72) {
        add("", 0); // new password
        Append32(table, 0);
    }
    std::string message;
    Append32(message, fixed + texts.size() + fields.features.size());
    Append32(message, fields.version);
    Append32(message, fields.packet_size);
    message += std::string(12, '\0');
    message += '\xE0';
    message += static_cast<char>(fields.option_flags2);
    message += '\0';
    message += static_cast<char>(fields.option_flags3);
    message += std::string(8, '\0');
    message += table + texts;
    if (!fields.features.empty()) {
        std::string offset;
        Append32(offset, message.size());
        message.replace(pointer_at, 4, offset);
        message += fields.features;
    }
    return message;
}

std::string PreLoginMessage() {
    // Version, encryption (off), end.
    return std::string("\x00\x00\x0B\x00\x06\x01\x00\x11\x00\x01\xFF\x0E\x00\x03\xE8\x00\x00\x00", 18);
}

std::string BatchMessage(std::string_view sql) {
    std::string message;
    Append32(message, 22);
    Append32(message, 18);
    Append16(message, 2);
    message += std::string(8, '\0');
    Append32(message, 1);
    return message + Utf16(sql);
}

std::string Packets(std::uint8_t type, std::string_view data, std::size_t packet_size,
                    std::uint8_t first_status) {
    std::string bytes;
    std::uint8_t status = first_status;
    char number = 1;
    do {
        const std::string_view part = data.substr(0, packet_size - 8);
        data.remove_prefix(part.size());
        bytes += static_cast<char>(type);
        bytes += static_cast<char>(status | (data.empty() ? 1 : 0));
        bytes += static_cast<char>((part.size() + 8) >> 8);
        bytes += static_cast<char>((part.size() + 8) & 0xFF);
        bytes += std::string("\0\0", 2);
        bytes += number++;
        bytes += '\0';
        bytes += part;
        status = 0;
    } while (!data.empty());
    return bytes;
}

namespace {

/// Reads a token after its type. `columns` are those of the last token with columns.
void ReadToken(Cursor& cursor, bool has72, std::vector<WireColumn>& columns, Token& token) {
    switch (token.type) {
    case 0x81:
        columns = ReadColumns(cursor, has72);
        break;
    case 0xD1:
        ReadRow(cursor, columns);
        break;
    case 0x79:
        cursor.Take(4);
        break;
    case 0xAC: {
        cursor.Take(2);
        cursor.Take(cursor.Number(1) * 2);
        cursor.Take(has72 ? 7 : 5);
        const auto type = static_cast<std::uint8_t>(cursor.Number(1));
        cursor.Take(type == 0x26 ? 1 : 7);
        ReadRow(cursor, {{type, false}});
        break;
    }
    case 0xFD:
    case 0xFE:
    case 0xFF:
        token.status = static_cast<std::uint16_t>(cursor.Number(2));
        cursor.Take(2);
        token.rows = static_cast<std::int64_t>(cursor.Number(has72 ? 8 : 4));
        break;
    case 0xAA:
    case 0xAB:
    case 0xAD:
    case 0xE3:
        token.body = cursor.Take(cursor.Number(2));
        if (token.type == 0xAA || token.type == 0xAB) {
            ReadMessageFields(token, has72);
        }
        break;
    default:
        throw std::runtime_error("no token begins with " + std::to_string(token.type));
    }
}

} // namespace

std::vector<Token> ParseTokens(std::string_view data, tds::Version version) {
    const bool has72 = tds::Has72(version);
    std::vector<Token> tokens;
    std::vector<WireColumn> columns;
    Cursor cursor(data);
    while (!cursor.AtEnd()) {
        Token token;
        token.type = static_cast<std::uint8_t>(cursor.Number(1));
        const std::size_t start = cursor.position();
        ReadToken(cursor, has72, columns, token);
        if (token.body.empty()) {
            token.body = cursor.From(start);
        }
        tokens.push_back(token);
    }
    return tokens;
}

std::string Summary(const std::vector<Token>& tokens) {
    std::string summary;
    const auto done = [](const char* name, const Token& token) {
        std::array<char, 64> text{};
        std::snprintf(text.data(), text.size(), "%s(%02X,%lld)", name, token.status,
                      static_cast<long long>(token.rows));
        return std::string(text.data());
    };
    for (const Token& token : tokens) {
        summary += summary.empty() ? "" : " ";
        switch (token.type) {
        case 0x81:
            summary += "COLUMNS";
            break;
        case 0xD1:
            summary += "ROW";
            break;
        case 0x79:
            summary += "STATUS";
            break;
        case 0xAC:
            summary += "VALUE";
            break;
        case 0xFD:
            summary += done("DONE", token);
            break;
        case 0xFE:
            summary += done("DONEPROC", token);
            break;
        case 0xFF:
            summary += done("DONEINPROC", token);
            break;
        case 0xAA:
            summary += "ERROR(" + std::to_string(token.number) + ")";
            break;
        case 0xAB:
            summary += "INFO(" + std::to_string(token.number) + ")";
            break;
        case 0xAD:
            summary += "LOGINACK";
            break;
        default:
            summary += "ENV(" + std::to_string(static_cast<int>(token.body.at(0))) + ")";
            break;
        }
    }
    return summary;
}

TdsClient TdsClient::Connect(std::uint16_t port) {
    system::SocketHandle handle(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(static_cast<int>(handle.get()), reinterpret_cast<const sockaddr*>(&address),
                sizeof address) != 0) {
        throw std::runtime_error("cannot connect to the server of the test");
    }
    // Without this option the system would hold an attention back until the server has acknowledged the bytes
    // before it.
    const int on = 1;
    setsockopt(static_cast<int>(handle.get()), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return TdsClient(tds::Socket(std::move(handle)));
}

std::optional<std::string> TdsClient::Receive() {
    const tds::ReadWait wait = tds::Until(std::chrono::steady_clock::now() + std::chrono::minutes(1));
    std::string data;
    packet_lengths_.clear();
    for (bool last = false; !last;) {
        std::array<char, 8> header{};
        if (!socket_.ReadExactly(header.data(), header.size(), wait)) {
            return std::nullopt;
        }
        const std::string_view view(header.data(), header.size());
        const std::size_t length = ByteAt(view, 2) << 8 | ByteAt(view, 3);
        if (ByteAt(view, 0) != 4 || length < 8) {
            throw std::runtime_error("an answer's packet has a wrong header");
        }
        last = (ByteAt(view, 1) & 1) != 0;
        session_id_ = static_cast<std::uint16_t>(ByteAt(view, 4) << 8 | ByteAt(view, 5));
        packet_lengths_.push_back(length);
        const std::size_t before = data.size();
        data.resize(before + length - 8);
        if (length > 8 && !socket_.ReadExactly(data.data() + before, length - 8, wait)) {
            throw std::runtime_error("the server closed within a packet");
        }
    }
    return data;
}

std::string TdsClient::LogIn(const LoginFields& fields) {
    Send(tds::PacketType::PreLogin, PreLoginMessage());
    Receive();
    Send(tds::PacketType::Login, LoginMessage(fields));
    return Receive().value_or("");
}

std::string TdsClient::Batch(std::string_view sql) {
    Send(tds::PacketType::SqlBatch, BatchMessage(sql));
    return Receive().value_or("");
}

} // namespace devsql::fakes
