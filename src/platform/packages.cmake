# kv_packages: the objects of packages.h. kv_package_store: the package file and the store in msdb behind them
# on Linux; it builds on Windows as well, where the tests' stand-in for the COM classes uses it.
kv_library(kv_package_store SOURCES package_file.cpp package_store.cpp LINK kv_odbc kv_files)
if(WIN32)
    kv_library(kv_packages SOURCES windows/automation.cpp windows/packages.cpp LINK oleaut32 ole32 uuid)
else()
    kv_library(kv_packages SOURCES linux/packages.cpp LINK kv_package_store)
endif()
