# What every build tree of these sources begins with, that of the whole and that of the development server alone: options,
# the language's standard, the compiler cache, GoogleTest. Included after project().
option(KV_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
option(KV_FUZZ "Build the fuzzing harnesses for libFuzzer (clang)" OFF)

option(KV_UNITY "Compile the files of a target in batches; ./check and ./demo ask for it" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set_property(GLOBAL PROPERTY USE_FOLDERS ON)

find_program(KV_CCACHE ccache)
if(KV_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${KV_CCACHE}")
endif()

include("${CMAKE_CURRENT_LIST_DIR}/kv.cmake")
include("${CMAKE_CURRENT_LIST_DIR}/fuzz.cmake")
if(WIN32)
    enable_language(RC)
    set(KV_SYSTEM windows)
else()
    set(KV_SYSTEM linux)
endif()
enable_testing()
if(WIN32)
    # Debian ships no GoogleTest for mingw; the source that libgtest-dev brings builds for it.
    set(gtest_force_shared_crt ON)
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
    foreach(library gtest gtest_main gmock gmock_main)
        target_compile_options(${library} PRIVATE -O0)
    endforeach()
else()
    find_package(GTest REQUIRED)
endif()
