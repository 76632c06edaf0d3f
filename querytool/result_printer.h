// Prints results and messages as OSQL does. Knows neither servers nor files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "querytool/output.h"
#include "querytool/server.h"
#include "querytool/switches.h"

namespace querytool {

/// Returns the text of a value of the column, without padding; "NULL" for NULL.
std::string CellText(const Column& column, const Value& value);

/// Prints the results and messages of batches, and keeps the values on which the exit code depends. Prints
/// nothing after a message that ends the tool (state 127).
class ResultPrinter : public ResultSink {
  public:
    /// Both must outlive the printer.
    ResultPrinter(const Switches& switches, Output& output) : switches_(switches), output_(output) {}

    void ResultBegin(const std::vector<Column>& columns) override;
    void Row(const std::vector<Value>& values) override;
    void ResultEnd(std::int64_t rows) override;
    void Message(const Diagnostic& diagnostic) override;

    bool Ended() const override { return ending_number_.has_value(); }
    /// Returns the number of the message that ended the tool, which is the exit code; nothing if there was no
    /// such message.
    std::optional<std::int32_t> EndingNumber() const { return ending_number_; }

    /// True if there was an error since the last call of ForgetErrors.
    bool ErrorSeen() const { return error_seen_; }
    void ForgetErrors() { error_seen_ = false; }
    /// Returns the first value of the last result, as text; empty if the result had no row.
    const std::string& FirstValue() const { return first_value_; }

  private:
    /// The form of a column on paper.
    struct Field {
        std::size_t width = 0; ///< in characters
        bool right = false;    ///< aligned right, as numbers are
    };

    void WriteHeading();
    void WriteCells(const std::vector<std::string>& cells);

    const Switches& switches_;
    Output& output_;
    std::vector<Column> columns_;
    std::vector<Field> fields_;
    std::int64_t rows_ = 0; ///< the number of printed rows of the current result
    std::string first_value_;
    bool error_seen_ = false;
    std::optional<std::int32_t> ending_number_;
};

} // namespace querytool
