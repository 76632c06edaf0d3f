// Serves one client from its first packet to its last: the login, then requests until the client goes.
// The thread of Run reads a request, runs it and answers it. While a request runs, the server's listening
// thread calls Watch again and again, which notices an attention or the end of the client.
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

/// One client. It owns the client's socket and session.
class Connection {
  public:
    /// `refused`: the client gets as far as its login, which fails because there are too many clients.
    /// `engine` must outlive the connection. `login_time` is how long a client may take to log in.
    Connection(Socket socket, Engine& engine, bool refused,
               std::chrono::milliseconds login_time = std::chrono::seconds(30));

    /// Serves the client until it goes, or its session is ended by another one, or Stop is called. Throws
    /// nothing.
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
    /// Reads and answers the prelogin and the login. Returns false if the client is not logged in; it has
    /// then got the error, unless it has gone.
    bool Enter();
    /// Returns nothing if the client has gone, or logs in as before TDS 7.0. Throws ProtocolError.
    std::optional<ClientMessage> ReadLogin(const ReadWait& wait);
    /// Returns false if the engine refuses the login; its error has then been sent. Throws ProtocolError.
    bool LogIn(const ClientMessage& message);
    /// Sends the answer to a login that has succeeded.
    void AnswerLogin(const Login& login, Response& response);
    /// Logs in at the engine as the client asked, with the settings that clients of its kind expect. Returns
    /// null if the login is refused; `sink` has then got the error.
    std::unique_ptr<Session> OpenSession(ResultSink& sink);
    /// Sends an answer that has only this error. Before the client's version is known, it is written in the
    /// latest version of the protocol.
    void Refuse(const ProtocolError& error);

    /// Reads and answers requests until the connection is to end.
    void ServeRequests();
    /// Waits for bytes of the client. Returns false if the connection is to end, also in the middle of a
    /// message.
    bool WaitForInput();
    /// Reads the message that begins with `first`, and answers it. Returns false if the connection is to end.
    bool Serve(ClientPacket first);
    /// Reads the rest of the message and runs it. Throws ProtocolError and ConnectionLost.
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
    /// Lets Watch look at the socket. Called when a message has been read to its end: this thread reads
    /// nothing more before the answer is finished, so the next byte can be that of an attention.
    void BeginWatch();
    /// Ends the watch and the answer. Returns false if the connection is to end.
    bool FinishRequest(Response& response);

    /// True if the client has sent an attention or has gone. Looks at the next byte and leaves it in the
    /// socket.
    bool IsCancelled() const;
    /// Asks the running call to end. The caller holds `mutex_`.
    void CancelRunning();
    Response MakeResponse();

    const Socket socket_;
    Engine& engine_;
    const bool refused_;
    const std::chrono::milliseconds login_time_;
    /// The wait of every read after the login.
    const ReadWait wait_ = [this](const Socket&) { return WaitForInput(); };
    PacketWriter packets_;
    TokenWriter tokens_;
    LoginRequest login_request_;          ///< kept because a reset logs in again
    bool ansi_ = true;                    ///< the client expects the ANSI settings, as ODBC drivers do
    std::uint64_t last_transaction_ = 0;  ///< the number of the last transaction; they count from 1
    std::uint64_t known_transaction_ = 0; ///< the number of the transaction the client believes open, or 0

    std::mutex mutex_;
    /// The thread of Run uses it without the lock. `mutex_` is held to replace it and to cancel it.
    std::unique_ptr<Session> session_;
    bool watched_ = false; ///< a request is running, and its thread does not read; guarded by `mutex_`
    std::atomic<bool> closing_ = false; ///< Stop has been called
    std::atomic<bool> logged_in_ = false;
    std::atomic<bool> cancelled_ = false; ///< the rest of the running request's answer is dropped
};

} // namespace devsql::tds
