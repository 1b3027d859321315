# The Windows build with Qt puts every program and DLL it makes into one folder, bin/, beside the
# Qt DLLs, the plugins and the mingw run time they need: the folder a host developer installs, so
# the tests under Wine run the control and the programs as they are shipped.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(KESTRIN_QT_WINDOWS_BIN ${KESTRIN_QT_WINDOWS}/bin)

set(KESTRIN_QT_DLLS Qt6Core Qt6Gui Qt6Widgets Qt6PrintSupport)
# Plugins: the Windows platform, the offscreen platform for runs without a desktop (the type
# library generator, headless checks), the native style and the image formats.
set(KESTRIN_QT_PLUGINS platforms/qwindows platforms/qoffscreen styles/qwindowsvistastyle imageformats/qgif
    imageformats/qico imageformats/qjpeg)
set(KESTRIN_MINGW_DLLS libstdc++-6 libgcc_s_seh-1 libwinpthread-1)

set(KESTRIN_WINDOWS_RUNTIME_FILES "")
foreach(dll ${KESTRIN_QT_DLLS})
  list(APPEND KESTRIN_WINDOWS_RUNTIME_FILES "${KESTRIN_QT_WINDOWS_BIN}/${dll}.dll|.")
endforeach()
foreach(plugin ${KESTRIN_QT_PLUGINS})
  get_filename_component(folder ${plugin} DIRECTORY)
  list(APPEND KESTRIN_WINDOWS_RUNTIME_FILES "${KESTRIN_QT_WINDOWS}/plugins/${plugin}.dll|${folder}")
endforeach()
foreach(dll ${KESTRIN_MINGW_DLLS})
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}.dll OUTPUT_VARIABLE found
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
  get_filename_component(found "${found}" ABSOLUTE)
  if(NOT EXISTS "${found}")
    message(FATAL_ERROR "The mingw-w64 run-time library ${dll}.dll was not found (asked ${CMAKE_CXX_COMPILER}).")
  endif()
  # Debian's run-time DLLs carry their debug information (libstdc++ is 24 MB with it, 2 without):
  # the copy in bin/, which is also what gets installed, is stripped.
  set(stripped ${CMAKE_BINARY_DIR}/mingw-runtime/${dll}.dll)
  if(NOT EXISTS ${stripped} OR ${found} IS_NEWER_THAN ${stripped})
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/mingw-runtime)
    execute_process(COMMAND ${CMAKE_STRIP} --strip-debug -o ${stripped} ${found} RESULT_VARIABLE rc)
    if(NOT rc EQUAL 0)
      message(FATAL_ERROR "Could not strip ${found} with ${CMAKE_STRIP}.")
    endif()
  endif()
  list(APPEND KESTRIN_WINDOWS_RUNTIME_FILES "${stripped}|.")
endforeach()

foreach(entry ${KESTRIN_WINDOWS_RUNTIME_FILES})
  string(REPLACE "|" ";" entry "${entry}")
  list(GET entry 0 file)
  list(GET entry 1 folder)
  if(NOT EXISTS "${file}")
    message(FATAL_ERROR "${file} is missing from Qt for Windows at ${KESTRIN_QT_WINDOWS}.")
  endif()
  file(COPY "${file}" DESTINATION "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${folder}")
endforeach()

# Programs under Wine find the DLLs of bin/ wherever they run from.
set(KESTRIN_WINE_PATH "Z:${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
