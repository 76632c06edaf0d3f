// The call of a stored procedure as a statement: its text and the values of its markers. Internal to the
// layer.
#pragma once

#include <string>
#include <vector>

#include "ado/errors.h"
#include "ado/parameter.h"
#include "odbc/odbc.h"
#include "platform/locale.h"

namespace ado {

class ProcedureCall {
  public:
    /// Converts the input values. `parameters` must outlive the call.
    ProcedureCall(const std::string& procedure, std::vector<Parameter>& parameters,
                  const platform::LocaleForms& forms);

    /// An entry for each value that does not fit its parameter's type. If there is one, the call must not be
    /// started.
    const std::vector<Error>& Refusals() const { return refusals_; }
    void Start(platform::odbc::Statement& statement) const;
    /// Stores the output values in the parameters. To be called after the last result.
    void TakeOutput(const platform::odbc::Statement& statement) const;

  private:
    /// A parameter that has a marker.
    struct Marked {
        Parameter* parameter;
        platform::odbc::Parameter bound;
    };

    std::string CallText(const std::string& procedure, std::vector<Parameter>& parameters) const;
    void CallByName(const std::string& procedure);
    void Mark(Parameter& parameter, const platform::LocaleForms& forms);

    std::string text_;
    std::vector<platform::odbc::Parameter> leading_; ///< markers before those of the parameters
    std::vector<Marked> marked_;
    std::vector<Error> refusals_;
};

} // namespace ado
