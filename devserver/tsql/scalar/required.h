// Takes a value that must be there. Raises an error by its number if it is not.
#pragma once

#include <optional>
#include <utility>

#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

/// The value. Raises the error if there is none.
template <class T>
T Required(std::optional<T> value, std::int32_t number,
           std::initializer_list<std::string_view> arguments = {}, std::uint8_t state = 1) {
    if (!value) {
        RaiseError(number, arguments, state);
    }
    return *std::move(value);
}

/// The object that the pointer points to. Raises the error if it is null.
template <class T>
T& Required(T* value, std::int32_t number, std::initializer_list<std::string_view> arguments = {},
            std::uint8_t state = 1) {
    if (value == nullptr) {
        RaiseError(number, arguments, state);
    }
    return *value;
}

} // namespace devsql
