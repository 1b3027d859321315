cmake_minimum_required(VERSION 3.25)
# Runs one host's calls on a fresh work folder holding a copy of the eight-page sample layout, its
# chip encode file and the sample project, then checks what the host printed (TRANSCRIPT, when
# given) and that the saved layout and chip encode file are the bytes in EXPECTED, with the old
# layout kept as the backup.
#   COMMAND: the host's command line, "|"-separated; the text %WORK% in it stands for the work
#            folder as a Windows path (WINWORK, by default Z:\...) and %UNIXWORK% for it as it is.
#   UPDATE=ON writes the saved files into EXPECTED instead (done with the Linux build only).
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
foreach(file layouts/Visitors16K.IIF layouts/Visitors16K.CHP project/Sample.ini)
  file(COPY ${EXAMPLES}/${file} DESTINATION ${WORK})
endforeach()

if(WINWORK)
  set(windows_work "${WINWORK}")
else()
  string(REPLACE "/" "\\" windows_work "Z:${WORK}")
endif()
string(REPLACE "%WORK%" "${windows_work}" command "${COMMAND}")
string(REPLACE "%UNIXWORK%" "${WORK}" command "${command}")
string(REPLACE "|" ";" command "${command}")
execute_process(COMMAND ${command} WORKING_DIRECTORY ${WORK} OUTPUT_VARIABLE out ERROR_VARIABLE err
                RESULT_VARIABLE rc TIMEOUT 240)
string(REPLACE "\r\n" "\n" out "${out}")
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "the host exited with ${rc}:\n${out}\n${err}")
endif()
if(TRANSCRIPT)
  file(READ ${TRANSCRIPT} expected)
  if(NOT out STREQUAL expected)
    message(FATAL_ERROR "the host printed:\n${out}\nexpected:\n${expected}\n${err}")
  endif()
endif()

if(UPDATE)
  file(COPY ${WORK}/Visitors16K.IIF ${WORK}/Visitors16K.CHP DESTINATION ${EXPECTED})
  return()
endif()
foreach(saved Visitors16K.IIF Visitors16K.CHP)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK}/${saved} ${EXPECTED}/${saved} RESULT_VARIABLE differ)
  if(differ)
    message(FATAL_ERROR "${saved} as saved differs from ${EXPECTED}/${saved}\n${out}")
  endif()
endforeach()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${WORK}/Visitors16K.IIF.BAK ${EXAMPLES}/layouts/Visitors16K.IIF
                RESULT_VARIABLE differ)
if(differ)
  message(FATAL_ERROR "the backup is not the layout as it was before the save")
endif()
