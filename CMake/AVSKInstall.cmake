# Installs headers, library, avsk with manual pages, completion and the page of `avsk
# live`, the CMake and pkg-config packages, the guides, and the sources of the samples. The installed
# folder can be moved as a whole: all paths in it are relative.
include(CMakePackageConfigHelpers)

set(AVSK_INSTALL_PACKAGE lib/cmake/AVSK)
set(AVSK_INSTALL_SAMPLES share/avsk/samples)

add_executable(AVSK::avsk ALIAS avsk)
set_target_properties(avsk PROPERTIES INSTALL_RPATH "$ORIGIN/../lib:$ORIGIN/../${AVSK_PRIVATE_FOLDER}/opengl")
install(TARGETS AVSK avsk EXPORT AVSKTargets
  LIBRARY DESTINATION lib
  RUNTIME DESTINATION bin
  INCLUDES DESTINATION include)
install(TARGETS avsk_preload LIBRARY DESTINATION ${AVSK_PRIVATE_FOLDER})
# Not beside the library, where other programs would find it.
set_target_properties(avsk_opengl PROPERTIES EXPORT_NAME OpenGL)
install(TARGETS avsk_opengl EXPORT AVSKTargets LIBRARY DESTINATION ${AVSK_PRIVATE_FOLDER}/opengl)
install(PROGRAMS Src/Host/OpenGL/setup-opengl DESTINATION ${AVSK_PRIVATE_FOLDER})
install(DIRECTORY Src/Host/Live/Page/ DESTINATION ${AVSK_LIVE_FOLDER})
if(EXISTS ${AVSK_CHART_JS})
  install(FILES ${AVSK_CHART_JS} DESTINATION ${AVSK_LIVE_FOLDER} RENAME chart.js)
endif()
install(DIRECTORY Src/AVSK/Include/AVSK DESTINATION include FILES_MATCHING PATTERN "*.h")

install(EXPORT AVSKTargets NAMESPACE AVSK:: DESTINATION ${AVSK_INSTALL_PACKAGE})
configure_package_config_file(CMake/AVSKConfig.cmake.in ${PROJECT_BINARY_DIR}/package/AVSKConfig.cmake
  INSTALL_DESTINATION ${AVSK_INSTALL_PACKAGE}
  PATH_VARS AVSK_INSTALL_SAMPLES)
# The package sets the 32-bit flags itself, so a 64-bit project may use it.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/AVSKConfigVersion.cmake
  COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES
  ${PROJECT_BINARY_DIR}/package/AVSKConfig.cmake
  ${PROJECT_BINARY_DIR}/package/AVSKConfigVersion.cmake
  CMake/AVSKAddPlugin.cmake
  CMake/AVSKAddSessionTest.cmake
  CMake/AVSKSessionTest.cmake
  CMake/linux-i686.cmake
  DESTINATION ${AVSK_INSTALL_PACKAGE})
configure_file(CMake/avsk.pc.in ${PROJECT_BINARY_DIR}/package/avsk.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package/avsk.pc DESTINATION lib/pkgconfig)

install(DIRECTORY Samples/ DESTINATION ${AVSK_INSTALL_SAMPLES})
install(DIRECTORY ${PROJECT_BINARY_DIR}/pages/man/ DESTINATION share/man)
install(DIRECTORY ${PROJECT_BINARY_DIR}/pages/completions/ DESTINATION share/bash-completion/completions)
execute_process(COMMAND gzip -9nc
  INPUT_FILE ${PROJECT_SOURCE_DIR}/CHANGELOG.md OUTPUT_FILE ${PROJECT_BINARY_DIR}/package/changelog.gz
  COMMAND_ERROR_IS_FATAL ANY)
install(FILES ${PROJECT_BINARY_DIR}/package/changelog.gz CMake/Debian/copyright DESTINATION share/doc/avsk-sdk)
install(DIRECTORY Docs/ DESTINATION share/doc/avsk-sdk FILES_MATCHING PATTERN "*.md")
