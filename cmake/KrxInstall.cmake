# What `cmake --install` puts where: the products and the SDK for hosts of others.
include(CMakePackageConfigHelpers)

# The headers that a host includes and what they include in turn: every folder but the connector's
# inside, of which a host sees the export.
foreach(folder plat scl gen atr dv fl pfa dac log gma rfc)
  install(DIRECTORY src/${folder} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/krxmail
          FILES_MATCHING PATTERN "*.h")
endforeach()
install(FILES src/krx/krxapi.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/krxmail/krx)

install(TARGETS krxmail EXPORT KrxMailTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
# Beside the library, where it looks for what it loads by name.
install(TARGETS KRXWNT LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS krxhost RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/KrxMail)
set(KRX_MODULE_DIRECTORY ${CMAKE_INSTALL_LIBDIR})
install(EXPORT KrxMailTargets NAMESPACE KrxMail:: DESTINATION ${package_directory})
configure_package_config_file(cmake/KrxMailConfig.cmake.in KrxMailConfig.cmake
  INSTALL_DESTINATION ${package_directory} PATH_VARS KRX_MODULE_DIRECTORY)
write_basic_package_version_file(KrxMailConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KrxMailConfig.cmake
              ${PROJECT_BINARY_DIR}/KrxMailConfigVersion.cmake
        DESTINATION ${package_directory})

file(RELATIVE_PATH KRX_PC_PREFIX "/installed/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/installed")
configure_file(cmake/krxmail.pc.in krxmail.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/krxmail.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
