# Installs Kestrin into a fresh prefix, builds the out-of-tree host against it and runs it on a
# copy of a sample layout: what a host developer meets first.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix
                RESULT_VARIABLE rc OUTPUT_QUIET)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "cmake --install failed: ${rc}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/build -G Ninja -DCMAKE_BUILD_TYPE=Debug
                        -DCMAKE_PREFIX_PATH=${WORK}/prefix
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "configuring the host failed:\n${out}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/build RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "building the host failed:\n${out}")
endif()
# The layout with its chip encode file: a save refuses a layout whose encode file is missing.
string(REGEX REPLACE "\\.IIF$" ".CHP" encode ${LAYOUT})
file(COPY ${LAYOUT} ${encode} DESTINATION ${WORK})
get_filename_component(name ${LAYOUT} NAME)
execute_process(COMMAND ${WORK}/build/out-of-tree-host ${WORK}/${name} OUTPUT_VARIABLE out RESULT_VARIABLE rc
                ERROR_QUIET)
set(expected "properties 13 methods 26 events 3\nerror iClass UserControl: No filename given.\nopened 1\nsaved 1 ${WORK}/${name}\n")
if(NOT rc EQUAL 0 OR NOT out STREQUAL expected)
  message(FATAL_ERROR "the host printed (exit ${rc}):\n${out}\nexpected:\n${expected}")
endif()
