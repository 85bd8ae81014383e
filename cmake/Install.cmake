# Install the library with a CMake package config so that a driver project can use
#    find_package( NevQos ) and target_link_libraries( agent NevQos::nevqos ),
# or NevQos::contract for a driver's own library, which needs the helper contract alone.
include( GNUInstallDirs )
include( CMakePackageConfigHelpers )

install( TARGETS nevqos_platform nevqos_contract nevqos EXPORT NevQosTargets
         ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
         LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} )
install( DIRECTORY ${PROJECT_SOURCE_DIR}/NevQos/ DESTINATION include/NevQos
         FILES_MATCHING PATTERN "*.h" )
install( DIRECTORY ${PROJECT_SOURCE_DIR}/platform/ DESTINATION include/NevQos/platform
         FILES_MATCHING PATTERN "*.h" )
install( EXPORT NevQosTargets NAMESPACE NevQos:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/NevQos )

configure_package_config_file( ${PROJECT_SOURCE_DIR}/cmake/NevQosConfig.cmake.in
   ${PROJECT_BINARY_DIR}/NevQosConfig.cmake
   INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/NevQos )
write_basic_package_version_file( ${PROJECT_BINARY_DIR}/NevQosConfigVersion.cmake
   VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion )
install( FILES ${PROJECT_BINARY_DIR}/NevQosConfig.cmake ${PROJECT_BINARY_DIR}/NevQosConfigVersion.cmake
         DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/NevQos )
