// The placeholders of RAISERROR: "%", flags, width, precision, size and kind, as printf has them.
#include <algorithm>
#include <cstdio>
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
constexpr int kMostWidth = 8000;

struct Placeholder {
    std::string flags; ///< of printf
    bool wide = false; ///< I64: bigint
    int width = 0;
    std::optional<int> precision;
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

    /// Digits, or "*" and an argument.
    int ReadCount(Placeholder& p) {
        if (Take('*')) {
            const FormatArgument* argument = NextArgument();
            const auto* number = argument == nullptr ? nullptr : std::get_if<std::int64_t>(&argument->value);
            if (number == nullptr) {
                RefuseType();
            }
            p.flags += *number < 0 ? "-" : "";
            return static_cast<int>(std::abs(std::clamp<std::int64_t>(*number, -kMostWidth, kMostWidth)));
        }
        int count = 0;
        while (Peek() >= '0' && Peek() <= '9') {
            count = std::min(count * 10 + (text_[at_++] - '0'), kMostWidth);
        }
        return count;
    }

    Placeholder ReadPlaceholder() {
        const std::size_t start = at_++;
        Placeholder p;
        while (Peek() != '\0' && std::string_view("-+0# ").find(Peek()) != std::string_view::npos) {
            p.flags += text_[at_++];
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
            return Pad(p.precision ? SubText(*text, 0, static_cast<std::size_t>(*p.precision)) : *text, p);
        }
        const auto* number = std::get_if<std::int64_t>(&argument->value);
        if (number == nullptr || p.kind == 's' || (argument->type.id == TypeId::BigInt && !p.wide)) {
            RefuseType();
        }
        return FormatNumber(p, *number);
    }

    static std::string FormatNumber(const Placeholder& p, std::int64_t value) {
        // Without sign, it has as many bits as the argument.
        const bool narrow = p.kind != 'd' && p.kind != 'i' && !p.wide;
        const auto number = static_cast<long long>(narrow ? static_cast<std::uint32_t>(value) : value);
        const std::string format = "%" + p.flags + "*.*ll" + p.kind;
        std::string text(2 * kMostWidth, '\0');
        const int length = std::snprintf(text.data(), text.size(), format.c_str(), p.width,
                                         p.precision.value_or(-1), number);
        text.resize(static_cast<std::size_t>(length));
        return text;
    }

    static std::string Pad(const std::string& text, const Placeholder& p) {
        const auto width = static_cast<std::size_t>(p.width);
        const std::string blanks(width - std::min(width, TextLength(text)), ' ');
        return p.flags.find('-') != std::string::npos ? text + blanks : blanks + text;
    }

    std::string_view text_;
    std::span<const FormatArgument> arguments_;
    std::size_t at_ = 0;
    std::size_t next_ = 0;
};

void RequireTypes(std::span<const FormatArgument> arguments) {
    RaiseIf(arguments.size() > kMostArguments, 2747, {std::to_string(kMostArguments)});
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
