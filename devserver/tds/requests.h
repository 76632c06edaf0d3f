// What a logged-in client may ask: a batch, calls of procedures, a step of a transaction. Only reading it.
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
    /// The error of the call after the last of these. A wrong call does not undo the calls before it.
    std::optional<ProtocolError> error;
};

/// The calls of an RPC message. The procedures that clients name by number come with their names.
RpcRequest ParseRpc(std::string_view data, Version version);

/// A step of a transaction as drivers ask for it without a statement.
struct TransactionRequest {
    /// Sets the isolation level that the new transaction asks for; may be empty. A statement of its own:
    /// where it fails, no transaction is begun, since the client believes that there is none.
    std::string isolation;
    std::string statement; ///< the same in T-SQL
    /// What the client is to be told when the transaction has ended by it.
    Environment ended_by = Environment::RollbackTransaction;
    std::string next_isolation;
    std::string next_statement; ///< begins the transaction that is to follow at once; may be empty
};

/// Throws ProtocolError: 4002, 40510 for what is not supported (distributed transactions).
TransactionRequest ParseTransaction(std::string_view data, Version version);

} // namespace devsql::tds
