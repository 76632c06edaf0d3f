// Fuzzes a whole connection. The first byte of the input chooses the version and whether the client logs in
// before; the rest is the bytes that the client sends, with their packet headers. The engine is the fake of
// the tests.
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

/// The most bytes of an input. All are sent before an answer is read, so more than a socket's buffer would
/// block.
constexpr std::size_t kLongest = 32768;
/// How long to wait for an answer. It comes within microseconds, and an incomplete message gets no answer.
constexpr std::chrono::milliseconds kPatience{3};

void Answer(fakes::FakeSession&, std::string_view sql, ResultSink& sink) {
    sink.Columns({{"text", {TypeId::NVarChar, 4000}}});
    sink.Row({std::string(sql.substr(0, 100))});
    sink.StatementDone(Command::Select, 1, false);
}

/// Returns every parameter as an output parameter, so that every decoded value is also encoded.
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
        // The server has closed the connection.
    }
    client.Shutdown();
    running.join();
    return 0;
}
