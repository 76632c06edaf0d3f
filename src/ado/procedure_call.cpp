// Makes the text of a call and binds its values.
#include "ado/procedure_call.h"

#include <algorithm>
#include <utility>

#include "ado/ado_types.h"
#include "ado/error_numbers.h"
#include "ado/odbc_values.h"
#include "ado/parameter_value.h"

namespace ado {
namespace {

/// The size of the buffer for an output value of a type without a limit, in characters or bytes.
constexpr std::int32_t kMaxOutput = 1024 * 1024;

bool IsOutput(const Parameter& parameter) {
    return parameter.Direction() != adParamInput && parameter.Direction() != adParamUnknown;
}

/// True if the parameter is left out of the call, so that the procedure's default applies. Output parameters
/// are never left out: they seldom have a default, and without one the server refuses the call.
bool IsLeftToDefault(const Parameter& parameter) {
    return parameter.Value().IsEmpty() && !IsOutput(parameter);
}

odbc::Direction DirectionOf(const Parameter& parameter) {
    if (!IsOutput(parameter)) {
        return odbc::Direction::Input;
    }
    return parameter.Direction() == adParamInputOutput ? odbc::Direction::InputOutput
                                                       : odbc::Direction::Output;
}

/// Returns the description of a parameter for the driver, without the value.
odbc::Parameter Bound(const Parameter& parameter) {
    const AdoType& type = AdoTypeOf(parameter.Type());
    odbc::Parameter bound;
    bound.type = type.sql_type;
    bound.direction = DirectionOf(parameter);
    const bool decimal = type.kind == TypeKind::Decimal;
    bound.size = decimal ? parameter.Precision()
                         : static_cast<std::size_t>(std::clamp(parameter.Size(), 0, kMaxOutput));
    bound.decimal_digits = decimal ? parameter.NumericScale() : std::int16_t{0};
    return bound;
}

odbc::Parameter TextInput(std::string text) {
    odbc::Parameter bound;
    bound.type = odbc::SqlType::WVarChar;
    bound.value = std::move(text);
    return bound;
}

/// True if the call has a parameter after one that is left out.
bool HasGap(const std::vector<Parameter>& parameters) {
    const auto gap = std::ranges::find_if(parameters, IsLeftToDefault);
    return std::any_of(gap, parameters.end(), [](const Parameter& parameter) {
        return !IsLeftToDefault(parameter) && parameter.Direction() != adParamReturnValue;
    });
}

} // namespace

ProcedureCall::ProcedureCall(const std::string& procedure, std::vector<Parameter>& parameters,
                             const platform::LocaleForms& forms) {
    for (Parameter& parameter : parameters) {
        if (!IsLeftToDefault(parameter)) {
            AddMarker(parameter, forms);
        }
    }
    // In every form of a call the marker of the return value comes first.
    std::stable_partition(marked_.begin(), marked_.end(), [](const Marked& marked) {
        return marked.parameter->Direction() == adParamReturnValue;
    });
    if (HasGap(parameters)) {
        MakeCallByName(procedure);
    } else {
        text_ = CallText(procedure, parameters);
    }
}

void ProcedureCall::AddMarker(Parameter& parameter, const platform::LocaleForms& forms) {
    Marked marked{&parameter, Bound(parameter)};
    try {
        if (marked.bound.direction != odbc::Direction::Output) {
            marked.bound.value = TypedValue(parameter, forms);
        }
    } catch (const ValueRefused& refused) {
        refusals_.push_back(RefusalOf(refused.SqlState(), refused.what()));
    }
    marked_.push_back(std::move(marked));
}

std::string ProcedureCall::CallText(const std::string& procedure, std::vector<Parameter>& parameters) const {
    const bool returns = std::ranges::any_of(
        parameters, [](const Parameter& parameter) { return parameter.Direction() == adParamReturnValue; });
    std::string markers;
    for (std::size_t i = returns ? 1 : 0; i < marked_.size(); ++i) {
        markers += markers.empty() ? "?" : ",?";
    }
    return std::string(returns ? "{? = call " : "{call ") + procedure +
           (markers.empty() ? "" : "(" + markers + ")") + "}";
}

/// ODBC's own form for a parameter that is left out before another one is "(?,,?)". But FreeTDS sends it as a
/// parameter of the type without data, which a server may refuse (8009), and it ignores names of parameters.
/// So the call is run by sp_executesql, which also returns output values and the return value.
void ProcedureCall::MakeCallByName(const std::string& procedure) {
    std::string result;
    std::string arguments;
    std::string declarations;
    std::string markers = "?,?";
    for (std::size_t i = 0; i < marked_.size(); ++i) {
        const Parameter& parameter = *marked_[i].parameter;
        const std::string name = "@p" + std::to_string(i + 1);
        const char* const output = IsOutput(parameter) ? " output" : "";
        if (parameter.Direction() == adParamReturnValue) {
            result = name + " = ";
        } else {
            arguments += (arguments.empty() ? " " : ", ") + parameter.Name() + " = " + name + output;
        }
        declarations += (declarations.empty() ? "" : ", ") + name + " " + DeclarationOf(parameter) + output;
        markers += ",?";
    }
    leading_ = {TextInput("exec " + result + procedure + arguments), TextInput(declarations)};
    text_ = "{call sp_executesql(" + markers + ")}";
}

void ProcedureCall::Start(odbc::Statement& statement) const {
    std::uint16_t position = 0;
    for (const odbc::Parameter& leading : leading_) {
        statement.Bind(++position, leading);
    }
    for (const Marked& marked : marked_) {
        statement.Bind(++position, marked.bound);
    }
    statement.ExecDirect(text_);
}

void ProcedureCall::TakeOutput(const odbc::Statement& statement) const {
    auto position = static_cast<std::uint16_t>(leading_.size());
    for (const Marked& marked : marked_) {
        ++position;
        if (IsOutput(*marked.parameter)) {
            odbc::Value value = statement.ParameterValue(position);
            marked.parameter->Value(VariantOf(AdoTypeOf(marked.parameter->Type()).sql_type, value));
        }
    }
}

} // namespace ado
