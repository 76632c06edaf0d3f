# Sets KV_DEVSERVER to ON if the development server can be built, and for Windows KV_SQLITE_SOURCE to the folder of SQLite's
# source.
# The development server counts in 128 bits, so it is built for 64-bit systems.
set(KV_DEVSERVER ON)
if(WIN32)
    set(KV_SQLITE_SOURCE "${KV_ROOT}/build/sqlite")
    if(CMAKE_SIZEOF_VOID_P EQUAL 8 AND NOT EXISTS "${KV_SQLITE_SOURCE}/sqlite3.c")
        execute_process(COMMAND "${KV_ROOT}/tools/sqlite-source")
    endif()
    if(NOT CMAKE_SIZEOF_VOID_P EQUAL 8)
        set(KV_DEVSERVER OFF)
    elseif(NOT EXISTS "${KV_SQLITE_SOURCE}/sqlite3.c")
        # The server's test under Wine is still added, and fails.
        message(WARNING "tools/sqlite-source could not bring SQLite's source: devsqlserver.exe is not built.")
        set(KV_DEVSERVER OFF)
    endif()
endif()
