// Upper and lower case by a table of ranges. Characters whose counterpart lies outside code page 1252
// although they lie in it (the micro sign, the florin) stay as they are, as UPPER on a varchar leaves them.
#include <array>
#include <cstdint>

#include "devserver/tsql/scalar/text.h"

namespace devsql {

namespace {

/// Upper-case letters `first` to `last`. With `distance` 1 upper and lower case alternate, beginning with an
/// upper-case letter; otherwise the lower-case letter lies `distance` above.
struct CaseRange {
    char32_t first;
    char32_t last;
    std::uint16_t distance;
};

constexpr std::array kRanges = {
    CaseRange{0x0041, 0x005A, 32}, // Latin
    CaseRange{0x00C0, 0x00D6, 32}, CaseRange{0x00D8, 0x00DE, 32}, CaseRange{0x0100, 0x012F, 1},
    CaseRange{0x0132, 0x0137, 1},  CaseRange{0x0139, 0x0148, 1},  CaseRange{0x014A, 0x0177, 1},
    CaseRange{0x0179, 0x017E, 1},  CaseRange{0x01CD, 0x01DC, 1},  CaseRange{0x01DE, 0x01EF, 1},
    CaseRange{0x01F8, 0x021F, 1},  CaseRange{0x0222, 0x0233, 1},  CaseRange{0x0388, 0x038A, 37}, // Greek
    CaseRange{0x038E, 0x038F, 63}, CaseRange{0x0391, 0x03A1, 32}, CaseRange{0x03A3, 0x03AB, 32},
    CaseRange{0x0400, 0x040F, 80}, // Cyrillic
    CaseRange{0x0410, 0x042F, 32}, CaseRange{0x0460, 0x0481, 1},  CaseRange{0x048A, 0x04BF, 1},
    CaseRange{0x04C1, 0x04CE, 1},  CaseRange{0x04D0, 0x052F, 1},  CaseRange{0x0531, 0x0556, 48}, // Armenian
    CaseRange{0x1E00, 0x1E95, 1},  CaseRange{0x1EA0, 0x1EFF, 1}, // Latin, further
    CaseRange{0xFF21, 0xFF3A, 32},                               // full width
};

struct CasePair {
    char32_t upper;
    char32_t lower;
};

constexpr std::array kPairs = {CasePair{0x0178, 0x00FF}, CasePair{0x0386, 0x03AC}, CasePair{0x038C, 0x03CC}};

/// The final sigma, whose upper case is that of the plain one.
constexpr char32_t kFinalSigma = 0x03C2;

template <typename Map>
std::string MapText(std::string_view text, Map map) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        AppendUtf8(result, map(DecodeUtf8(text, i)));
    }
    return result;
}

} // namespace

char32_t ToLower(char32_t character) {
    if (character < 0x80) {
        return character >= 'A' && character <= 'Z' ? character + 32 : character;
    }
    for (const CaseRange& range : kRanges) {
        if (character < range.first || character > range.last) {
            continue;
        }
        if (range.distance == 1) {
            return (character - range.first) % 2 == 0 ? character + 1 : character;
        }
        return character + range.distance;
    }
    for (const CasePair& pair : kPairs) {
        if (character == pair.upper) {
            return pair.lower;
        }
    }
    return character;
}

char32_t ToUpper(char32_t character) {
    if (character < 0x80) {
        return character >= 'a' && character <= 'z' ? character - 32 : character;
    }
    if (character == kFinalSigma) {
        return 0x03A3;
    }
    for (const CaseRange& range : kRanges) {
        if (range.distance == 1) {
            if (character >= range.first && character <= range.last) {
                return (character - range.first) % 2 == 1 ? character - 1 : character;
            }
        } else if (character >= range.first + range.distance && character <= range.last + range.distance) {
            return character - range.distance;
        }
    }
    for (const CasePair& pair : kPairs) {
        if (character == pair.lower) {
            return pair.upper;
        }
    }
    return character;
}

std::string ToLower(std::string_view text) {
    return MapText(text, [](char32_t c) { return ToLower(c); });
}

std::string ToUpper(std::string_view text) {
    return MapText(text, [](char32_t c) { return ToUpper(c); });
}

} // namespace devsql
