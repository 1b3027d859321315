# Runs the demo's tour script in a fresh work folder, compares what the host prints, checks with
# the command-line tool that the saved copy holds the sample's items and the one added, and that
# the copy and its chip encode file are the bytes in SAVED (the same on every system). HOST and
# CLI are commands, "|"-separated.
include(${CMAKE_CURRENT_LIST_DIR}/RunScript.cmake)
string(REPLACE "|" ";" cli "${CLI}")
foreach(layout layouts/Staff.IIF Tour.IIF)
  execute_process(COMMAND ${cli} info ${layout} --json WORKING_DIRECTORY ${WORK}
                  OUTPUT_VARIABLE json RESULT_VARIABLE rc ERROR_QUIET)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "kestrin info ${layout} exited with ${rc}")
  endif()
  string(JSON items LENGTH "${json}" items)
  list(APPEND counts ${items})
endforeach()
list(GET counts 0 sample)
list(GET counts 1 saved)
math(EXPR added "${saved} - ${sample}")
if(NOT added EQUAL 1)
  message(FATAL_ERROR "the sample has ${sample} items, the saved copy ${saved}; expected one more")
endif()
foreach(saved Tour.IIF layouts/Tour.CHP)
  get_filename_component(name ${saved} NAME)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK}/${saved} ${SAVED}/${name} RESULT_VARIABLE differ)
  if(differ)
    message(FATAL_ERROR "${saved} as saved differs from ${SAVED}/${name}")
  endif()
endforeach()
