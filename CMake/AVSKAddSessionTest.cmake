# avsk_add_session_test(TEST SESSION file [ROOT folder] [PLUGINS target...] [STATUS n] [EXPECT text])
#
# Adds a ctest that runs a session with avsk. PLUGINS are targets of
# avsk_add_plugin() to load. ROOT is the simulator's folder, for sessions that
# load plugins from it. The test passes if two runs end with STATUS, by default 0,
# and print the same bytes, which contain the text after EXPECT. It is skipped if
# nothing fails but pictures that need OpenGL, and Mesa is missing.
set(AVSK_SESSION_TEST_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/AVSKSessionTest.cmake)

function(avsk_add_session_test test)
  cmake_parse_arguments(arg "" "SESSION;ROOT;STATUS;EXPECT" "PLUGINS" ${ARGN})
  if(arg_UNPARSED_ARGUMENTS)
    list(JOIN arg_UNPARSED_ARGUMENTS " " unknown)
    message(FATAL_ERROR "avsk_add_session_test(${test}): unknown words '${unknown}': "
      "there are SESSION, ROOT, PLUGINS, STATUS and EXPECT")
  endif()
  if(NOT arg_SESSION)
    message(FATAL_ERROR "avsk_add_session_test(${test}): name the session's file after SESSION")
  endif()
  cmake_path(ABSOLUTE_PATH arg_SESSION)
  if(NOT EXISTS ${arg_SESSION} OR IS_DIRECTORY ${arg_SESSION})
    message(FATAL_ERROR "avsk_add_session_test(${test}): no file '${arg_SESSION}': name the session after SESSION")
  endif()
  if(NOT arg_STATUS)
    set(arg_STATUS 0)
  endif()
  set(options "")
  if(arg_ROOT)
    list(APPEND options --root ${arg_ROOT})
  endif()
  foreach(plugin IN LISTS arg_PLUGINS)
    list(APPEND options --plugin $<TARGET_FILE:${plugin}>)
  endforeach()
  set(avsk avsk)
  if(TARGET AVSK::avsk)
    set(avsk AVSK::avsk)
  endif()
  add_test(NAME ${test}
    COMMAND ${CMAKE_COMMAND} -DSTATUS=${arg_STATUS} "-DEXPECT=${arg_EXPECT}" -P ${AVSK_SESSION_TEST_SCRIPT}
      -- $<TARGET_FILE:${avsk}> run ${arg_SESSION} ${options})
  set_tests_properties(${test} PROPERTIES TIMEOUT 60 SKIP_REGULAR_EXPRESSION "skipped: OpenGL draws nothing")
endfunction()
