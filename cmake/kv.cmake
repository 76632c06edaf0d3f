# The options of every target (warnings, sanitizers, static Windows executables), and the functions that declare a
# library, a program and a test.

# The root of the sources, also where the project is the development server alone.
get_filename_component(KV_ROOT "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)

add_library(kv_options INTERFACE)
target_compile_options(kv_options INTERFACE -Wall -Wextra -Wpedantic -Werror -Wshadow -Wnon-virtual-dtor
                                            -Wold-style-cast -Wconversion -Wno-sign-conversion -fno-strict-aliasing)
# At -O2 GCC 12 wrongly warns of overlapping copies in "literal" + std::string. clang, which clang-tidy and the fuzzers
# use, does not know that warning and would fail on its name.
target_compile_options(kv_options INTERFACE -Wno-restrict -Wno-unknown-warning-option)
if(KV_UNITY)
    # In a batch a source is an included file. GCC then warns of its classes with members of types from an unnamed
    # namespace, as if it were a header.
    target_compile_options(kv_options INTERFACE -Wno-subobject-linkage)
endif()
if(KV_SANITIZE)
    # Compiling takes most of the time of a test run. The sanitizers' reports need only line numbers of the debug
    # information, and optimising takes more time than it saves, except for the development server, which sets it itself.
    # Four checks at every access to an object would take a quarter of the compile time and find nothing more: the
    # processor stops at a null pointer, the address sanitizer finds accesses outside an object, the processor accepts
    # every alignment, and a downcast follows a test of the object's kind.
    target_compile_options(kv_options INTERFACE -g1 -fsanitize=address,undefined -fno-sanitize-recover=all
                                                -fno-sanitize=null,alignment,object-size,vptr -fno-omit-frame-pointer)
    target_link_options(kv_options INTERFACE -fsanitize=address,undefined)
endif()
if(KV_FUZZ)
    # Lets the fuzzer see which code an input reaches; only clang has it.
    target_compile_options(kv_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(WIN32)
    # One static executable that needs only the system's DLLs.
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
    # The system's headers define macros with common names, so sources that include them are compiled separately.
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

# kv_library(NAME SOURCES … SEPARATE … LINK …): a static library; headers are included by their paths below src/.
# SEPARATE: sources that cannot be compiled in a batch with others.
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

# Builds the programs of all unit tests.
add_custom_target(unit_tests)

# kv_test(NAME LABEL … SOURCES … SEPARATE … LINK …): a GoogleTest program. The program is one test of ctest, because
# starting it takes 50 milliseconds, under Wine half a second. tools/test-counts counts the tests in it.
# LABEL says what it needs: "unit" nothing, "server" a development server, "wine" Wine, "screen" a screen.
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
        # Only tests: the delivered programs are linked by the compiler's own linker.
        target_link_options(${name} PRIVATE "SHELL:-wrapper ${KV_ROOT}/tools/link-with-lld")
        # With a screen the system shows a box if a program cannot be started, and waits for an answer.
        set(runner env -u DISPLAY "${KV_ROOT}/tests/run-under-wine")
        if("screen" IN_LIST ARG_LABEL)
            set(runner "${KV_ROOT}/tests/with-screen" "${KV_ROOT}/tests/run-under-wine")
        endif()
        add_test(NAME ${name} COMMAND ${runner} $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT 600)
        # A program that crashed under Wine has been seen to return exit code 0.
        set_tests_properties(${name} PROPERTIES FAIL_REGULAR_EXPRESSION "starting debugger")
        if("screen" IN_LIST ARG_LABEL)
            # A new screen ends the programs in the Wine prefix for screens (tests/run-under-wine).
            set_tests_properties(${name} PROPERTIES RESOURCE_LOCK wine_screen)
        endif()
    elseif("screen" IN_LIST ARG_LABEL)
        # One screen for the whole program: starting a screen takes longer than most of its tests.
        add_test(NAME ${name} COMMAND "${KV_ROOT}/tests/with-screen" --no-wine $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT 600 RESOURCE_LOCK screen
            ENVIRONMENT "LSAN_OPTIONS=suppressions=${KV_ROOT}/tests/leaks_of_others.txt")
    else()
        add_test(NAME ${name} COMMAND ${name})
        set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABEL}" TIMEOUT 600)
    endif()
endfunction()
