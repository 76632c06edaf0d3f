kv_fake(fake_packages fake_packages.cpp)
kv_fake(dts_odbc dts_odbc.cpp)

if(WIN32)
    # The stand-in for the COM classes lies beside the executables that use it.
    add_library(dts_com_server SHARED dts_com_server.cpp dts_com_object.cpp dts_com_record.cpp
                                      dts_com_server.def)
    set_target_properties(dts_com_server PROPERTIES PREFIX "")
    # The interfaces of COM end by Release and have no virtual destructors.
    set_source_files_properties(dts_com_server.cpp dts_com_object.cpp
                                PROPERTIES COMPILE_OPTIONS -Wno-non-virtual-dtor)
    target_include_directories(dts_com_server PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    target_link_libraries(dts_com_server PRIVATE kv_packages kv_package_store kv_options)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        # The entry points lose the "@n" that x86 adds to their names.
        target_link_options(dts_com_server PRIVATE -Wl,--enable-stdcall-fixup)
    endif()
else()
    kv_fake(dts_dev_server dts_dev_server.cpp)
    target_compile_definitions(dts_dev_server
        PRIVATE KV_DEVSQLSERVER="$<TARGET_FILE:devsqlserver>"
                KV_ODBC_CONFIG="${PROJECT_SOURCE_DIR}/src/platform/odbc_config")
endif()
