# An installed copy works wherever it is put: what it holds finds its other parts by relative paths.
include(CMakePackageConfigHelpers)

install(TARGETS zerklsc EXPORT zerklsc LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                                       ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/CONTRIBUTING.md ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/SECURITY.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.c")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN "*.scd" EXCLUDE
                                                                                 PATTERN Doxyfile EXCLUDE)

# Sets `result` to the path from the folder `from` to `to`; both are install directories. An absolute one stays.
function(zerklsc_path_between from to result)
    set(path ${CMAKE_INSTALL_FULL_${to}})
    if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_${from}}" AND NOT IS_ABSOLUTE "${CMAKE_INSTALL_${to}}")
        file(RELATIVE_PATH path "/prefix/${CMAKE_INSTALL_${from}}" "/prefix/${CMAKE_INSTALL_${to}}")
    endif()
    set(${result} ${path} PARENT_SCOPE)
endfunction()

# The README's links to the headers, which are not installed beside it.
zerklsc_path_between(DOCDIR INCLUDEDIR header_path)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/README.md)
file(READ ${PROJECT_SOURCE_DIR}/README.md readme)
string(REPLACE "](include/" "](${header_path}/" readme "${readme}")
file(WRITE ${PROJECT_BINARY_DIR}/README.md "${readme}")
install(FILES ${PROJECT_BINARY_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

if(ZERKLSC_TOOL)
    install(TARGETS zerklsc_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    zerklsc_path_between(BINDIR LIBDIR library_path)
    if(NOT IS_ABSOLUTE "${library_path}")
        string(PREPEND library_path "$ORIGIN/")
    endif()
    set_target_properties(zerklsc_tool PROPERTIES INSTALL_RPATH "${library_path}")
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zerklsc)
install(EXPORT zerklsc FILE zerklsc-targets.cmake NAMESPACE zerklsc:: DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zerklsc-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/zerklsc-config.cmake ${PROJECT_BINARY_DIR}/zerklsc-config-version.cmake
        DESTINATION ${package_dir})

# zerklsc.pc stands in lib/pkgconfig and says where the prefix is from there.
set(pc_prefix ${CMAKE_INSTALL_PREFIX})
set(pc_libdir ${CMAKE_INSTALL_FULL_LIBDIR})
set(pc_includedir ${CMAKE_INSTALL_FULL_INCLUDEDIR})
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    file(RELATIVE_PATH pc_prefix "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
    string(REGEX REPLACE "/$" "" pc_prefix "\${pcfiledir}/${pc_prefix}")
    set(pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
    if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
        set(pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
    endif()
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/zerklsc.pc.in ${PROJECT_BINARY_DIR}/zerklsc.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zerklsc.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
