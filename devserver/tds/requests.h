// Parses the requests of a client that has logged in: a batch, calls of procedures, a step of a transaction.
// Knows nothing of sessions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/engine/engine.h"
#include "devserver/tds/protocol_error.h"
#include "devserver/tds/wire.h"

namespace devsql::tds {

/// The text of a batch, in UTF-8. Throws ProtocolError (4002).
std::string ParseBatch(std::string_view data, Version version);

struct RpcRequest {
    std::vector<RpcCall> calls;
    /// The error of the call that follows them, if it could not be parsed. The calls before it are run all
    /// the same.
    std::optional<ProtocolError> error;
};

/// The calls of an RPC message. Procedures that the client calls by number get their names here. If a
/// call cannot be parsed, its error is in the result and is not thrown.
RpcRequest ParseRpc(std::string_view data, Version version);

/// A step of a transaction that a driver asks for by a message of its own and not by a statement.
struct TransactionRequest {
    /// The T-SQL that sets the isolation level of the new transaction; may be empty. It is run as a statement
    /// of its own: if it fails, no transaction is begun, because the client then assumes that there is none.
    std::string isolation;
    std::string statement; ///< the T-SQL of the step itself
    /// How the transaction has ended, for the client, if the step ends it.
    Environment ended_by = Environment::RollbackTransaction;
    std::string next_isolation; ///< as `isolation`, for the next transaction
    std::string next_statement; ///< begins the next transaction at once; may be empty
};

/// Throws ProtocolError: 4002 if the message is too short, 40510 for distributed transactions.
TransactionRequest ParseTransaction(std::string_view data, Version version);

} // namespace devsql::tds
