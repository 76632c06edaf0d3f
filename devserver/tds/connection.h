// Serves one client from its first packet to its last: the login, then requests until the client goes.
// There are two threads: one reads, so that it notices an attention or the end of the client while the other
// runs a request.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
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
    /// Ends the connection soon, even while it runs a request. May be called from any thread.
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

    // Called by the reading thread.
    void ReadRequests();
    /// Waits for bytes; false when the connection is to end, be it within a message.
    bool WaitForInput();
    /// Reads the message that begins with `first` and hands it to the working thread. False when the
    /// connection is to end.
    bool ReadRequest(ClientPacket first);
    /// As ReadRequest, for the rows of a bulk load: the working thread gets them packet by packet.
    bool ReadBulk(ClientPacket first);
    /// Hands a message to the working thread; an attention cancels the running request. False when the
    /// connection is to end.
    bool Deliver(ClientMessage message);
    /// Ends the running request and the working thread, and waits for the thread's end. A worker that does
    /// not stop in time is freed by shutting the socket down.
    void EndWork();

    // Called by the working thread.
    void Work();
    /// Answers one message. False when the connection is to end.
    bool Serve(const ClientMessage& message);
    void RunRequest(const ClientMessage& message, Response& response);
    void RunBatch(const ClientMessage& message, Response& response);
    void RunCalls(const ClientMessage& message, Response& response);
    void RunBulk(const ClientMessage& message, Response& response);
    void RunTransaction(const ClientMessage& message, Response& response);
    /// Sets the isolation level for the next transaction. Returns false if that fails; the error has then
    /// been sent to the client.
    bool SetIsolation(const std::string& statement, Response& response);
    bool ResetSession(Response& response);
    /// Tells the client that a transaction has begun or ended, if it does not know: its driver sends commit
    /// and rollback only while it knows of a transaction. `ended_by` says how it ended, if it ended.
    void TellTransaction(Response& response, Environment ended_by);
    bool FinishRequest(Response& response);

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
    std::condition_variable changed_;
    /// The working thread uses it without the lock. `mutex_` is held to replace it, to cancel it and to ask
    /// whether it has ended.
    std::unique_ptr<Session> session_;
    std::deque<ClientMessage> waiting_; ///< at most one
    bool busy_ = false;                 ///< a request is being run
    bool attention_ = false;            ///< an attention of the client is not acknowledged yet
    bool closing_ = false;
    bool work_ended_ = false;
    std::atomic<bool> logged_in_ = false;
    std::atomic<bool> cancelled_ = false; ///< the running request's output is not wanted any more
};

} // namespace devsql::tds
