# The same promises on both systems; what a .reg file may hold is Linux's own.
if(WIN32)
    set(registry_system windows)
else()
    set(registry_system linux)
    kv_test(reg_file_test LABEL unit SOURCES linux/reg_file_test.cpp linux/reg_damage_test.cpp LINK kv_registry)
    kv_test(reg_store_test LABEL unit SOURCES linux/reg_store_test.cpp LINK kv_registry)
endif()
kv_test(registry_test LABEL unit
        SOURCES registry_test.cpp ${registry_system}/registry_room.cpp
        LINK kv_registry)
