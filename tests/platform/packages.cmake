kv_test(package_file_test LABEL unit SOURCES package_file_test.cpp LINK kv_package_store)
kv_test(package_store_test LABEL unit SOURCES package_store_test.cpp LINK dts_odbc kv_package_store)
if(WIN32)
    kv_test(packages_com_test LABEL wine SOURCES windows/packages_test.cpp LINK kv_packages)
    add_dependencies(packages_com_test dts_com_server)
    # It registers the stand-in's classes and takes them out again.
    set_tests_properties(packages_com_test PROPERTIES RESOURCE_LOCK dts_classes)
else()
    kv_test(packages_linux_test LABEL unit SOURCES linux/packages_test.cpp LINK dts_odbc kv_packages)
    kv_test(packages_server_test
            LABEL server
            SOURCES linux/packages_server_test.cpp
            LINK dts_dev_server kv_packages)
    add_dependencies(packages_server_test devsqlserver)
endif()
