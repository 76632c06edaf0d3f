# The layer over a driver manager of the tests' own, which counts handles and fails on demand.
kv_test(odbc_test LABEL unit SOURCES odbc_test.cpp ../fakes/odbc_counting.cpp LINK kv_odbc_calls)

if(NOT WIN32)
    # The layer with the system's driver manager and driver, against the development server's protocol.
    kv_test(odbc_wire_test LABEL server
            SOURCES odbc_wire_test.cpp ../devserver/tds_client.cpp LINK kv_odbc devsql_tds)
    target_compile_definitions(odbc_wire_test PRIVATE
                               KV_ODBC_CONFIG="${PROJECT_SOURCE_DIR}/src/platform/odbc_config")
endif()
