// libFuzzer's way into a whole connection: the input is what a client sends, packets and all, before or
// after its login. The language is that of the tests.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <thread>

#include "devserver/tds/connection.h"
#include "devserver/tests/tds/client.h"
#include "devserver/tests/tds/fake_engine.h"
#include "devserver/tests/tds/running_server.h"

namespace {

using namespace devsql;

/// What a client may send before it waits for an answer; more than a socket's buffer would stop the harness.
constexpr std::size_t kLongest = 32768;
/// An answer comes within microseconds; bytes that are no whole message get none.
constexpr std::chrono::milliseconds kPatience{3};

void Answer(fakes::FakeSession&, std::string_view sql, ResultSink& sink) {
    sink.Columns({{"text", {TypeId::NVarChar, 4000}}});
    sink.Row({std::string(sql.substr(0, 100))});
    sink.StatementDone(Command::Select, 1, false);
}

/// Every parameter comes back as an output parameter, so that what was decoded is encoded again.
void Echo(fakes::FakeSession&, const RpcCall& call, ResultSink& sink) {
    for (const RpcParameter& parameter : call.parameters) {
        sink.OutputParameter(parameter.name, parameter.type, parameter.value);
    }
    sink.ReturnStatus(0);
}

void DropAnswer(const tds::Socket& client) {
    std::array<char, tds::kHeaderSize> header{};
    for (bool last = false; !last && client.WaitReadable(kPatience);) {
        if (!client.ReadExactly(header.data(), header.size())) {
            return;
        }
        const auto high = static_cast<std::uint8_t>(header[2]);
        const auto low = static_cast<std::uint8_t>(header[3]);
        std::string body(static_cast<std::size_t>(high << 8 | low) - tds::kHeaderSize, '\0');
        client.ReadExactly(body.data(), body.size());
        last = (static_cast<std::uint8_t>(header[1]) & tds::packet_status::kEndOfMessage) != 0;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    if (size < 2 || size > kLongest) {
        return 0;
    }
    fakes::FakeEngine engine;
    engine.script.on_batch = Answer;
    engine.script.on_call = Echo;
    auto [client, server] = fakes::SocketPair();
    tds::Connection connection(std::move(server), engine, false);
    std::thread running([&connection] { connection.Run(); });
    const bool logs_in = bytes[0] % 2 == 0;
    try {
        if (logs_in) {
            fakes::LoginFields login;
            login.version = bytes[0] >= 128 ? 0x71000001 : 0x74000004;
            client.Write(fakes::Packets(static_cast<std::uint8_t>(tds::PacketType::Login),
                                        fakes::LoginMessage(login)));
            DropAnswer(client);
        }
        client.Write({reinterpret_cast<const char*>(bytes + 1), size - 1});
        DropAnswer(client);
    } catch (const tds::ConnectionLost&) {
        // The server has had enough of this client.
    }
    client.Shutdown();
    running.join();
    return 0;
}
