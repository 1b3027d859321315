# Cross-builds for 64-bit Windows against Qt 6.4.2 for Windows with ActiveQt (mingw-w64, shared
# Qt and C++ run time). The Qt prefix is taken, in this order, from:
#   KESTRIN_QT_WINDOWS (environment or cache): an unpacked prefix;
#   <source>/build/qt-windows: the prefix unpacked or built before;
#   KESTRIN_QT_WINDOWS_ARCHIVE, else <source>/../shared/qt-windows/qt-6.4.2-mingw-w64-x86_64.tar.xz:
#     unpacked into <source>/build/qt-windows on the first configure.
# scripts/build-qt-windows.sh makes the prefix from the sources where neither is at hand.
get_filename_component(_kestrin_source "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)
set(_kestrin_default_prefix "${_kestrin_source}/build/qt-windows")

if(NOT KESTRIN_QT_WINDOWS AND DEFINED ENV{KESTRIN_QT_WINDOWS})
  set(KESTRIN_QT_WINDOWS "$ENV{KESTRIN_QT_WINDOWS}")
endif()
if(NOT KESTRIN_QT_WINDOWS)
  set(KESTRIN_QT_WINDOWS "${_kestrin_default_prefix}")
endif()
set(_kestrin_qt_toolchain "${KESTRIN_QT_WINDOWS}/lib/cmake/Qt6/qt.toolchain.cmake")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KESTRIN_QT_WINDOWS)

if(NOT EXISTS "${_kestrin_qt_toolchain}" AND KESTRIN_QT_WINDOWS STREQUAL _kestrin_default_prefix)
  set(_kestrin_archive "$ENV{KESTRIN_QT_WINDOWS_ARCHIVE}")
  if(NOT _kestrin_archive)
    get_filename_component(_kestrin_archive
        "${_kestrin_source}/../shared/qt-windows/qt-6.4.2-mingw-w64-x86_64.tar.xz" ABSOLUTE)
  endif()
  if(EXISTS "${_kestrin_archive}")
    message(STATUS "Unpacking Qt for Windows from ${_kestrin_archive} into ${KESTRIN_QT_WINDOWS}")
    file(MAKE_DIRECTORY "${KESTRIN_QT_WINDOWS}.partial")
    execute_process(COMMAND tar -C "${KESTRIN_QT_WINDOWS}.partial" -xJf "${_kestrin_archive}"
                    RESULT_VARIABLE _kestrin_untar)
    if(NOT _kestrin_untar EQUAL 0)
      file(REMOVE_RECURSE "${KESTRIN_QT_WINDOWS}.partial")
      message(FATAL_ERROR "Could not unpack ${_kestrin_archive} (tar: ${_kestrin_untar}).")
    endif()
    file(RENAME "${KESTRIN_QT_WINDOWS}.partial" "${KESTRIN_QT_WINDOWS}")
  endif()
endif()

if(NOT EXISTS "${_kestrin_qt_toolchain}")
  message(FATAL_ERROR
    "Qt 6.4.2 for Windows with ActiveQt was not found: no prefix at ${KESTRIN_QT_WINDOWS} and no "
    "archive at ${_kestrin_archive}. The Windows control, the widgets and the demo host need it. "
    "Either put qt-6.4.2-mingw-w64-x86_64.tar.xz there (or name it in KESTRIN_QT_WINDOWS_ARCHIVE), "
    "set KESTRIN_QT_WINDOWS to an unpacked prefix, or make the prefix from the sources with "
    "scripts/build-qt-windows.sh (about an hour on two cores).")
endif()

# Programs and libraries of this build use the shared C++ run time that the Qt DLLs use.
set(KESTRIN_MINGW_STATIC_RUNTIME OFF CACHE BOOL "" FORCE)
set(QT_CHAINLOAD_TOOLCHAIN_FILE "${CMAKE_CURRENT_LIST_DIR}/mingw-w64-x86_64.cmake")
include("${_kestrin_qt_toolchain}")
