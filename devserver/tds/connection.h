// Serves one client from its first packet to its last: the login, then requests until the client goes.
// One thread reads a request and runs it. While it runs, another one asks from time to time whether the
// client has sent an attention or has gone.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

#include "devserver/engine/engine.h"
#include "devserver/tds/login.h"
#include "devserver/tds/packets.h"
#include "devserver/tds/requests.h"
#include "devserver/tds/response.h"
#include "devserver/tds/socket.h"
#include "devserver/tds/tokens.h"

namespace devsql::tds {

class Connection {
  public:
    /// `refused`: the client gets as far as its login, which fails because there are too many clients.
    /// `engine` must outlive the connection. `login_time` is how long a client may take to log in.
    Connection(Socket socket, Engine& engine, bool refused,
               std::chrono::milliseconds login_time = std::chrono::seconds(30));

    /// Serves the client until it goes or is thrown out. Throws nothing.
    void Run();
    /// Cancels the running request if the client has sent an attention or has gone, or after Stop. Must be
    /// repeated, because the request may have begun just after it was cancelled. Returns true if a request is
    /// running. May be called from any thread.
    bool Watch();
    /// Ends the connection soon. A request that is running is ended by Watch. May be called from any thread.
    void Stop();
    /// True after the login. May be called from any thread.
    bool logged_in() const { return logged_in_; }

  private:
    /// Reads and answers the prelogin and the login. False if the client is not logged in.
    bool Enter();
    std::optional<ClientMessage> ReadLogin(const ReadWait& wait);
    bool LogIn(const ClientMessage& message);
    void AnswerLogin(const Login& login, Response& response);
    /// Logs in as the client asked, with the settings that its kind expects; null when refused.
    std::unique_ptr<Session> OpenSession(ResultSink& sink);
    /// Sends an answer that holds this error alone. It is written in the latest protocol version
    /// as long as the client's version is not known.
    void Refuse(const ProtocolError& error);

    void ServeRequests();
    /// Waits for bytes; false when the connection is to end, be it within a message.
    bool WaitForInput();
    /// Reads the message that begins with `first` and answers it. False when the connection is to end.
    bool Serve(ClientPacket first);
    void RunRequest(ClientPacket first, Response& response);
    void RunBatch(const ClientMessage& message, Response& response);
    void RunCalls(const ClientMessage& message, Response& response);
    void RunBulk(ClientPacket first, Response& response);
    void RunTransaction(const ClientMessage& message, Response& response);
    /// Sets the isolation level for the next transaction. Returns false if that fails; the error has then
    /// been sent to the client.
    bool SetIsolation(const std::string& statement, Response& response);
    /// Gives the client a new session if `first_status` asks for it. Returns false if that fails; the error
    /// has then been sent.
    bool ResetIfAsked(std::uint8_t first_status, Response& response);
    /// Tells the client that a transaction has begun or ended, if it does not know: its driver sends commit
    /// and rollback only while it knows of a transaction. `ended_by` says how it ended, if it ended.
    void TellTransaction(Response& response, Environment ended_by);
    /// The message has been read to its end: what comes next is an attention, or the end of the client.
    void BeginWatch();
    /// Ends the answer. False when the connection is to end.
    bool FinishRequest(Response& response);

    /// The client has sent an attention or has gone.
    bool IsCancelled() const;
    /// Asks the running call to end. `mutex_` is held.
    void CancelRunning();
    Response MakeResponse();

    const Socket socket_;
    Engine& engine_;
    const bool refused_;
    const std::chrono::milliseconds login_time_;
    const ReadWait wait_ = [this](const Socket&) { return WaitForInput(); };
    PacketWriter packets_;
    TokenWriter tokens_;
    LoginRequest login_request_;
    bool ansi_ = true;                    ///< the client expects the ANSI settings, as ODBC drivers do
    std::uint64_t last_transaction_ = 0;  ///< the number of the last transaction; they count from 1
    std::uint64_t known_transaction_ = 0; ///< the number of the transaction the client believes open, or 0

    std::mutex mutex_;
    /// The thread of Run uses it without the lock. `mutex_` is held to replace it and to cancel it.
    std::unique_ptr<Session> session_;
    bool watched_ = false; ///< a request is being run, and nobody reads; under `mutex_`
    std::atomic<bool> closing_ = false;
    std::atomic<bool> logged_in_ = false;
    std::atomic<bool> cancelled_ = false; ///< the running request's output is not wanted any more
};

} // namespace devsql::tds
