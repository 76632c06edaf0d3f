# The protocol of the development server: against a language of the tests, and the program with clients that
# are not ours.
kv_test(devsql_tds_tests LABEL unit
    SOURCES
        options_test.cpp
        tds_client.cpp
        tds_connection_test.cpp
        tds_hostile_test.cpp
        tds_login_test.cpp
        tds_packets_test.cpp
        tds_requests_test.cpp
        tds_response_test.cpp
        tds_server_test.cpp
        tds_tokens_test.cpp
        tds_type_decoder_test.cpp
        tds_type_encoder_test.cpp
    LINK devsql_tds devsql_options)

add_test(NAME devserver_clients
         COMMAND /usr/bin/python3 "${CMAKE_CURRENT_SOURCE_DIR}/clients/test_clients.py" $<TARGET_FILE:devsqlserver>)
set_tests_properties(devserver_clients PROPERTIES LABELS server TIMEOUT 300)

# libFuzzer's harness; only clang has it: cmake -DCMAKE_CXX_COMPILER=clang++, then
# bin/devsql_tds_fuzz CORPUS-OF-YOUR-OWN tests/devserver/fuzz/tds_corpus
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_executable(devsql_tds_fuzz EXCLUDE_FROM_ALL fuzz/tds_fuzz.cpp)
    target_link_libraries(devsql_tds_fuzz PRIVATE devsql_tds)
    target_compile_options(devsql_tds_fuzz PRIVATE -fsanitize=fuzzer)
    target_link_options(devsql_tds_fuzz PRIVATE -fsanitize=fuzzer)
endif()
