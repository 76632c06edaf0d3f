#include "devserver/tsql/scalar/errors.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "devserver/tsql/scalar/messages_linked.h"

namespace devsql {
namespace {

constexpr std::array<MessageTemplate, 46> kOwnMessages = {{
    {321, 15,
     "\"%1\" is not a recognized table hints option. If it is intended as a parameter to a table-valued "
     "function or to the CHANGETABLE function, ensure that your database compatibility mode is set to 90."},
    {1222, 16, "Lock request time out period exceeded."},
    {8623, 16,
     "The query processor ran out of internal resources and could not produce a query plan. This is a rare "
     "event "
     "and only expected for extremely complex queries. Please simplify the query."},
    {8624, 16, "Internal error of the development server: %1"},
    {420, 16, "The %1 data type cannot be used in an ORDER BY clause."},
    {596, 21, "Cannot continue the execution because the session is in the kill state."},
    {628, 16, "Cannot issue SAVE TRANSACTION when there is no active transaction."},
    {952, 16, "Database '%1' is in transition. Try the statement later."},
    {1088, 16, "Cannot find the object \"%1\" because it does not exist or you do not have permissions."},
    {1105, 17,
     "Could not allocate space for object '%1' in database '%2' because the '%3' filegroup is full."},
    {2010, 16, "Cannot perform alter on '%1' because it is an incompatible object type."},
    {7997, 16, "'%1' does not contain an identity column."},
    {7998, 10, "Checking identity information: current identity value '%1', current column value '%2'."},
    {8161, 15,
     "Argument 1 of the GROUPING function does not match any of the expressions in the GROUP BY clause."},
    {15135, 16,
     "Object is invalid. Extended properties are not permitted on '%1', or the object does not exist."},
    {15043, 16, "You must specify 'REPLACE' to overwrite an existing message."},
    {15179, 16, "The message number %1 or specified language version does not exist."},
    {15217, 16, "Property cannot be updated or deleted. Property '%1' does not exist for '%2'."},
    {15233, 16, "Property cannot be added. Property '%1' already exists for '%2'."},
    {15252, 16, "The primary or foreign key table name must be given."},
    {9002, 17, "The transaction log for database '%1' is full due to '%2'."},
    {10704, 15, "To rethrow an error, a THROW statement must be used inside a CATCH block."},
    {10734, 15,
     "Variable assignment is not allowed in a statement containing a top level UNION, INTERSECT or EXCEPT "
     "operator."},
    {10705, 16, "Subqueries are not allowed in the OUTPUT clause."},
    {10741, 15, "A TOP can not be used in the same query or sub-query as a OFFSET."},
    {10742, 15, "The offset specified in a OFFSET clause may not be negative."},
    {10744, 15, "The number of rows provided for a FETCH clause must be greater then zero."},
    {10753, 15, "The function '%1' must have an OVER clause."},
    {1062, 16, "The TOP N WITH TIES clause is not allowed without a corresponding ORDER BY clause."},
    {310, 15, "The value %1 specified for the MAXRECURSION option exceeds the allowed maximum of 32767."},
    {2526, 16, "Incorrect DBCC statement. Check the documentation for the correct DBCC syntax and options."},
    {4920, 16, "ALTER TABLE failed because trigger '%1' on table '%2' does not exist."},
    {15048, 16, "Valid values of the database compatibility level are %1."},
    {15054, 10, "The current compatibility level is %1."},
    {14043, 16, "The parameter %1 cannot be NULL."},
    {14261, 16, "The specified %1 ('%2') already exists."},
    {15150, 16, "Cannot drop the %1 '%2'."},
    {15241, 16, "Usage: sp_dboption [dbname [, optname [, 'true' | 'false']]]"},
    {15325, 16, "The current database does not contain a file named '%1'."},
    {15600, 15, "An invalid parameter or option was specified for procedure '%1'."},
    {15471, 10, "The text for object '%1' is encrypted."},
    {14590, 16,
     "DTS Package '%1' already exists with a different ID in this category or with this version (%2)."},
    {15472, 10, "The object '%1' does not have any indexes, or you do not have permissions."},
    {18054, 16,
     "Error %1, severity %2, state %3 was raised, but no message with that error number was found in "
     "sys.messages."},
    {40510, 16, "Statement '%1' is not supported in this version of SQL Server."},
    {40517, 16, "Keyword or statement option '%1' is not supported in this version of SQL Server."},
}};

/// What the message table doesn't have.
const MessageTemplate* FindOwn(std::int32_t number) {
    for (const std::span<const MessageTemplate> list :
         {std::span<const MessageTemplate>(kOwnMessages), LinkedMessages()}) {
        const auto found = std::ranges::find(list, number, &MessageTemplate::number);
        if (found != list.end()) {
            return &*found;
        }
    }
    return nullptr;
}

template <class Arguments>
std::string PutIn(std::string_view text, const Arguments& arguments) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9') {
            const auto index = static_cast<std::size_t>(text[++i] - '1');
            result += index < arguments.size() ? std::string_view(*(arguments.begin() + index))
                                               : std::string_view();
        } else {
            result += text[i];
        }
    }
    return result;
}

} // namespace

SqlError ErrorOf(std::int32_t number, std::initializer_list<std::string_view> arguments, std::uint8_t state) {
    if (FindMessage(number) == nullptr) {
        if (const MessageTemplate* own = FindOwn(number)) {
            return SqlError(number, own->severity, state, PutIn(own->text, arguments));
        }
    }
    return MakeError(number, arguments, state);
}

void RaiseError(std::int32_t number, std::initializer_list<std::string_view> arguments, std::uint8_t state) {
    throw ErrorOf(number, arguments, state);
}

const MessageTemplate* FindTemplate(std::int32_t number) {
    const MessageTemplate* found = FindMessage(number);
    return found == nullptr ? FindOwn(number) : found;
}

std::string Filled(std::string_view text, const std::vector<std::string>& arguments) {
    return PutIn(text, arguments);
}

std::vector<const MessageTemplate*> AllTemplates() {
    std::vector<const MessageTemplate*> all;
    for (const std::span<const MessageTemplate> list :
         {AllMessages(), std::span<const MessageTemplate>(kOwnMessages), LinkedMessages()}) {
        for (const MessageTemplate& message : list) {
            if (FindTemplate(message.number) == &message) { // A number stands once.
                all.push_back(&message);
            }
        }
    }
    return all;
}

} // namespace devsql
