// Shows and reads numbers in the forms of a locale.
#include "ado/number_text.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace ado {
namespace {

constexpr std::string_view kBlanks = " \t\xA0";

bool IsBlank(char c) {
    return kBlanks.find(c) != std::string_view::npos;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Removes pieces from the front of a text.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    bool AtEnd() const { return rest_.empty(); }
    /// Removes the piece. Returns false if the text does not begin with it. All kinds of space are equal.
    bool Take(std::string_view piece) {
        const auto same = [](char one, char other) {
            return one == other || (IsBlank(one) && IsBlank(other));
        };
        if (piece.empty() || rest_.size() < piece.size() ||
            !std::ranges::equal(rest_.substr(0, piece.size()), piece, same)) {
            return false;
        }
        rest_.remove_prefix(piece.size());
        return true;
    }
    void SkipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size())); }
    std::string TakeDigits() {
        const auto* const end = std::ranges::find_if_not(rest_, IsDigit);
        const std::string digits(rest_.begin(), end);
        rest_.remove_prefix(digits.size());
        return digits;
    }

  private:
    std::string_view rest_;
};

/// True if each group of digits has the locale's size; the first group may be smaller.
bool GroupSizesFit(const std::vector<std::string>& groups, const std::vector<std::size_t>& sizes) {
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const std::size_t from_right = groups.size() - 1 - i;
        const std::size_t wanted = sizes[std::min(from_right, sizes.size() - 1)];
        const std::size_t size = groups[i].size();
        if (i == 0 ? size == 0 || size > wanted : size != wanted) {
            return false;
        }
    }
    return true;
}

/// Takes the digits before the decimal point and returns them without separators. Returns nothing if a group
/// has a wrong size.
std::optional<std::string> TakeWhole(Scanner& scanner, const platform::LocaleForms& forms) {
    std::vector<std::string> groups = {scanner.TakeDigits()};
    // A space without digits after it is not a separator; the currency's symbol may follow it.
    for (Scanner next = scanner; next.Take(forms.group_separator); next = scanner) {
        std::string group = next.TakeDigits();
        if (group.empty()) {
            break;
        }
        groups.push_back(std::move(group));
        scanner = next;
    }
    if (groups.size() > 1 && !GroupSizesFit(groups, forms.group_sizes)) {
        return std::nullopt;
    }
    std::string whole;
    for (const std::string& group : groups) {
        whole += group;
    }
    return whole;
}

/// Takes the exponent; returns 0 if the text has none. Returns nothing for an "E" without digits.
std::optional<std::int64_t> TakeExponent(Scanner& scanner) {
    if (!scanner.Take("E") && !scanner.Take("e")) {
        return 0;
    }
    const bool negative = scanner.Take("-");
    if (!negative) {
        scanner.Take("+");
    }
    const std::string digits = scanner.TakeDigits();
    if (digits.empty()) {
        return std::nullopt;
    }
    constexpr std::int64_t kBeyondEveryType = 1'000'000;
    std::int64_t exponent = kBeyondEveryType;
    std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    exponent = std::min(exponent, kBeyondEveryType);
    return negative ? -exponent : exponent;
}

/// Removes the zeros at both ends of the digits.
ExactNumber Normalised(bool negative, std::string digits, std::int64_t scale) {
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    const std::size_t end = digits.find_last_not_of('0') + 1; // 0 if there is no other digit
    scale -= static_cast<std::int64_t>(digits.size() - end);
    digits.resize(end);
    if (digits.empty()) {
        return {};
    }
    return {negative, std::move(digits), scale};
}

} // namespace

std::string ShowFloating(double value, int digits, const platform::LocaleForms& forms) {
    if (value == 0) {
        return "0"; // also for a zero with a sign
    }
    char buffer[64];
    // The same as printf's %G, and several times as fast.
    const std::to_chars_result end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits);
    std::replace(buffer, end.ptr, 'e', 'E');
    std::string text(buffer, end.ptr);
    if (const std::size_t point = text.find('.'); point != std::string::npos) {
        text.replace(point, 1, forms.decimal_point);
    }
    return text;
}

std::string ShowExact(std::string_view digits, const platform::LocaleForms& forms) {
    const bool negative = digits.starts_with('-');
    if (negative) {
        digits.remove_prefix(1);
    }
    const std::size_t point = std::min(digits.find('.'), digits.size());
    std::string text(digits.substr(0, point));
    if (text.empty()) {
        text = "0";
    }
    const std::string_view fraction = digits.substr(std::min(point + 1, digits.size()));
    if (const std::size_t end = fraction.find_last_not_of('0') + 1; end != 0) {
        text += forms.decimal_point;
        text += fraction.substr(0, end);
    }
    return negative && text != "0" ? "-" + text : text;
}

std::string ExactNumber::Plain() const {
    std::string text = digits.empty() ? "0" : digits;
    if (scale <= 0) {
        text.append(static_cast<std::size_t>(-scale), '0');
    } else {
        const auto fraction = static_cast<std::size_t>(scale);
        if (text.size() <= fraction) {
            text.insert(0, fraction + 1 - text.size(), '0');
        }
        text.insert(text.size() - fraction, 1, '.');
    }
    return negative ? "-" + text : text;
}

std::string ExactNumber::Scientific() const {
    return (negative ? "-" : "") + (digits.empty() ? "0" : digits) + "E" + std::to_string(-scale);
}

std::optional<ExactNumber> ReadNumber(std::string_view text, const platform::LocaleForms& forms) {
    Scanner scanner(WithoutBlanks(text));
    bool negative = scanner.Take("-");
    bool sign = negative || scanner.Take("+");
    const bool currency = scanner.Take(forms.currency_symbol);
    if (currency) {
        scanner.SkipBlanks();
        if (!sign) {
            negative = scanner.Take("-");
            sign = negative || scanner.Take("+");
        }
    }
    const auto whole = TakeWhole(scanner, forms);
    const std::string fraction = scanner.Take(forms.decimal_point) ? scanner.TakeDigits() : std::string();
    const auto exponent = TakeExponent(scanner);
    if (!whole || !exponent || (whole->empty() && fraction.empty())) {
        return std::nullopt;
    }
    if (!currency) {
        scanner.SkipBlanks();
        scanner.Take(forms.currency_symbol);
    }
    if (!scanner.AtEnd()) {
        return std::nullopt;
    }
    return Normalised(negative, *whole + fraction, static_cast<std::int64_t>(fraction.size()) - *exponent);
}

std::string_view WithoutBlanks(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(kBlanks);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

} // namespace ado
