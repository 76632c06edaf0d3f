# What every target of the tree has in common: warnings, sanitizers, static Windows executables; and the one
# way to declare a library, a program and a test.

# The root of the sources, also where the project is the development server alone.
get_filename_component(KV_ROOT "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)

add_library(kv_options INTERFACE)
target_compile_options(kv_options INTERFACE -Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor
                                            -Wold-style-cast -Wconversion -Wno-sign-conversion -fno-strict-aliasing)
# GCC 12 sees overlapping copies in "literal" + std::string at -O2 where there are none.
# clang, which clang-tidy and the fuzzers are, does not know that warning and would stop at its name.
target_compile_options(kv_options INTERFACE -Wno-restrict -Wno-unknown-warning-option)
if(KV_UNITY)
    # In a batch a source is an included file, whose classes GCC takes for everybody's: those with members of types from
    # its own unnamed namespace are warned of.
    target_compile_options(kv_options INTERFACE -Wno-subobject-linkage)
endif()
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

# kv_batches(RESULT TARGET SOURCE …): the sources; with KV_UNITY, generated files that each include eight of them. Headers
# are most of the cost of compiling a file, so a whole build takes half as long. A change of one file recompiles its batch,
# which takes up to twenty seconds; therefore batches are an option. Names in unnamed namespaces must differ within a target.
# The batches name their files relative to the root, so that the compiler cache works for every checkout (CMake's own unity
# builds use absolute paths).
function(kv_batches result target)
    set(per_batch 8)
    # The system's headers define macros with plain names, so sources that include them stay apart.
    set(apart ${ARGN})
    list(FILTER apart INCLUDE REGEX "(^|/)windows/|\\.rc$")
    set(together ${ARGN})
    list(FILTER together EXCLUDE REGEX "(^|/)windows/|\\.rc$")
    if(CMAKE_CURRENT_SOURCE_DIR MATCHES "/windows$")
        set(together "")
    endif()
    list(LENGTH together count)
    if(NOT KV_UNITY OR count LESS 2)
        set(${result} ${ARGN} PARENT_SCOPE)
        return()
    endif()
    set(batches "")
    set(number 0)
    set(text "")
    foreach(file IN LISTS together)
        file(REAL_PATH "${file}" path BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
        file(RELATIVE_PATH path "${KV_ROOT}" "${path}")
        string(APPEND text "#include \"${path}\"\n")
        math(EXPR number "${number} + 1")
        math(EXPR rest "${number} % ${per_batch}")
        if(rest EQUAL 0 OR number EQUAL count)
            set(batch "${CMAKE_CURRENT_BINARY_DIR}/${target}_batch_${number}.cpp")
            file(CONFIGURE OUTPUT "${batch}" CONTENT "${text}" @ONLY)
            list(APPEND batches "${batch}")
            set(text "")
        endif()
    endforeach()
    set(${result} ${batches} ${apart} PARENT_SCOPE)
endfunction()

# kv_library(NAME SOURCES … SEPARATE … LINK …): a static library; headers are named from the root of the tree's src/.
# SEPARATE: sources that cannot be compiled in one batch with others.
function(kv_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;SEPARATE;LINK" ${ARGN})
    kv_batches(sources ${name} ${ARG_SOURCES})
    add_library(${name} STATIC ${sources} ${ARG_SEPARATE})
    target_include_directories(${name} PUBLIC "${KV_ROOT}/src" "${KV_ROOT}")
    target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE kv_options)
endfunction()

# kv_program(NAME SOURCES … SEPARATE … LINK …)
function(kv_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;SEPARATE;LINK" ${ARGN})
    kv_batches(sources ${name} ${ARG_SOURCES})
    add_executable(${name} ${sources} ${ARG_SEPARATE})
    target_include_directories(${name} PRIVATE "${KV_ROOT}/src" "${KV_ROOT}")
    target_link_libraries(${name} PRIVATE ${ARG_LINK} kv_options)
endfunction()

# Builds what the tests that need nothing consist of.
add_custom_target(unit_tests)

# kv_test(NAME LABEL … SOURCES … SEPARATE … LINK …): a GoogleTest program, which is one test of ctest: a start costs 50
# milliseconds, under Wine half a second. tools/test-counts counts the tests in it.
# LABEL says what it needs: "unit" nothing, "server" a development server, "wine", "screen".
function(kv_test name)
    cmake_parse_arguments(ARG "" "LABEL" "SOURCES;SEPARATE;LINK" ${ARGN})
    if(ARG_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "kv_test(${name}): what is '${ARG_UNPARSED_ARGUMENTS}'? A test has one label.")
    endif()
    kv_program(${name} SOURCES ${ARG_SOURCES} SEPARATE ${ARG_SEPARATE}
               LINK ${ARG_LINK} GTest::gmock GTest::gtest_main)
    target_include_directories(${name} PRIVATE "${KV_ROOT}/tests")
    if("unit" IN_LIST ARG_LABEL)
        add_dependencies(unit_tests ${name})
    endif()
    if(WIN32)
        # Tests alone: what is shipped is linked by the compiler's own linker.
        target_link_options(${name} PRIVATE "SHELL:-wrapper ${KV_ROOT}/tools/link-with-lld")
        # On a screen the system itself shows a box for a program that cannot be started, and waits for an answer.
        set(runner env -u DISPLAY "${KV_ROOT}/tests/run-under-wine")
        if("screen" IN_LIST ARG_LABEL)
            set(runner "${KV_ROOT}/tests/with-screen" "${KV_ROOT}/tests/run-under-wine")
        endif()
        add_test(NAME ${name} COMMAND ${runner} $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT 600)
        # Seen: a program that has crashed under Wine, whose exit code was 0.
        set_tests_properties(${name} PROPERTIES FAIL_REGULAR_EXPRESSION "starting debugger")
        if("screen" IN_LIST ARG_LABEL)
            # A new screen ends what runs in the prefix for screens (tests/run-under-wine).
            set_tests_properties(${name} PROPERTIES RESOURCE_LOCK wine_screen)
        endif()
    elseif("screen" IN_LIST ARG_LABEL)
        # One test of the whole program: a screen takes longer to come up than most of them.
        add_test(NAME ${name} COMMAND "${KV_ROOT}/tests/with-screen" $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT 600 RESOURCE_LOCK screen
            ENVIRONMENT "LSAN_OPTIONS=suppressions=${KV_ROOT}/tests/leaks_of_others.txt")
    else()
        add_test(NAME ${name} COMMAND ${name})
        set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT 600)
    endif()
endfunction()
