# The version record: what the title of the main window shows of it, and its numbers.
set(KV_VERSION_COMMENTS "Version 6.G4 Build 31")
set(KV_VERSION_NUMBERS "6,0,4,31")

# kv_windows_resources(TARGET): the icons, the manifest and the version record for a Windows executable. The manifest
# is what makes the common controls those of version 6 and lets the program see the monitor's real pixels.
function(kv_windows_resources target)
    if(WIN32)
        set(file "${CMAKE_BINARY_DIR}/resources/program.rc")
        configure_file("${PROJECT_SOURCE_DIR}/src/main/windows/program.rc.in" "${file}" @ONLY)
        set_source_files_properties("${file}" PROPERTIES OBJECT_DEPENDS
            "${PROJECT_SOURCE_DIR}/src/main/windows/program.manifest;${PROJECT_SOURCE_DIR}/src/main/icons/program.ico;${PROJECT_SOURCE_DIR}/src/main/icons/execute.ico")
        target_sources(${target} PRIVATE "${file}")
    endif()
endfunction()
