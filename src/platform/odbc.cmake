# kv_odbc_calls is the layer without the driver manager, so that a test can put a counting one in its place;
# kv_odbc is the layer with the system's.
kv_library(kv_code_page SOURCES code_page.cpp)
kv_library(kv_odbc_calls SOURCES odbc.cpp odbc_statement.cpp odbc_types.cpp odbc_rows.cpp
                                 ${KV_SYSTEM}/odbc_driver.cpp LINK kv_code_page)

add_library(kv_odbc INTERFACE)
if(WIN32)
    target_link_libraries(kv_odbc INTERFACE kv_odbc_calls odbc32)
else()
    target_link_libraries(kv_odbc INTERFACE kv_odbc_calls odbc)
endif()

# The query tool's keyboard.
kv_library(kv_console_input SOURCES ${KV_SYSTEM}/console_input.cpp)
