cmake_minimum_required(VERSION 3.25)
# regsvr32 /u of the control DLL, after which its ProgID is no longer registered.
#   RUN: the command that runs a Windows program, "|"-separated; DLL: the control's path.
string(REPLACE "|" ";" run "${RUN}")
execute_process(COMMAND ${run} regsvr32 /u ${DLL} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT rc EQUAL 0 OR NOT out MATCHES "Successfully unregistered")
  message(FATAL_ERROR "regsvr32 /u failed (${rc}):\n${out}")
endif()
execute_process(COMMAND ${run} reg query "HKCR\\Kestrin.iClass" RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(rc EQUAL 0)
  message(FATAL_ERROR "Kestrin.iClass is still registered after regsvr32 /u:\n${out}")
endif()
