cmake_minimum_required(VERSION 3.25)
# The Windows package as a host developer meets it: packs the ZIP (cpack in BUILD), unpacks it into
# C:\Program Files of a new Wine prefix, checks that the folder holds what the control and the
# programs need, registers the control from there with regsvr32 and runs the VBScript host of the
# package's examples on a copy of the package's sample files. Nothing can come from the build tree:
# the prefix is made here, without the drive Z: that Wine gives to the whole file system, and
# without WINEPATH or a Qt plugin path; the work folder is C:\work.
# Then the tool and the demo host of the package run from there: the tool's view of a sample layout
# and the demo's tour are what the Linux build prints and saves.
#   BUILD, WORK, WINE, WINESERVER, RUNNER (cmake/wine-run.sh), DISPLAY_FILE, TRANSCRIPT, EXPECTED,
#   HOSTCALLS (RunHostCalls.cmake), INFO (the tool's expected info on Staff.IIF), TOUR (the tour's
#   expected transcript), SAVED (the tour's expected files)
execute_process(COMMAND cpack -G ZIP --config ${BUILD}/CPackConfig.cmake WORKING_DIRECTORY ${BUILD}
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
file(GLOB zip ${BUILD}/package/Kestrin-*-win64.zip)
if(NOT rc EQUAL 0 OR NOT zip)
  message(FATAL_ERROR "cpack made no package (${rc}):\n${out}")
endif()

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(prefix ${WORK}/prefix)
file(READ ${DISPLAY_FILE} display)
string(STRIP "${display}" display)
set(env ${CMAKE_COMMAND} -E env --unset=WINEPATH --unset=QT_PLUGIN_PATH --unset=QT_QPA_PLATFORM WINEPREFIX=${prefix}
    WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml= LC_ALL=C.UTF-8 DISPLAY=:${display})
execute_process(COMMAND ${env} ${WINE} wineboot -i RESULT_VARIABLE rc OUTPUT_QUIET ERROR_QUIET TIMEOUT 600)
execute_process(COMMAND ${env} ${WINESERVER} -w TIMEOUT 120)
if(NOT EXISTS ${prefix}/drive_c/windows)
  message(FATAL_ERROR "wineboot made no prefix at ${prefix} (${rc})")
endif()
file(REMOVE ${prefix}/dosdevices/z:)

set(programs "${prefix}/drive_c/Program Files")
file(MAKE_DIRECTORY "${programs}")
execute_process(COMMAND ${CMAKE_COMMAND} -E tar xf ${zip} WORKING_DIRECTORY "${programs}" RESULT_VARIABLE rc)
get_filename_component(folder ${zip} NAME_WLE)
set(installed "${programs}/${folder}")
foreach(file Kestrin.dll Kestrin.tlb README-Windows.txt kestrin.exe kestrin-host.exe kestrin-en.dll Qt6Core.dll
             Qt6Gui.dll Qt6Widgets.dll Qt6PrintSupport.dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll
             platforms/qwindows.dll styles/qwindowsvistastyle.dll examples/host/host.vbs
             examples/lang/kestrin-en.txt examples/layouts/Visitors16K.IIF examples/project/Sample.ini)
  if(NOT EXISTS "${installed}/${file}")
    message(FATAL_ERROR "the package has no ${file}")
  endif()
endforeach()
file(GLOB_RECURSE debug_builds "${installed}/*.a" "${installed}/*.h")
if(debug_builds)
  message(FATAL_ERROR "the package holds build files: ${debug_builds}")
endif()

set(run ${env} WINE=${WINE} WINESERVER=${WINESERVER} sh ${RUNNER})
set(dll "C:\\Program Files\\${folder}\\Kestrin.dll")
execute_process(COMMAND ${run} regsvr32 ${dll} OUTPUT_VARIABLE out ERROR_VARIABLE out RESULT_VARIABLE rc TIMEOUT 240)
if(NOT rc EQUAL 0 OR NOT out MATCHES "Successfully registered")
  message(FATAL_ERROR "regsvr32 could not register the packaged control (${rc}):\n${out}")
endif()

string(REPLACE ";" "|" command "${run};cscript;//nologo;C:\\Program Files\\${folder}\\examples\\host\\host.vbs;%WORK%")
execute_process(COMMAND ${CMAKE_COMMAND} "-DCOMMAND=${command}" "-DEXAMPLES=${installed}/examples" -DEXPECTED=${EXPECTED}
                        -DTRANSCRIPT=${TRANSCRIPT} -DWORK=${prefix}/drive_c/work "-DWINWORK=C:\\work" -P ${HOSTCALLS}
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT rc EQUAL 0)
  execute_process(COMMAND ${env} ${WINESERVER} -k)
  message(FATAL_ERROR "the VBScript host on the packaged control:\n${out}")
endif()

set(home "C:\\Program Files\\${folder}")
execute_process(COMMAND ${run} "${home}\\kestrin.exe" info "${home}\\examples\\layouts\\Staff.IIF"
                        --project "${home}\\examples\\project\\Sample.ini" --lang "${home}\\examples\\lang\\kestrin-en.txt"
                OUTPUT_VARIABLE info RESULT_VARIABLE rc)
string(REPLACE "\r\n" "\n" info "${info}")
file(READ ${INFO} expected)
if(NOT rc EQUAL 0 OR NOT info STREQUAL expected)
  execute_process(COMMAND ${env} ${WINESERVER} -k)
  message(FATAL_ERROR "the packaged kestrin.exe info exited with ${rc} and printed:\n${info}\nexpected:\n${expected}")
endif()

file(MAKE_DIRECTORY ${prefix}/drive_c/tour)
execute_process(COMMAND ${run} "${home}\\kestrin-host.exe" --script "${home}\\examples\\host\\tour.script" --work "C:\\tour"
                WORKING_DIRECTORY ${prefix}/drive_c/tour OUTPUT_VARIABLE tour RESULT_VARIABLE rc)
execute_process(COMMAND ${env} ${WINESERVER} -k)
string(REPLACE "\r\n" "\n" tour "${tour}")
file(READ ${TOUR} expected)
if(NOT rc EQUAL 0 OR NOT tour STREQUAL expected)
  message(FATAL_ERROR "the packaged demo host's tour exited with ${rc} and printed:\n${tour}\nexpected:\n${expected}")
endif()
foreach(saved Tour.IIF layouts/Tour.CHP)
  get_filename_component(name ${saved} NAME)
  execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${prefix}/drive_c/tour/${saved} ${SAVED}/${name} RESULT_VARIABLE differ)
  if(differ)
    message(FATAL_ERROR "the packaged demo host saved ${saved} unlike the Linux build")
  endif()
endforeach()
