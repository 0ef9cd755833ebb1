# Makes packages of the SDK with CPack: avsk-sdk_VERSION_amd64.deb, and a tar.xz that
# works in any folder. `./dev package` runs it.
set(CPACK_GENERATOR "DEB;TXZ")
set(CPACK_PACKAGE_NAME avsk-sdk)
set(CPACK_PACKAGE_CONTACT "AVSK maintainers <maintainers@avsk.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "SDK for plugins of the Aerivo flight simulator")
set(CPACK_PACKAGE_DESCRIPTION
"Headers, library, sample plugins and guides to write plugins for the Aerivo
flight simulator, and to write programs that load such plugins. The program
avsk runs, tests and traces plugins without the simulator.")
set(CPACK_PACKAGE_FILE_NAME avsk-sdk-${PROJECT_VERSION}-linux-i686)
# The reports of avsk name functions from the dynamic symbols, which stay.
set(CPACK_STRIP_FILES ON)

# The binaries are 32-bit, but the package is for amd64: Debian has the libraries and
# the compiler for 32-bit programs as amd64 packages, so that users need no foreign
# architecture.
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6-i386 (>= 2.36), lib32stdc++6 (>= 12), lib32gcc-s1 (>= 12)")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "g++-multilib, cmake, ninja-build, fonts-dejavu-core, libgl-dev")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "pkgconf, rlwrap, www-browser, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
file(WRITE ${PROJECT_BINARY_DIR}/package/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/package/triggers)

# Files of the Debian package only.
execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C date -uR -d "1 ${AVSK_RELEASE_DATE}"
  OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(WRITE ${PROJECT_BINARY_DIR}/package/changelog.Debian
"avsk-sdk (${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) stable; urgency=medium

  * changelog.gz lists the changes.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
execute_process(COMMAND gzip -9nf ${PROJECT_BINARY_DIR}/package/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
install(FILES ${PROJECT_BINARY_DIR}/package/changelog.Debian.gz
  DESTINATION share/doc/avsk-sdk COMPONENT debian EXCLUDE_FROM_ALL)
install(FILES CMake/Debian/lintian-overrides
  DESTINATION share/lintian/overrides RENAME avsk-sdk COMPONENT debian EXCLUDE_FROM_ALL)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/package/PerGenerator.cmake)
file(WRITE ${CPACK_PROJECT_CONFIG_FILE}
"if(CPACK_GENERATOR STREQUAL DEB)
  list(APPEND CPACK_INSTALL_CMAKE_PROJECTS \"${PROJECT_BINARY_DIR};AVSK;debian;/\")
endif()
")
include(CPack)
