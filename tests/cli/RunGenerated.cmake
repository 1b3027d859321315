# Runs the tool (through RUN, an emulator, "|"-separated; empty for a native build) on the
# generated layouts of DIR: info (text and JSON), check and rewrite, each with the layout's
# own project file. What it prints, its exit codes and the bytes it writes must equal
# DIR/NAME.expected, which the Linux build made; the Windows build is held to the same files.
# -DUPDATE=ON writes the expected files anew instead.
string(REPLACE "|" ";" run "${RUN}")
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

# Appends one command's exit code and output to the record: lines end in LF, the files it
# names are named without the work folder (which Windows joins to the chip encode file's name
# with "\").
function(record_run record title)
  execute_process(COMMAND ${run} ${CLI} ${ARGN} OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE rc)
  string(REPLACE "\r\n" "\n" out "${out}")
  string(REPLACE "${WORK}/" "" out "${out}")
  string(REPLACE "${WORK}\\" "" out "${out}")
  set(${record} "${${record}}== kestrin ${title}: exit ${rc}\n${out}" PARENT_SCOPE)
endfunction()

function(record_file record path)
  if(EXISTS ${path})
    file(SHA256 ${path} hash)
  else()
    set(hash "absent")
  endif()
  get_filename_component(name ${path} NAME)
  set(${record} "${${record}}${name} ${hash}\n" PARENT_SCOPE)
endfunction()

file(GLOB layouts ${DIR}/*.IIF)
list(LENGTH layouts count)
if(count EQUAL 0)
  message(FATAL_ERROR "no layouts in ${DIR}")
endif()
set(failures "")
foreach(layout ${layouts})
  get_filename_component(name ${layout} NAME_WE)
  set(project ${DIR}/${name}.ini)
  set(log "")
  record_run(log "info" info ${layout} --project ${project})
  record_run(log "info --json" info ${layout} --json --project ${project})
  record_run(log "check" check ${layout} --project ${project})
  record_run(log "rewrite" rewrite ${layout} --to ${WORK}/${name}.IIF --project ${project})
  record_file(log ${WORK}/${name}.IIF)
  record_file(log ${WORK}/${name}.CHP)

  if(UPDATE)
    file(WRITE ${DIR}/${name}.expected "${log}")
    continue()
  endif()
  file(READ ${DIR}/${name}.expected expected)
  if(NOT log STREQUAL expected)
    file(WRITE ${WORK}/${name}.actual "${log}")
    string(APPEND failures "${name}: see ${WORK}/${name}.actual against ${DIR}/${name}.expected\n")
  endif()
endforeach()

if(failures)
  message(FATAL_ERROR "the tool's output or files differ on ${failures}")
endif()
message(STATUS "${count} generated layouts: same output, exit codes and bytes")
file(REMOVE_RECURSE ${WORK})
