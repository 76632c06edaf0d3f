if(WIN32)
    kv_library(kv_registry SOURCES windows/registry.cpp)
    target_link_libraries(kv_registry PUBLIC advapi32)
else()
    kv_library(kv_registry SOURCES linux/registry.cpp linux/reg_store.cpp linux/reg_file.cpp linux/reg_parser.cpp
                                   linux/reg_text.cpp)
endif()
