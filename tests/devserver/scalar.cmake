# The scalar library of the development server: pure functions, so its tests need nothing.
kv_test(scalar_test LABEL unit SOURCES
    scalar_arithmetic_test.cpp
    scalar_compare_test.cpp
    scalar_conversion_test.cpp
    scalar_date_test.cpp
    scalar_decimal_test.cpp
    scalar_error_test.cpp
    scalar_function_test.cpp
    scalar_like_test.cpp
    scalar_raiserror_test.cpp
    scalar_string_function_test.cpp
    scalar_text_test.cpp
    scalar_type_test.cpp
    LINK devsql_scalar)
