// Passes the call of a user's function on to the interpreter, which the server knows as UserFunctions.
#include "devserver/tsql/session/user_functions.h"

#include "devserver/tsql/session/server.h"
#include "devserver/tsql/session/session_core.h"
#include "devserver/tsql/session/session_function.h"

namespace devsql {
namespace {

Value CallByNumber(SessionCore& session, std::span<const Value> values, std::span<const Type> types) {
    constexpr std::size_t kLeading = 2;
    const std::string& database = std::get<std::string>(values[0]);
    const std::optional<ObjectDef> function =
        session.databases().Get(database).FindObject(std::get<std::int64_t>(values[1]));
    return session.server().functions().Call(session, database, function.value(), values.subspan(kLeading),
                                             types.subspan(kLeading));
}

} // namespace

const SessionFunction& UserFunctionCall() {
    static constexpr SessionFunction kCall{"", 2, 1024, {}, CallByNumber, false};
    return kCall;
}

} // namespace devsql
