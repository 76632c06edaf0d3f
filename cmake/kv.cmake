# What every target of the tree has in common: warnings, sanitizers, static Windows executables; and the one
# way to declare a library, a program and a test.

add_library(kv_options INTERFACE)
target_compile_options(kv_options INTERFACE -Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor
                                            -Wold-style-cast -Wconversion -Wno-sign-conversion -fno-strict-aliasing)
# GCC 12 sees overlapping copies in "literal" + std::string at -O2 where there are none.
# clang, which clang-tidy and the fuzzers are, does not know that warning and would stop at its name.
target_compile_options(kv_options INTERFACE -Wno-restrict -Wno-unknown-warning-option)
if(KV_SANITIZE)
    # Compiling is most of what a run of the tests costs. Line numbers are all of the debug information that the
    # sanitizers' reports need, and optimising costs more than it brings, but for the development server (there). Four
    # checks at every access to an object cost a quarter of the compiling: a null pointer's use and one past an object
    # stop the program at the processor and the address sanitizer anyway, this processor
    # takes every alignment, and casts down go by a kind that is asked first.
    target_compile_options(kv_options INTERFACE -g1 -fsanitize=address,undefined -fno-sanitize-recover=all
                                                -fno-sanitize=null,alignment,object-size,vptr -fno-omit-frame-pointer)
    target_link_options(kv_options INTERFACE -fsanitize=address,undefined)
endif()
if(KV_FUZZ)
    # What a fuzzer sees of the way an input takes; only clang has it.
    target_compile_options(kv_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(WIN32)
    # One static executable: no DLL beyond the system's own.
    target_link_options(kv_options INTERFACE -static -Wl,--no-insert-timestamp)
    target_compile_definitions(kv_options INTERFACE WINVER=0x0601 _WIN32_WINNT=0x0601 NOMINMAX)
endif()

# kv_library(NAME SOURCES … LINK …): a static library; headers are named from the root of the tree's src/.
function(kv_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE kv_options)
endfunction()

# kv_program(NAME SOURCES … LINK …)
function(kv_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE ${ARG_LINK} kv_options)
endfunction()

# kv_test(NAME LABEL … SOURCES … LINK …): a GoogleTest program. On Linux each of its tests is a test of
# ctest; under Wine, where a start costs half a second, the program is one.
# LABEL says what it needs: "unit" nothing, "server" a development server, "wine", "screen".
function(kv_test name)
    cmake_parse_arguments(ARG "" "LABEL" "SOURCES;LINK" ${ARGN})
    if(ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "kv_test(${name}): what is '${ARG_UNPARSED_ARGUMENTS}'? A test has one label.")
    endif()
    kv_program(${name} SOURCES ${ARG_SOURCES} LINK ${ARG_LINK} GTest::gmock GTest::gtest_main)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    if(WIN32)
        # On a screen the system itself shows a box for a program that cannot be started, and waits for an answer.
        set(runner env -u DISPLAY "${PROJECT_SOURCE_DIR}/tests/run-under-wine")
        if("screen" IN_LIST ARG_LABEL)
            set(runner "${PROJECT_SOURCE_DIR}/tests/with-screen" "${PROJECT_SOURCE_DIR}/tests/run-under-wine")
        endif()
        add_test(NAME ${name} COMMAND ${runner} $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT 600)
        # Seen: a program that has crashed under Wine, whose exit code was 0.
        set_tests_properties(${name} PROPERTIES FAIL_REGULAR_EXPRESSION "starting debugger")
        if("screen" IN_LIST ARG_LABEL)
            # A new screen ends what runs in the prefix for screens (tests/run-under-wine).
            set_tests_properties(${name} PROPERTIES RESOURCE_LOCK wine_screen)
        endif()
    else()
        gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT 300)
    endif()
endfunction()
