include(CMakePackageConfigHelpers)

install(TARGETS zerklsc EXPORT zerklsc LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/zerklsc.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(ZERKLSC_TOOL)
    install(TARGETS zerklsc_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zerklsc)
install(EXPORT zerklsc FILE zerklsc-config.cmake NAMESPACE zerklsc:: DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zerklsc-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zerklsc-config-version.cmake DESTINATION ${package_dir})

configure_file(${PROJECT_SOURCE_DIR}/cmake/zerklsc.pc.in ${PROJECT_BINARY_DIR}/zerklsc.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zerklsc.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
