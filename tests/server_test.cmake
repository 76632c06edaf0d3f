# kv_server_test(NAME SOURCES … LINK …): a GoogleTest program NAME_test that uses two running development servers; it is the
# test NAME of ctest. The servers run on Linux; the Windows tree uses the program of the sanitize tree.
function(kv_server_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    kv_program(${name}_test SOURCES ${ARG_SOURCES} "${PROJECT_SOURCE_DIR}/tests/support/servers.cpp"
               LINK ${ARG_LINK} GTest::gmock GTest::gtest_main)
    target_include_directories(${name}_test PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    if(WIN32)
        set(KV_DEVSQLSERVER "${PROJECT_SOURCE_DIR}/build/sanitize/bin/devsqlserver" CACHE FILEPATH
            "The development server that the tests under Wine talk to")
        set(server "${KV_DEVSQLSERVER}")
        set(how --wine)
        set(labels "wine;server")
    else()
        add_dependencies(${name}_test devsqlserver)
        set(server $<TARGET_FILE:devsqlserver>)
        set(how "")
        set(labels server)
    endif()
    add_test(NAME ${name} COMMAND /usr/bin/python3 "${PROJECT_SOURCE_DIR}/tests/support/with_servers.py" "${server}"
                                  $<TARGET_FILE:${name}_test> ${how})
    set_tests_properties(${name} PROPERTIES LABELS "${labels}" TIMEOUT 600)
endfunction()
