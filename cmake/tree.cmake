# Common to the build trees of the whole project and of the development server alone: options, the C++ standard, the
# compiler cache, GoogleTest. Include it after project().
option(KV_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
option(KV_FUZZ "Build the fuzzing harnesses for libFuzzer (clang)" OFF)

option(KV_UNITY "Compile the files of a target in batches, as ./check and ./demo do" OFF)

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
    # Debian has no GoogleTest for mingw, so the sources of libgtest-dev are compiled.
    set(gtest_force_shared_crt ON)
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
    foreach(library gtest gtest_main gmock gmock_main)
        target_compile_options(${library} PRIVATE -O0)
    endforeach()
else()
    find_package(GTest REQUIRED)
endif()
