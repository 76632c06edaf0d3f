# The language and storage of the development server, in-process.
kv_test(devserver_storage_test LABEL unit
        SOURCES storage_codec_test.cpp storage_paths_test.cpp storage_crash_test.cpp
        LINK devsql_tsql devsql_storage)
kv_test(devserver_tsql_parser_test LABEL unit SOURCES tsql_parser_test.cpp LINK devsql_tsql)
kv_test(devserver_tsql_query_test LABEL unit
        SOURCES tsql_select_test.cpp tsql_change_test.cpp tsql_constraint_test.cpp tsql_table_test.cpp
        LINK devsql_tsql)
kv_test(devserver_tsql_program_test LABEL unit
        SOURCES tsql_control_test.cpp tsql_procedure_test.cpp tsql_transaction_test.cpp tsql_error_test.cpp
        LINK devsql_tsql)
kv_test(devserver_tsql_server_test LABEL unit
        SOURCES tsql_database_test.cpp tsql_catalogue_test.cpp tsql_msdb_test.cpp tsql_session_test.cpp
                tsql_samples_test.cpp
        LINK devsql_tsql)
target_compile_definitions(devserver_tsql_server_test PRIVATE
                           KV_SAMPLES_FOLDER="${PROJECT_SOURCE_DIR}/samples/sqlscripts/v1")
