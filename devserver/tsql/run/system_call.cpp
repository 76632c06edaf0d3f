// Gives a system procedure its parameters, and runs T-SQL for it.
#include "devserver/tsql/run/system_call.h"

#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

const Variable& SystemCall::Find(std::string_view name) const {
    return frame_.variables.find(ToUpper(name))->second;
}

bool SystemCall::IsNull(std::string_view name) const {
    return devsql::IsNull(Find(name).value);
}

std::string SystemCall::Text(std::string_view name) const {
    const Variable& variable = Find(name);
    return devsql::IsNull(variable.value) ? std::string() : ValueText(variable.value, variable.type);
}

std::int64_t SystemCall::Int(std::string_view name, std::int64_t otherwise) const {
    const Variable& variable = Find(name);
    return devsql::IsNull(variable.value)
               ? otherwise
               : std::get<std::int64_t>(Convert(variable.value, variable.type, Simple(TypeId::BigInt)));
}

void SystemCall::Set(std::string_view name, Value value) {
    frame_.variables.find(ToUpper(name))->second.value = std::move(value);
}

void SystemCall::Run(std::string_view sql, const std::vector<std::string>& values) {
    Frame frame;
    frame.database = session().databases().CurrentName();
    frame.procedure = session().calls().frame().procedure;
    int number = 1;
    for (const std::string& value : values) {
        frame.variables["@P" + std::to_string(number++)] = {Sized(TypeId::NVarChar, kMaxLength), value};
    }
    interpreter_.RunText(sql, frame);
}

} // namespace devsql
