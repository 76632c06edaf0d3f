# kv_fuzz_harness(TARGET SOURCE ARCHIVE [SOURCES … LINK …]): a fuzzing harness. With KV_FUZZ (clang) it is a libFuzzer
# program, which tools/fuzz runs; otherwise it is a test that runs the saved inputs of the archive.
function(kv_fuzz_harness target source archive)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    if(KV_FUZZ)
        kv_program(${target} SOURCES ${source} ${ARG_SOURCES} LINK ${ARG_LINK})
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer)
        target_link_options(${target} PRIVATE -fsanitize=fuzzer)
    else()
        kv_program(${target} SOURCES ${source} "${KV_ROOT}/tests/fuzz/corpus_runner.cpp" ${ARG_SOURCES}
                   LINK ${ARG_LINK})
        get_filename_component(kept "${archive}" ABSOLUTE)
        set(inputs "${CMAKE_CURRENT_BINARY_DIR}/inputs/${target}")
        add_custom_command(OUTPUT "${inputs}.unpacked" DEPENDS "${kept}"
                           COMMAND ${CMAKE_COMMAND} -E rm -rf "${inputs}"
                           COMMAND ${CMAKE_COMMAND} -E make_directory "${inputs}"
                           COMMAND ${CMAKE_COMMAND} -E chdir "${inputs}" ${CMAKE_COMMAND} -E tar xf "${kept}"
                           COMMAND ${CMAKE_COMMAND} -E touch "${inputs}.unpacked" VERBATIM)
        add_custom_target(${target}_inputs DEPENDS "${inputs}.unpacked")
        add_dependencies(${target} ${target}_inputs)
        add_test(NAME ${target} COMMAND ${target} "${inputs}")
        set_tests_properties(${target} PROPERTIES LABELS unit TIMEOUT 300)
        add_dependencies(unit_tests ${target})
    endif()
endfunction()
