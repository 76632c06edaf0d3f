// The layout of results and messages.
#include "querytool/result_printer.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "odbc/value_text.h"

namespace querytool {
namespace {

using odbc::Bytes;
using odbc::Guid;
using odbc::SqlType;
using odbc::Timestamp;

constexpr std::string_view kNull = "NULL";
/// The width of a long column in characters. A longer value is printed in full.
constexpr std::size_t kLongWidth = 256;
/// Errors have this level (severity) or a higher one. An error without a level counts as one of level 16.
constexpr int kFirstErrorLevel = 11;
constexpr int kCommonErrorLevel = 16;
/// The numbers of messages that are not printed: "Changed database context" and "Changed language setting".
constexpr std::array kNotPrinted = {5701, 5703};
/// A message with this state ends the tool. So a script can end it by RAISERROR(..., 127).
constexpr std::int32_t kEndingState = 127;

bool IsNumber(SqlType type) {
    constexpr std::array kNumbers = {SqlType::Numeric, SqlType::Decimal, SqlType::Integer, SqlType::SmallInt,
                                     SqlType::Float,   SqlType::Real,    SqlType::Double,  SqlType::BigInt,
                                     SqlType::TinyInt, SqlType::Bit};
    return std::ranges::find(kNumbers, type) != kNumbers.end();
}

template <class... Arguments>
std::string Format(const char* format, Arguments... arguments) {
    std::array<char, 96> text{};
    const int length = std::snprintf(text.data(), text.size(), format, arguments...);
    return {text.data(), static_cast<std::size_t>(std::max(length, 0))};
}

/// Returns the date and time. The fraction has as many digits as the column: datetime has three,
/// smalldatetime none.
std::string Text(const Column& column, const Timestamp& value) {
    std::string text =
        Format("%04d-%02u-%02u %02u:%02u:%02u", value.year, unsigned{value.month}, unsigned{value.day},
               unsigned{value.hour}, unsigned{value.minute}, unsigned{value.second});
    if (column.decimal_digits > 0) {
        const std::string fraction = Format("%09u", value.nanosecond);
        text += "." + fraction.substr(0, static_cast<std::size_t>(column.decimal_digits));
    }
    return text;
}

/// Converts a value to text.
struct ToText {
    const Column& column;
    std::string operator()(std::monostate) const { return std::string(kNull); }
    std::string operator()(bool value) const { return value ? "1" : "0"; }
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    // Prints all digits of the type, as the driver of Windows does: 0.1 is 0.10000000000000001.
    std::string operator()(double value) const {
        return Format(column.type == SqlType::Real ? "%.8g" : "%.17g", value);
    }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(const Bytes& value) const { return TextOf(value); }
    std::string operator()(const Timestamp& value) const { return Text(column, value); }
    std::string operator()(const Guid& value) const { return TextOf(value); }
};

/// Returns the column's width in characters.
std::size_t WidthOf(const Column& column) {
    std::size_t width = column.IsLong() || column.display_size == 0 ? kLongWidth : column.display_size;
    if (column.type == SqlType::Binary || column.type == SqlType::VarBinary) {
        width += 2; // the driver's size does not include "0x"
    }
    if (column.nullable) {
        width = std::max(width, kNull.size());
    }
    return std::max(width, column.name.size());
}

/// Joins cells to lines of at most `limit` characters. Text that does not fit continues on further lines,
/// which begin with a tab.
class LineBuilder {
  public:
    LineBuilder(std::size_t limit, std::string_view separator) : limit_(limit), separator_(separator) {}

    /// Adds a padded cell.
    void Add(std::string_view cell) {
        if (used_ > 1 && used_ + separator_.size() + cell.size() > limit_) {
            Break();
        } else if (cells_ != 0) {
            Put(separator_);
        }
        ++cells_;
        while (used_ + cell.size() > limit_) {
            const std::size_t room = limit_ - used_;
            Put(cell.substr(0, room));
            cell.remove_prefix(room);
            // The padding of a wide column gets no line of its own.
            if (cell.find_first_not_of(' ') == std::string_view::npos) {
                return;
            }
            Break();
        }
        Put(cell);
    }

    /// Returns the lines. The object must not be used afterwards.
    std::string Finish() {
        text_ += " \n";
        return std::move(text_);
    }

  private:
    void Put(std::string_view text) {
        text_ += text;
        used_ += text.size();
    }
    void Break() {
        text_ += " \n\t";
        used_ = 1;
    }

    std::size_t limit_;
    std::string_view separator_;
    std::string text_ = " ";
    std::size_t used_ = 1;  ///< the number of characters in the current line
    std::size_t cells_ = 0; ///< the number of cells so far
};

int LevelOf(const Diagnostic& diagnostic) {
    return diagnostic.severity.value_or(diagnostic.error ? kCommonErrorLevel : 0);
}

/// Returns "Msg 208, Level 16, State 1, Server X, Procedure p, Line 1", with the fields that the driver
/// provides.
std::string HeadOf(const Diagnostic& diagnostic) {
    std::string head = "Msg " + std::to_string(diagnostic.native_error);
    const auto number = [&head](const char* name, const std::optional<std::int32_t>& value) {
        if (value) {
            head += std::string(", ") + name + " " + std::to_string(*value);
        }
    };
    const auto text = [&head](const char* name, const std::string& value) {
        if (!value.empty()) {
            head += std::string(", ") + name + " " + value;
        }
    };
    number("Level", diagnostic.severity);
    number("State", diagnostic.state);
    text("Server", diagnostic.server);
    text("Procedure", diagnostic.procedure);
    number("Line", diagnostic.line);
    return head + "\n";
}

} // namespace

std::string CellText(const Column& column, const Value& value) {
    return std::visit(ToText{column}, value);
}

void ResultPrinter::ResultBegin(const std::vector<Column>& columns) {
    if (Ended()) {
        return;
    }
    columns_ = columns;
    fields_.clear();
    for (const Column& column : columns_) {
        fields_.push_back({WidthOf(column), IsNumber(column.type)});
    }
    rows_ = 0;
    first_value_.clear();
    if (switches_.header_rows >= 0) {
        WriteHeading();
    }
}

void ResultPrinter::WriteHeading() {
    std::vector<std::string> names;
    std::vector<std::string> dashes;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        names.push_back(columns_[i].name);
        names.back().resize(fields_[i].width, ' '); // names are aligned left, also above numbers
        dashes.emplace_back(fields_[i].width, '-');
    }
    WriteCells(names);
    WriteCells(dashes);
}

void ResultPrinter::WriteCells(const std::vector<std::string>& cells) {
    LineBuilder line(static_cast<std::size_t>(switches_.width), switches_.separator);
    for (const std::string& cell : cells) {
        line.Add(cell);
    }
    output_.Write(line.Finish());
}

void ResultPrinter::Row(const std::vector<Value>& values) {
    if (Ended()) {
        return;
    }
    if (rows_ != 0 && switches_.header_rows > 0 && rows_ % switches_.header_rows == 0) {
        output_.Write("\n");
        WriteHeading();
    }
    std::vector<std::string> cells;
    cells.reserve(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::string cell = CellText(columns_[i], values[i]);
        if (rows_ == 0 && i == 0) {
            first_value_ = cell;
        }
        if (cell.size() < fields_[i].width) {
            cell.insert(fields_[i].right ? 0 : cell.size(), fields_[i].width - cell.size(), ' ');
        }
        cells.push_back(std::move(cell));
    }
    WriteCells(cells);
    ++rows_;
}

void ResultPrinter::ResultEnd(std::int64_t rows) {
    if (Ended()) {
        return;
    }
    const bool table = !columns_.empty();
    columns_.clear();
    if (rows >= 0) {
        output_.Write((table ? "\n(" : "(") + std::to_string(rows) + (rows == 1 ? " row" : " rows") +
                      " affected)\n");
    }
}

void ResultPrinter::Message(const Diagnostic& diagnostic) {
    if (Ended()) {
        return;
    }
    if (diagnostic.state == kEndingState) {
        ending_number_ = diagnostic.native_error;
    }
    const int level = LevelOf(diagnostic);
    const bool error = level >= kFirstErrorLevel;
    error_seen_ = error_seen_ || error;
    if (std::ranges::find(kNotPrinted, diagnostic.native_error) != kNotPrinted.end() ||
        (switches_.error_level && level < *switches_.error_level)) {
        return;
    }
    // A message of PRINT has no number; a message of the driver itself has neither severity nor line.
    const bool from_batch = diagnostic.native_error != 0 && (diagnostic.severity || diagnostic.line);
    const bool numbered = from_batch && (error || switches_.error_level);
    std::string text = numbered ? HeadOf(diagnostic) : std::string();
    text += diagnostic.message + "\n";
    const bool to_error_channel = error ? switches_.errors_to_stderr : switches_.messages_to_stderr;
    if (to_error_channel) {
        output_.WriteError(text);
    } else {
        output_.Write(text);
    }
}

} // namespace querytool
