# The layer over a driver manager of the tests' own, which counts handles and fails on demand.
kv_test(odbc_test LABEL unit SOURCES odbc_test.cpp ../fakes/odbc_counting.cpp LINK kv_odbc_calls)
