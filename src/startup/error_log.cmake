# What every routine that can fail is built on: the log, the database errors, the registry settings.
kv_library(kv_startup SOURCES error_log.cpp db_errors.cpp registry_settings.cpp
           LINK kv_failure kv_files kv_clock kv_registry kv_message_box)
