# Runs the host on a script in a fresh work folder (also its current folder) and compares what
# it prints. HOST is the host's command, "|"-separated (a Windows host behind Wine).
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
string(REPLACE "|" ";" host "${HOST}")
execute_process(COMMAND ${host} --script ${SCRIPT} --work ${WORK} WORKING_DIRECTORY ${WORK}
                OUTPUT_VARIABLE out RESULT_VARIABLE rc ERROR_QUIET)
string(REPLACE "\r\n" "\n" out "${out}")
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "kestrin-host --script exited with ${rc}:\n${out}")
endif()
file(READ ${EXPECTED} expected)
if(NOT out STREQUAL expected)
  message(FATAL_ERROR "unexpected output:\n${out}\nexpected:\n${expected}")
endif()
