# The tests of the Windows build run under Wine, in a Wine prefix of their own inside the
# build folder. The prefix is made once, at configure time, so that no test pays for it.
find_program(KESTRIN_WINE NAMES wine64 wine REQUIRED)
find_program(KESTRIN_WINESERVER NAMES wineserver REQUIRED)
set(KESTRIN_WINEPREFIX ${CMAKE_BINARY_DIR}/wineprefix)
# No Mono or Gecko: they are not needed and would ask to be downloaded. The C locale gives
# Windows-1252 as the ANSI code page, whatever the developer's own locale.
set(KESTRIN_WINE_ENV WINEPREFIX=${KESTRIN_WINEPREFIX} WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml= LC_ALL=C.UTF-8)
if(KESTRIN_WINE_PATH)
  list(APPEND KESTRIN_WINE_ENV WINEPATH=${KESTRIN_WINE_PATH})
endif()

if(NOT EXISTS ${KESTRIN_WINEPREFIX}/system.reg)
  message(STATUS "Creating the Wine prefix ${KESTRIN_WINEPREFIX}")
  execute_process(COMMAND ${CMAKE_COMMAND} -E env ${KESTRIN_WINE_ENV} ${KESTRIN_WINE} wineboot -i
                  RESULT_VARIABLE wineboot_result OUTPUT_FILE ${CMAKE_BINARY_DIR}/wineboot.log
                  ERROR_FILE ${CMAKE_BINARY_DIR}/wineboot.log TIMEOUT 600)
  # The registry files are written when the Wine server ends.
  execute_process(COMMAND ${CMAKE_COMMAND} -E env ${KESTRIN_WINE_ENV} ${KESTRIN_WINESERVER} -w TIMEOUT 120)
  if(NOT wineboot_result EQUAL 0 OR NOT EXISTS ${KESTRIN_WINEPREFIX}/system.reg)
    message(FATAL_ERROR "wineboot failed (${wineboot_result}); see ${CMAKE_BINARY_DIR}/wineboot.log")
  endif()
endif()

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_COMMAND} -E env ${KESTRIN_WINE_ENV} WINE=${KESTRIN_WINE}
    WINESERVER=${KESTRIN_WINESERVER} sh ${CMAKE_CURRENT_LIST_DIR}/wine-run.sh)
