# What a Windows host developer installs: one folder with the ActiveX control Kestrin.dll and its
# type library, the Qt and mingw run-time DLLs and the Qt plugins it loads from beside itself, the
# command-line tool, the demo host, the English language library and catalog, the sample project,
# layouts and hosts, and README-Windows.txt. `cmake --install` fills the folder; `cpack` packs it
# as Kestrin-<version>-win64.zip (stripped of debug information).
install(TARGETS kestrin-activex kestrin kestrin-host RUNTIME DESTINATION .)
install(FILES ${PROJECT_BINARY_DIR}/src/activex/Kestrin.tlb ${PROJECT_SOURCE_DIR}/src/activex/README-Windows.txt
        DESTINATION .)
install(FILES $<TARGET_PROPERTY:kestrin-en,KESTRIN_LANGUAGE_DLL> DESTINATION .)
foreach(entry ${KESTRIN_WINDOWS_RUNTIME_FILES})
  string(REPLACE "|" ";" entry "${entry}")
  list(GET entry 0 file)
  list(GET entry 1 folder)
  install(FILES ${file} DESTINATION ${folder})
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION examples)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME Kestrin)
set(CPACK_PACKAGE_VENDOR Kestrin)
set(CPACK_PACKAGE_FILE_NAME Kestrin-${PROJECT_VERSION}-win64)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
include(CPack)
