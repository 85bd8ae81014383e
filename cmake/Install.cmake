# Install the library with a CMake package config so that a driver project can use
#    find_package( NevQos ) and target_link_libraries( agent NevQos::nevqos ),
# NevQos::contract for a driver's own library, which needs the helper contract alone, and
# NevQos::chip, the reference chip, to stand in for its own in tests. The scenario runner's
# libraries read YAML and write JSON, so they come with the component `runner`:
#    find_package( NevQos 0.2 REQUIRED COMPONENTS runner ) and NevQos::runner.
# The driver conformance kit (NevQos::conformance, its GoogleTest suite in
# <NevQos/sim/conformance/ConformanceSuite.h>) comes with `runner` too, with the examples it plays
# under share/NevQos/examples.
# Every header is installed under include/NevQos/, the one folder a consumer's include path gains:
# the library's own folders as they are, the platform's under NevQos/platform/ and the
# simulator's under NevQos/sim/, the names the sources include them by.
include( GNUInstallDirs )
include( CMakePackageConfigHelpers )

set( NEVQOS_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/NevQos )

# The libraries' names in the package (NevQos::chip); the simulator's as files too
# (libNevQosChip.a), and their headers from the installed include folder.
set_target_properties( nevqos_platform PROPERTIES EXPORT_NAME platform )
set_target_properties( nevqos_contract PROPERTIES EXPORT_NAME contract )
set_target_properties( nevqos PROPERTIES EXPORT_NAME nevqos )
foreach( part Chip Recording Scenario Runner ClassBench Checks Random Conformance )
   string( TOLOWER ${part} name )
   set_target_properties( nevqos_${name} PROPERTIES EXPORT_NAME ${name} OUTPUT_NAME NevQos${part} )
   target_include_directories( nevqos_${name} PUBLIC $<INSTALL_INTERFACE:include> )
endforeach()

install( TARGETS nevqos_platform nevqos_contract nevqos nevqos_chip EXPORT NevQosTargets
         ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
         LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} )
install( TARGETS nevqos_classbench nevqos_recording nevqos_scenario nevqos_runner nevqos_checks
                 nevqos_random nevqos_conformance
         EXPORT NevQosRunnerTargets
         ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} )
install( TARGETS nevqos-sim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} )

install( DIRECTORY ${PROJECT_SOURCE_DIR}/NevQos/ DESTINATION include/NevQos
         FILES_MATCHING PATTERN "*.h" )
install( DIRECTORY ${PROJECT_SOURCE_DIR}/platform/ DESTINATION include/NevQos/platform
         FILES_MATCHING PATTERN "*.h" )
install( DIRECTORY ${PROJECT_SOURCE_DIR}/sim/chip ${PROJECT_SOURCE_DIR}/sim/classbench
                   ${PROJECT_SOURCE_DIR}/sim/recording ${PROJECT_SOURCE_DIR}/sim/scenario
                   ${PROJECT_SOURCE_DIR}/sim/runner ${PROJECT_SOURCE_DIR}/sim/checks
                   ${PROJECT_SOURCE_DIR}/sim/random ${PROJECT_SOURCE_DIR}/sim/conformance
         DESTINATION include/NevQos/sim FILES_MATCHING PATTERN "*.h" )
install( DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION share/NevQos/examples
         FILES_MATCHING PATTERN "*.yaml" )

install( EXPORT NevQosTargets NAMESPACE NevQos:: DESTINATION ${NEVQOS_PACKAGE_DIR} )
install( EXPORT NevQosRunnerTargets NAMESPACE NevQos:: DESTINATION ${NEVQOS_PACKAGE_DIR} )

configure_package_config_file( ${PROJECT_SOURCE_DIR}/cmake/NevQosConfig.cmake.in
   ${PROJECT_BINARY_DIR}/NevQosConfig.cmake
   INSTALL_DESTINATION ${NEVQOS_PACKAGE_DIR} )
write_basic_package_version_file( ${PROJECT_BINARY_DIR}/NevQosConfigVersion.cmake
   VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion )
install( FILES ${PROJECT_BINARY_DIR}/NevQosConfig.cmake ${PROJECT_BINARY_DIR}/NevQosConfigVersion.cmake
         DESTINATION ${NEVQOS_PACKAGE_DIR} )
