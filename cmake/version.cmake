# The version and the names of the product, for the executables, the packages and the build. KV_VERSION_COMMENTS is shown
# in the title of the main window.
set(KV_VERSION "6.0.4.31")
set(KV_VERSION_COMMENTS "Version 6.G4 Build 31")
string(REPLACE "." "," KV_VERSION_NUMBERS "${KV_VERSION}")
set(KV_PRODUCT "Lotkeeper Database Manager")
set(KV_DESCRIPTION "Halvane Vindrel SQL Database Manager")
set(KV_MAKER "Halvane Vindrel")

# kv_windows_resources(TARGET [FILE name] [DESCRIPTION text]): adds icons, manifest and version record to a Windows
# executable. File name and description are the product's unless they are given. The manifest selects version 6 of the
# common controls and prevents the system from scaling the windows.
function(kv_windows_resources target)
    if(NOT WIN32)
        return()
    endif()
    cmake_parse_arguments(ARG "" "FILE;DESCRIPTION" "" ${ARGN})
    set(KV_FILE "KVLSQLDbMgr.exe")
    if(ARG_FILE)
        set(KV_FILE "${ARG_FILE}")
    endif()
    if(ARG_DESCRIPTION)
        set(KV_DESCRIPTION "${ARG_DESCRIPTION}")
    endif()
    get_filename_component(KV_INTERNAL_NAME "${KV_FILE}" NAME_WE)
    set(file "${CMAKE_BINARY_DIR}/resources/${KV_INTERNAL_NAME}.rc")
    configure_file("${KV_ROOT}/src/main/windows/program.rc.in" "${file}" @ONLY)
    set_source_files_properties("${file}" PROPERTIES OBJECT_DEPENDS
        "${KV_ROOT}/src/main/windows/program.manifest;${KV_ROOT}/src/main/icons/program.ico;${KV_ROOT}/src/main/icons/execute.ico")
    target_sources(${target} PRIVATE "${file}")
endfunction()
