// Parses the login message: a fixed part, a table of offsets and lengths, and the texts. See login.h.
#include "devserver/tds/login.h"

#include <array>

#include "devserver/tds/bytes.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql::tds {

namespace {

constexpr std::uint8_t kOdbcFlag = 0x02;           // OptionFlags2
constexpr std::uint8_t kIntegratedFlag = 0x80;     // OptionFlags2
constexpr std::uint8_t kChangePasswordFlag = 0x01; // OptionFlags3
constexpr std::uint8_t kExtensionFlag = 0x10;      // OptionFlags3
constexpr std::uint8_t kFederatedFeature = 0x02;
constexpr std::uint8_t kFeatureTerminator = 0xFF;
/// Names and passwords: the protocol's limit for each text of the login.
constexpr std::size_t kLongestText = 128;
constexpr std::size_t kLongestFileName = 260;
constexpr std::uint32_t kVersion71 = 0x71000000;

ProtocolError BadLogin(const std::string& what) {
    return {error_number::kLoginInvalid, kFatalSeverity,
            "The login packet used to open the connection is structurally invalid (" + what +
                "); the connection has been closed."};
}

struct VersionEntry {
    std::uint32_t least;
    Version version;
};

// A client that knows later versions gets the latest of these.
constexpr std::array<VersionEntry, 6> kVersions{{
    {0x74000000, Version::V74},
    {0x730B0000, Version::V73B},
    {0x730A0000, Version::V73A},
    {0x72000000, Version::V72},
    {0x71000001, Version::V71Revision1},
    {kVersion71, Version::V71},
}};

Version ChooseVersion(std::uint32_t asked) {
    // 8.0 is 0x08000000 and begins with TLS, so no client of it gets here unless it is mistaken.
    for (const VersionEntry& entry : kVersions) {
        if (asked >= entry.least) {
            return entry.version;
        }
    }
    throw BadLogin("TDS 7.1 is the oldest version spoken");
}

/// The texts of the message, each by its offset and its length in UTF-16 units.
class Texts {
  public:
    explicit Texts(std::string_view data) : data_(data) {}

    /// Reads an entry of the table and fetches its bytes.
    std::string_view Bytes(ByteReader& table, const char* what, std::size_t longest = kLongestText) const {
        const std::size_t offset = table.Le<std::uint16_t>();
        const std::size_t units = table.Le<std::uint16_t>();
        if (units > longest) {
            throw BadLogin(std::string(what) + " is too long");
        }
        if (units == 0) {
            return {};
        }
        if (offset > data_.size() || units * 2 > data_.size() - offset) {
            throw BadLogin(std::string(what) + " lies outside");
        }
        return data_.substr(offset, units * 2);
    }

    std::string Text(ByteReader& table, const char* what, std::size_t longest = kLongestText) const {
        return FromUtf16Le(Bytes(table, what, longest));
    }

  private:
    std::string_view data_;
};

/// The client swaps the halves of each byte and then combines it with 0xA5.
std::string Descramble(std::string_view scrambled) {
    std::string clear;
    clear.reserve(scrambled.size());
    for (const char character : scrambled) {
        const auto byte = static_cast<std::uint8_t>(static_cast<std::uint8_t>(character) ^ 0xA5U);
        AppendByte(clear, static_cast<std::uint8_t>(byte << 4 | byte >> 4));
    }
    return clear;
}

/// Reads the list of features that the client asks for. No feature is acknowledged, so the client knows that
/// the server does not have them. Only a login by a federated token must be refused. Throws ProtocolError.
void CheckFeatures(std::string_view data, std::size_t pointer_offset) {
    if (pointer_offset > data.size()) {
        throw BadLogin("the extension lies outside");
    }
    ByteReader pointer(data.substr(pointer_offset));
    const std::size_t offset = pointer.Le<std::uint32_t>();
    if (offset > data.size()) {
        throw BadLogin("the features lie outside");
    }
    ByteReader features(data.substr(offset));
    for (std::uint8_t id = features.Byte(); id != kFeatureTerminator; id = features.Byte()) {
        if (id == kFederatedFeature) {
            throw ProtocolError(error_number::kNotSupported, kRequestSeverity,
                                "Federated authentication is not supported by this development server.");
        }
        features.Take(features.Le<std::uint32_t>());
    }
}

struct Flags {
    std::uint8_t second; ///< OptionFlags2
    std::uint8_t third;  ///< OptionFlags3
};

void RefuseWhatIsNotOffered(const Flags& flags) {
    if ((flags.second & kIntegratedFlag) != 0) {
        throw ProtocolError(error_number::kLoginUntrusted, 14,
                            "Login failed. The login is from an untrusted domain and cannot be used with "
                            "Windows authentication.");
    }
    if ((flags.third & kChangePasswordFlag) != 0) {
        throw ProtocolError(error_number::kNotSupported, kRequestSeverity,
                            "Changing the password while logging in is not supported by this development "
                            "server.");
    }
}

/// Reads the table of texts, which begins with the host name, into `login`.
void ParseTexts(ByteReader& table, std::string_view data, const Flags& flags, Login& login) {
    const Texts texts(data);
    login.host_name = texts.Text(table, "the host name");
    login.user = texts.Text(table, "the user name");
    login.password = FromUtf16Le(Descramble(texts.Bytes(table, "the password")));
    login.application = texts.Text(table, "the application name");
    // FreeTDS sends "HOST,PORT" with a NUL inside. The name is not used, so this does no harm.
    login.server = texts.Text(table, "the server name", kLongestFileName);
    const std::size_t extension = table.Le<std::uint16_t>();
    const std::size_t extension_length = table.Le<std::uint16_t>();
    if ((flags.third & kExtensionFlag) != 0 && login.version >= Version::V74 && extension_length >= 4) {
        CheckFeatures(data, extension);
    }
    login.library = texts.Text(table, "the library name");
    login.language = texts.Text(table, "the language");
    login.database = texts.Text(table, "the database name");
    table.Take(6); // the network card's number
}

Login ParseFields(std::string_view data, Version& version) {
    ByteReader reader(data);
    const std::size_t length = reader.Le<std::uint32_t>();
    if (length > data.size()) {
        throw BadLogin("its length is wrong");
    }
    Login login;
    login.version = version = ChooseVersion(reader.Le<std::uint32_t>());
    login.packet_size = reader.Le<std::uint32_t>();
    reader.Take(12); // the client program's version, its process, the connection's number
    reader.Take(1);  // OptionFlags1: byte order and character set of machines that no longer exist
    Flags flags{};
    flags.second = reader.Byte();
    reader.Take(1); // TypeFlags
    flags.third = reader.Byte();
    reader.Take(8); // time zone and locale
    login.odbc = (flags.second & kOdbcFlag) != 0;
    RefuseWhatIsNotOffered(flags);
    ParseTexts(reader, data.substr(0, length), flags, login);
    return login;
}

} // namespace

Login ParseLogin(std::string_view data, Version& version) {
    try {
        return ParseFields(data, version);
    } catch (const ProtocolError& error) {
        if (error.number() == error_number::kStreamEnded) {
            throw BadLogin("it ends too early");
        }
        throw;
    }
}

} // namespace devsql::tds
