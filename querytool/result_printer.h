// Prints results and messages. Knows neither servers nor files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "querytool/output.h"
#include "querytool/server.h"
#include "querytool/switches.h"

namespace querytool {

/// The text of a value in its column, without padding; "NULL" for NULL.
std::string CellText(const Column& column, const Value& value);

/// Prints the results and messages of a batch, and keeps the values that the exit code depends on. Prints
/// nothing after a message that ends the tool.
class ResultPrinter : public ResultSink {
  public:
    /// Both must outlive the printer.
    ResultPrinter(const Switches& switches, Output& output) : switches_(switches), output_(output) {}

    void ResultBegin(const std::vector<Column>& columns) override;
    void Row(const std::vector<Value>& values) override;
    void ResultEnd(std::int64_t rows) override;
    void Message(const Diagnostic& diagnostic) override;

    bool Ended() const override { return ending_number_.has_value(); }
    /// The number of the message that ended the tool.
    std::optional<std::int32_t> EndingNumber() const { return ending_number_; }

    /// True if there was an error since the last call of ForgetErrors.
    bool ErrorSeen() const { return error_seen_; }
    void ForgetErrors() { error_seen_ = false; }
    /// The first value of the last result, as text; empty if it had no row.
    const std::string& FirstValue() const { return first_value_; }

  private:
    struct Field {
        std::size_t width = 0;
        bool right = false; ///< numbers are aligned right
    };

    void WriteHeading();
    void WriteCells(const std::vector<std::string>& cells);

    const Switches& switches_;
    Output& output_;
    std::vector<Column> columns_;
    std::vector<Field> fields_;
    std::int64_t rows_ = 0;
    std::string first_value_;
    bool error_seen_ = false;
    std::optional<std::int32_t> ending_number_;
};

} // namespace querytool
