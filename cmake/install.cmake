# What `cmake --install` puts where: the listed headers, the library, the tool, the package config, the pkg-config file.

foreach(header IN LISTS ZELDOM40_HEADERS)
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zeldom40/${folder} COMPONENT devel)
endforeach()

install(TARGETS zeldom40 EXPORT zeldom40-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT devel
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT devel)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
# The built-in document type definition keeps the notice of the texts that it was made from.
install(FILES dom/dtd/NOTICE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime OPTIONAL)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zeldom40)
install(EXPORT zeldom40-targets NAMESPACE zeldom40:: DESTINATION ${package_dir} COMPONENT devel)
configure_package_config_file(cmake/zeldom40-config.cmake.in ${PROJECT_BINARY_DIR}/zeldom40-config.cmake
                              INSTALL_DESTINATION ${package_dir})
# Before 1.0 a minor version may change the interface, so a host must find the one that it asked for.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zeldom40-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zeldom40-config.cmake ${PROJECT_BINARY_DIR}/zeldom40-config-version.cmake
        DESTINATION ${package_dir} COMPONENT devel)

# Relative to the place of the .pc file, so that an installed tree can be moved.
if(ZELDOM40_STATIC)
  set(pc_cflags "-DZELDOM40_STATIC")
endif()
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} OUTPUT_VARIABLE pc_libdir)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
           OUTPUT_VARIABLE pc_includedir)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
           OUTPUT_VARIABLE pc_up)
configure_file(cmake/zeldom40.pc.in ${PROJECT_BINARY_DIR}/zeldom40.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zeldom40.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT devel)
