# Writes a C++ source with the texts of files, so that they are part of the program: a/system_tables.sql becomes the
# constant kSystemTables in the namespace devsql::embedded.
#
#   cmake -DOUTPUT=FILE -P embed_texts.cmake FILE.sql… FILE.txt…
set(source "#include <string_view>\n\nnamespace devsql::embedded {\n")
set(index 0)
while(index LESS CMAKE_ARGC)
    set(file "${CMAKE_ARGV${index}}")
    math(EXPR index "${index} + 1")
    if(NOT file MATCHES "\\.(sql|txt)$")
        continue()
    endif()
    get_filename_component(name "${file}" NAME_WE)
    string(REPLACE "_" ";" words "${name}")
    set(constant k)
    foreach(word IN LISTS words)
        string(SUBSTRING "${word}" 0 1 first)
        string(SUBSTRING "${word}" 1 -1 rest)
        string(TOUPPER "${first}" first)
        string(APPEND constant "${first}${rest}")
    endforeach()
    file(READ "${file}" text)
    string(APPEND source "extern const std::string_view ${constant};\n"
                         "const std::string_view ${constant} = R\"text(${text})text\";\n")
endwhile()
string(APPEND source "} // namespace devsql::embedded\n")
file(WRITE "${OUTPUT}" "${source}")
