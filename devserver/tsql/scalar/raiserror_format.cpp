// The placeholders of RAISERROR: "%", flags, width, precision, size and kind, as printf has them.
#include <algorithm>
#include <array>
#include <cstdlib>

#include "devserver/tsql/scalar/functions.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

constexpr std::size_t kMostArguments = 20;
/// After text, severity and state, the first argument is the fourth parameter of RAISERROR.
constexpr std::size_t kParametersBefore = 3;
/// A longer message is cut to kCutLength and three points.
constexpr std::size_t kMostLength = 2047;
constexpr std::size_t kCutLength = 2044;
constexpr std::size_t kMostWidth = 8000;

struct Placeholder {
    bool left = false;
    bool plus = false;
    bool zeros = false;
    bool alternate = false;
    bool blank = false;
    bool wide = false; ///< I64: bigint
    std::size_t width = 0;
    std::optional<std::size_t> precision;
    char kind = 0;
};

class Formatter {
  public:
    Formatter(std::string_view text, std::span<const FormatArgument> arguments)
        : text_(text), arguments_(arguments) {}

    std::string Run() {
        std::string result;
        while (at_ < text_.size()) {
            if (text_[at_] != '%') {
                result += text_[at_++];
            } else if (text_.substr(at_, 2) == "%%") {
                result += '%';
                at_ += 2;
            } else {
                result += Format(ReadPlaceholder());
            }
        }
        return result;
    }

  private:
    char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    bool Take(char c) {
        if (Peek() != c) {
            return false;
        }
        ++at_;
        return true;
    }

    bool TakeFlag(Placeholder& p) {
        struct Flag {
            char sign;
            bool Placeholder::*member;
        };
        constexpr std::array flags = {Flag{'-', &Placeholder::left}, Flag{'+', &Placeholder::plus},
                                      Flag{'0', &Placeholder::zeros}, Flag{'#', &Placeholder::alternate},
                                      Flag{' ', &Placeholder::blank}};
        for (const Flag& flag : flags) {
            if (Take(flag.sign)) {
                p.*flag.member = true;
                return true;
            }
        }
        return false;
    }

    /// Digits, or "*" and an argument.
    std::size_t ReadCount(Placeholder& p) {
        if (Take('*')) {
            const FormatArgument* argument = NextArgument();
            const auto* number = argument == nullptr ? nullptr : std::get_if<std::int64_t>(&argument->value);
            if (number == nullptr) {
                RefuseType();
            }
            p.left = p.left || *number < 0;
            const auto most = static_cast<std::int64_t>(kMostWidth);
            return static_cast<std::size_t>(std::abs(std::clamp(*number, -most, most)));
        }
        std::size_t count = 0;
        while (Peek() >= '0' && Peek() <= '9') {
            count = std::min(count * 10 + static_cast<std::size_t>(text_[at_++] - '0'), kMostWidth);
        }
        return count;
    }

    Placeholder ReadPlaceholder() {
        const std::size_t start = at_++;
        Placeholder p;
        while (TakeFlag(p)) {
        }
        p.width = ReadCount(p);
        if (Take('.')) {
            p.precision = ReadCount(p);
        }
        if (text_.substr(at_, 3) == "I64") {
            p.wide = true;
            at_ += 3;
        } else if (Peek() == 'h' || Peek() == 'l') {
            ++at_;
        }
        p.kind = Peek();
        if (p.kind == '\0' || std::string_view("dioxXus").find(p.kind) == std::string_view::npos) {
            RaiseError(2787, {text_.substr(start, at_ - start + 1)});
        }
        ++at_;
        return p;
    }

    const FormatArgument* NextArgument() {
        return next_ < arguments_.size() ? &arguments_[next_++] : nullptr;
    }

    [[noreturn]] void RefuseType() const { throw ErrorOf(2786, {std::to_string(next_)}); }

    std::string Format(const Placeholder& p) {
        const FormatArgument* argument = NextArgument();
        if (argument == nullptr || IsNull(argument->value)) {
            return Pad("(null)", p);
        }
        if (const auto* text = std::get_if<std::string>(&argument->value)) {
            if (p.kind != 's') {
                RefuseType();
            }
            return Pad(p.precision ? SubText(*text, 0, *p.precision) : *text, p);
        }
        const auto* number = std::get_if<std::int64_t>(&argument->value);
        if (number == nullptr || p.kind == 's' || (argument->type.id == TypeId::BigInt && !p.wide)) {
            RefuseType();
        }
        return FormatNumber(p, *number);
    }

    static std::string Digits(std::uint64_t value, unsigned base, bool upper) {
        const std::string_view signs = upper ? "0123456789ABCDEF" : "0123456789abcdef";
        std::string digits;
        do {
            digits.insert(digits.begin(), signs[value % base]);
            value /= base;
        } while (value != 0);
        return digits;
    }

    static std::string FormatNumber(const Placeholder& p, std::int64_t value) {
        std::string sign;
        std::uint64_t magnitude = 0;
        unsigned base = 10;
        if (p.kind == 'd' || p.kind == 'i') {
            sign = value < 0 ? "-" : p.plus ? "+" : p.blank ? " " : "";
            magnitude = value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
        } else {
            // Without sign, in as many bits as the argument has.
            magnitude = p.wide ? static_cast<std::uint64_t>(value) : static_cast<std::uint32_t>(value);
            base = p.kind == 'u' ? 10 : p.kind == 'o' ? 8 : 16;
            if (p.alternate && magnitude != 0) {
                sign = p.kind == 'o' ? "0" : p.kind == 'u' ? "" : p.kind == 'x' ? "0x" : "0X";
            }
        }
        std::string digits = Digits(magnitude, base, p.kind == 'X');
        std::size_t least = p.precision.value_or(1);
        if (p.zeros && !p.left && !p.precision && p.width > sign.size()) {
            least = p.width - sign.size();
        }
        digits.insert(0, least - std::min(least, digits.size()), '0');
        return Pad(sign + digits, p);
    }

    static std::string Pad(const std::string& text, const Placeholder& p) {
        const std::size_t length = TextLength(text);
        const std::string blanks(p.width - std::min(p.width, length), ' ');
        return p.left ? text + blanks : blanks + text;
    }

    std::string_view text_;
    std::span<const FormatArgument> arguments_;
    std::size_t at_ = 0;
    std::size_t next_ = 0;
};

void RequireTypes(std::span<const FormatArgument> arguments) {
    if (arguments.size() > kMostArguments) {
        RaiseError(2747, {std::to_string(kMostArguments)});
    }
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const TypeId id = arguments[i].type.id;
        const bool allowed = IsInteger(id) || (IsCharacter(id) && !IsOldLob(id));
        if (!allowed) {
            RaiseError(2748, {TypeName(id), std::to_string(i + 1 + kParametersBefore)});
        }
    }
}

} // namespace

std::string FormatRaiserror(std::string_view text, std::span<const FormatArgument> arguments) {
    RequireTypes(arguments);
    std::string result = Formatter(text, arguments).Run();
    return TextLength(result) > kMostLength ? SubText(result, 0, kCutLength) + "..." : result;
}

} // namespace devsql
