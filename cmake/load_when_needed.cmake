# What packages depend on is read from what a program is linked with: this one does nothing else.
file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/loaded_when_needed.cpp CONTENT "int main() {}\n")
add_executable(zerklsc_loaded_when_needed EXCLUDE_FROM_ALL ${CMAKE_CURRENT_BINARY_DIR}/loaded_when_needed.cpp)
target_link_options(zerklsc_loaded_when_needed PRIVATE -Wl,--no-as-needed)

# Has the tool load a shared library itself: defines `macro` as the library's SONAME, as "libtiff.so.6".
function(zerklsc_load_when_needed library macro)
    execute_process(COMMAND ${CMAKE_OBJDUMP} -p ${library} OUTPUT_VARIABLE headers ERROR_QUIET)
    if(NOT headers MATCHES "SONAME +([^ \n]+)")
        message(FATAL_ERROR "${library} has no SONAME: expected a shared library, and objdump, which reads it")
    endif()
    target_compile_definitions(zerklsc_tool_flags INTERFACE ${macro}="${CMAKE_MATCH_1}")
    target_link_libraries(zerklsc_loaded_when_needed PRIVATE ${library})
endfunction()
