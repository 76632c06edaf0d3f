// The server's one collation, modelled on SQL_Latin1_General_CP1_CI_AS: letters compare without case, accents
// count, blanks at the end do not. Also the comparison of values of any two types.
//
// The order: blank, control characters, punctuation and symbols (as in code page 1252), digits, Latin
// letters, everything else by lower-case code point. Accents decide only between texts whose letters are
// equal, the first that differs first; ae, oe, ss and their ligatures differ as accents do.
#pragma once

#include <string>
#include <string_view>

#include "devserver/engine/value.h"

namespace devsql {

/// Negative, 0 or positive. For SQLite's collation callback too.
int CompareText(std::string_view a, std::string_view b);
/// True if the texts are equal under the collation, as the names of objects are compared.
inline bool SameText(std::string_view a, std::string_view b) {
    return CompareText(a, b) == 0;
}

/// A key that compares by its bytes as CompareText compares the texts; equal keys are equal texts.
std::string SortKey(std::string_view text);

/// Compares two values of different or equal types: the one of lower precedence is converted to the type of
/// the other, with that conversion's errors. NULL sorts before everything and equals NULL, so that it serves
/// ORDER BY, GROUP BY, MIN and MAX; predicates look for NULL first.
int CompareValues(const Value& a, const Type& a_type, const Value& b, const Type& b_type);

/// Compares two values of the same data type (lengths, precision and scale may differ) without conversion.
int CompareSameType(const Value& a, const Value& b, TypeId type);

} // namespace devsql
