// Writes each token in its layout. See tokens.h.
#include "devserver/tds/tokens.h"

#include <algorithm>

#include "devserver/tds/bytes.h"
#include "devserver/tds/server_version.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql::tds {

namespace {

/// The most UTF-16 units of a message's text. The whole token, with the names in it, is then below its limit
/// of 65535 bytes.
constexpr std::size_t kLongestMessage = 32000;
constexpr std::size_t kLongestName = 128;
/// Clients choose the dialect that they send by this name, so it must be exactly this one.
constexpr std::string_view kProgramName = "Microsoft SQL Server";
constexpr std::uint8_t kTransactSql = 1;
constexpr std::uint16_t kNullableFlag = 0x0001;
constexpr std::uint16_t kUpdatableUnknownFlag = 0x0008;
constexpr std::uint16_t kIdentityFlag = 0x0010;
constexpr std::uint8_t kOutputParameter = 0x01;

/// Appends the text in UTF-16, with the number of its units in one byte before it.
void AppendShortText(std::string& out, std::string_view text, std::size_t longest = kLongestName) {
    const std::string wide = ToUtf16Le(text);
    const std::size_t units = std::min(wide.size() / 2, longest);
    AppendByte(out, static_cast<std::uint8_t>(units));
    out.append(wide, 0, units * 2);
}

/// The same with the number in two bytes.
void AppendLongText(std::string& out, std::string_view text, std::size_t longest) {
    const std::string wide = ToUtf16Le(text);
    const std::size_t units = std::min(wide.size() / 2, longest);
    AppendLe(out, static_cast<std::uint16_t>(units));
    out.append(wide, 0, units * 2);
}

std::string ShortText(std::string_view text) {
    std::string out;
    AppendShortText(out, text);
    return out;
}

/// The bytes with their number in one byte before them.
std::string ShortBytes(std::string_view bytes) {
    std::string out;
    AppendByte(out, static_cast<std::uint8_t>(bytes.size()));
    out += bytes;
    return out;
}

/// The number of the version in LOGINACK, whose bytes are not in the order of the login message.
std::uint32_t VersionNumber(Version version) {
    switch (version) {
    case Version::V71:
        return 0x07010000;
    case Version::V71Revision1:
        return 0x71000001;
    case Version::V72:
        return 0x72090002;
    case Version::V73A:
        return 0x730A0003;
    case Version::V73B:
        return 0x730B0003;
    case Version::V74:
        return 0x74000004;
    }
    return 0;
}

} // namespace

void TokenWriter::WriteCounted(std::uint8_t token, std::string_view body) {
    std::string head;
    AppendByte(head, token);
    AppendLe(head, static_cast<std::uint16_t>(body.size()));
    packets_.Append(head);
    packets_.Append(body);
}

void TokenWriter::WriteEnvironment(Environment change, std::string_view new_value,
                                   std::string_view old_value) {
    std::string body;
    AppendByte(body, static_cast<std::uint8_t>(change));
    body += new_value;
    body += old_value;
    WriteCounted(token::kEnvironmentChange, body);
}

void TokenWriter::WriteMessage(const Message& message) {
    constexpr std::uint8_t kFirstErrorSeverity = 11;
    // Severity 10 is sent as 0, as SQL Server does, because some clients take 10 for an error.
    constexpr std::uint8_t kInformation = 10;
    std::string body;
    AppendLe(body, static_cast<std::uint32_t>(message.number));
    AppendByte(body, message.state);
    AppendByte(body, message.severity == kInformation ? std::uint8_t{0} : message.severity);
    AppendLongText(body, message.text, kLongestMessage);
    AppendShortText(body, server_name_);
    AppendShortText(body, message.procedure);
    if (Has72(version_)) {
        AppendLe(body, static_cast<std::uint32_t>(message.line));
    } else {
        AppendLe(body, static_cast<std::uint16_t>(std::clamp(message.line, 0, 0xFFFF)));
    }
    WriteCounted(message.severity >= kFirstErrorSeverity ? token::kError : token::kInfo, body);
}

void TokenWriter::WriteLoginAck() {
    std::string body;
    AppendByte(body, kTransactSql);
    AppendBe(body, VersionNumber(version_));
    AppendShortText(body, kProgramName);
    AppendByte(body, kServerMajor);
    AppendByte(body, kServerMinor);
    AppendBe(body, kServerBuild);
    WriteCounted(token::kLoginAck, body);
}

void TokenWriter::WriteDatabaseChange(std::string_view from, std::string_view to) {
    WriteEnvironment(Environment::Database, ShortText(to), ShortText(from));
}

void TokenWriter::WriteLanguage(std::string_view language) {
    WriteEnvironment(Environment::Language, ShortText(language), ShortText({}));
}

void TokenWriter::WriteCollation() {
    const std::string collation(std::begin(kCollation), std::end(kCollation));
    WriteEnvironment(Environment::Collation, ShortBytes(collation), ShortBytes({}));
}

void TokenWriter::WritePacketSize(std::size_t from, std::size_t to) {
    WriteEnvironment(Environment::PacketSize, ShortText(std::to_string(to)), ShortText(std::to_string(from)));
}

void TokenWriter::WriteTransaction(Environment change, std::uint64_t transaction) {
    std::string number;
    AppendLe(number, transaction);
    const bool begins = change == Environment::BeginTransaction;
    WriteEnvironment(change, ShortBytes(begins ? number : std::string()),
                     ShortBytes(begins ? std::string() : number));
}

void TokenWriter::WriteResetAcknowledged() {
    WriteEnvironment(Environment::ResetAcknowledged, ShortBytes({}), ShortBytes({}));
}

void TokenWriter::AppendUserType(std::uint32_t user_type) {
    if (Has72(version_)) {
        AppendLe(buffer_, user_type);
    } else {
        AppendLe(buffer_, static_cast<std::uint16_t>(user_type));
    }
}

void TokenWriter::WriteColumns(const std::vector<Column>& columns) {
    encoders_.clear();
    buffer_.clear();
    AppendByte(buffer_, token::kColumnMetadata);
    AppendLe(buffer_, static_cast<std::uint16_t>(columns.size()));
    for (const Column& column : columns) {
        const TypeEncoder& encoder = encoders_.emplace_back(column.type, version_);
        AppendUserType(encoder.UserType());
        AppendLe(buffer_,
                 static_cast<std::uint16_t>((column.nullable ? kNullableFlag : 0) |
                                            (column.identity ? kIdentityFlag : 0) | kUpdatableUnknownFlag));
        encoder.AppendTypeInfo(buffer_);
        if (encoder.HasTableName()) {
            // The table is not known here. Before 7.2 that is an empty name, since 7.2 a list of 0 parts.
            if (Has72(version_)) {
                AppendByte(buffer_, 0);
            } else {
                AppendLe(buffer_, std::uint16_t{0});
            }
        }
        AppendShortText(buffer_, column.name);
    }
    packets_.Append(buffer_);
}

void TokenWriter::WriteRow(const std::vector<Value>& values) {
    if (values.size() != encoders_.size()) {
        throw EncodingError("a row of " + std::to_string(values.size()) + " values came for " +
                            std::to_string(encoders_.size()) + " columns");
    }
    buffer_.clear();
    AppendByte(buffer_, token::kRow);
    for (std::size_t i = 0; i < values.size(); ++i) {
        encoders_[i].AppendValue(buffer_, values[i]);
    }
    packets_.Append(buffer_);
}

void TokenWriter::WriteDone(DoneToken token, std::uint16_t status, Command command, std::int64_t rows) {
    buffer_.clear();
    AppendByte(buffer_, static_cast<std::uint8_t>(token));
    AppendLe(buffer_, status);
    AppendLe(buffer_, static_cast<std::uint16_t>(command));
    if (Has72(version_)) {
        AppendLe(buffer_, static_cast<std::uint64_t>(rows));
    } else {
        AppendLe(buffer_, static_cast<std::uint32_t>(rows));
    }
    packets_.Append(buffer_);
}

void TokenWriter::WriteReturnStatus(std::int32_t status) {
    buffer_.clear();
    AppendByte(buffer_, token::kReturnStatus);
    AppendLe(buffer_, static_cast<std::uint32_t>(status));
    packets_.Append(buffer_);
}

void TokenWriter::WriteReturnValue(std::uint16_t ordinal, std::string_view name, const Type& type,
                                   const Value& value) {
    const TypeEncoder encoder(type, version_);
    buffer_.clear();
    AppendByte(buffer_, token::kReturnValue);
    AppendLe(buffer_, ordinal);
    AppendShortText(buffer_, name);
    AppendByte(buffer_, kOutputParameter);
    AppendUserType(encoder.UserType());
    AppendLe(buffer_, kNullableFlag);
    encoder.AppendTypeInfo(buffer_);
    encoder.AppendValue(buffer_, value);
    packets_.Append(buffer_);
}

} // namespace devsql::tds
