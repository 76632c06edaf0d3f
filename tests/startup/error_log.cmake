kv_test(startup_error_log_test LABEL unit
        SOURCES error_log_test.cpp registry_settings_test.cpp
        LINK fake_files fake_registry fake_clock kv_startup)
kv_test(startup_db_errors_test LABEL unit
        SOURCES db_errors_test.cpp int16_test.cpp
        LINK fake_files fake_screen fake_registry kv_startup)
# The same over the system's own files and registry: where a relative log folder leads, and what a site's
# registry gives.
if(WIN32)
    set(registry_system windows)
else()
    set(registry_system linux)
    kv_test(startup_damaged_registry_test LABEL unit
            SOURCES damaged_registry_test.cpp
            LINK fake_files fake_clock kv_startup)
endif()
kv_test(startup_on_this_system_test LABEL unit
        SOURCES startup_on_this_system_test.cpp ../platform/${registry_system}/registry_room.cpp
        LINK fake_clock kv_startup)
