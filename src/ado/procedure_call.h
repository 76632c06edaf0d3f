// Calls a stored procedure as an ODBC statement: makes the statement's text and the values of its parameter
// markers ("?"). Internal to the layer.
#pragma once

#include <string>
#include <vector>

#include "ado/errors.h"
#include "ado/parameter.h"
#include "odbc/odbc.h"
#include "platform/locale.h"

namespace ado {

/// One call of a procedure.
class ProcedureCall {
  public:
    /// Converts the input values to the parameters' types. `parameters` must outlive this object, and no
    /// parameter may be added or removed meanwhile.
    ProcedureCall(const std::string& procedure, std::vector<Parameter>& parameters,
                  const platform::LocaleForms& forms);

    /// Returns one entry for each value that does not fit its parameter's type. Start may be called only if
    /// there are no entries.
    const std::vector<Error>& Refusals() const { return refusals_; }
    /// Binds the values and runs the statement. Throws OdbcError.
    void Start(odbc::Statement& statement) const;
    /// Stores the output values in the parameters. Must be called after the last result was read, since the
    /// driver has the values only then. Throws OdbcError.
    void TakeOutput(const odbc::Statement& statement) const;

  private:
    /// A parameter that is passed, and the value that is bound to its marker.
    struct Marked {
        Parameter* parameter;
        odbc::Parameter bound;
    };

    /// Returns the text "{? = call procedure(?,?)}" for the passed parameters.
    std::string CallText(const std::string& procedure, std::vector<Parameter>& parameters) const;
    /// Makes a call by sp_executesql, which passes the parameters by name. It is used if a parameter that is
    /// left out comes before one that is passed.
    void MakeCallByName(const std::string& procedure);
    /// Adds a marker for the parameter, with its converted input value, to marked_.
    void AddMarker(Parameter& parameter, const platform::LocaleForms& forms);

    std::string text_;
    std::vector<odbc::Parameter> leading_; ///< the arguments of sp_executesql before the parameters
    std::vector<Marked> marked_;
    std::vector<Error> refusals_;
};

} // namespace ado
