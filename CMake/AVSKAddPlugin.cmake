# avsk_add_plugin(TARGET SOURCES source... [FOLDER folder] [NAME name] [LOOSE] [OPENGL] [NO_CHECK])
#
# Builds a plugin for the simulator. FOLDER is a plugins folder, by
# default <build>/plugins. The file is FOLDER/<NAME>/lin.avp or, with LOOSE,
# FOLDER/<NAME>.avp. NAME is TARGET by default.
#
# With OPENGL the plugin is linked with OpenGL and can include <GL/gl.h>. It finds
# the simulator's OpenGL at run time, or that of avsk.
#
# In a project with tests the ctest <TARGET>_check judges the plugin with
# `avsk check`. NO_CHECK leaves it out.
#
# Used by this tree and, through find_package(AVSK), by plugins outside it.
function(avsk_add_plugin target)
  cmake_parse_arguments(arg "LOOSE;OPENGL;NO_CHECK" "FOLDER;NAME" "SOURCES" ${ARGN})
  if(NOT arg_SOURCES)
    message(FATAL_ERROR "avsk_add_plugin(${target}): name its files after SOURCES")
  endif()
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "avsk_add_plugin(${target}): unknown words '${arg_UNPARSED_ARGUMENTS}': name its files after SOURCES")
  endif()
  if(NOT arg_FOLDER)
    set(arg_FOLDER ${CMAKE_CURRENT_BINARY_DIR}/plugins)
  endif()
  if(NOT arg_NAME)
    set(arg_NAME ${target})
  endif()

  add_library(${target} MODULE ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE AVSK::AVSK)
  if(arg_OPENGL)
    find_path(AVSK_OPENGL_HEADERS GL/gl.h)
    if(NOT AVSK_OPENGL_HEADERS)
      message(FATAL_ERROR "avsk_add_plugin(${target}): no GL/gl.h: install the package libgl-dev")
    endif()
    target_include_directories(${target} SYSTEM PRIVATE ${AVSK_OPENGL_HEADERS})
    target_link_libraries(${target} PRIVATE AVSK::OpenGL)
  endif()
  # All plugins share one symbol namespace, so visible symbols of two plugins clash.
  # A GNU unique symbol keeps the file mapped after dlclose().
  # No run path: the process that loads the plugin has already loaded the library,
  # and the path would name a folder of this machine.
  set_target_properties(${target} PROPERTIES
    PREFIX "" SUFFIX ".avp" BUILD_WITH_INSTALL_RPATH ON
    C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-gnu-unique>)
  target_link_options(${target} PRIVATE -Wl,-Bsymbolic)
  if(arg_LOOSE)
    set_target_properties(${target} PROPERTIES OUTPUT_NAME ${arg_NAME} LIBRARY_OUTPUT_DIRECTORY ${arg_FOLDER})
  else()
    set_target_properties(${target} PROPERTIES OUTPUT_NAME lin LIBRARY_OUTPUT_DIRECTORY ${arg_FOLDER}/${arg_NAME})
  endif()

  if(arg_NO_CHECK)
    return()
  endif()
  set(avsk avsk)
  if(TARGET AVSK::avsk)
    set(avsk AVSK::avsk)
  endif()
  if(TARGET ${avsk})
    # Without enable_testing() this has no effect.
    add_test(NAME ${target}_check COMMAND ${avsk} check $<TARGET_FILE:${target}>)
    set_tests_properties(${target}_check PROPERTIES TIMEOUT 300)
  endif()
endfunction()
