# Writes the control's interface with ActiveQt's idc (a Windows program, run under Wine through
# RUN) from the server DLL SERVER, makes it the interface hosts know, and compiles it into the
# type library TLB with WIDL for a 64-bit (BITS 64) or 32-bit Windows.
#
# What changes in idc's text: the interfaces take the names hosts know (_iClass, the events
# __iClass), ShowAbout the standard about-box identifier, parameters their own names without
# idc's "p_", the optional ParamList its text type with an empty default; the attributes widl
# refuses (bindable, requestedit), the helper types no member uses, and the date idc stamps in
# are left out, so the same control always gives the same type library.
string(REPLACE "|" ";" run "${RUN}")
set(raw ${IDL}.raw)
file(REMOVE ${raw})
execute_process(COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen QT_PLUGIN_PATH=Z:${PLUGINS}
                        ${run} ${IDC} Z:${SERVER} /idl Z:${raw} -version 1.0
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT rc EQUAL 0 OR NOT EXISTS ${raw})
  message(FATAL_ERROR "idc could not write the interface of ${SERVER} (${rc}):\n${out}")
endif()
file(READ ${raw} idl)

if(idl MATCHES "unsupported datatype|uses unsupported")
  message(FATAL_ERROR "A member of the control has a type automation cannot carry; see ${raw}.")
endif()
foreach(expected "dispinterface IiClass\n" "dispinterface IiClassEvents\n" "coclass iClass\n"
                 "] void ShowAbout();" "[in,optional] VARIANT /*was: BSTR*/ p_ParamList")
  string(FIND "${idl}" "${expected}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "idc's interface no longer holds \"${expected}\"; see ${raw}.")
  endif()
endforeach()

string(REGEX REPLACE "^.*\nimport \"ocidl.idl\";"
       "// The automation interface of the control Kestrin.iClass, written from its meta-object.\n\nimport \"ocidl.idl\";"
       idl "${idl}")
string(REGEX REPLACE "\t/\\*\\*\\*\\*[^/]*/\n" "" idl "${idl}")
string(REGEX REPLACE "\t\\[uuid\\([0-9A-F-]+\\)\\]\n\tstruct Q(Rect|Size|Point) {[^}]*};\n\n?" "" idl "${idl}")
string(REGEX REPLACE "\tenum (MousePointer|FocusPolicy) {[^}]*};\n\n?" "" idl "${idl}")
string(REPLACE "dispinterface IiClassEvents" "dispinterface __iClass" idl "${idl}")
string(REPLACE "dispinterface IiClass" "dispinterface _iClass" idl "${idl}")
string(REPLACE ", bindable, requestedit]" "]" idl "${idl}")
string(REGEX REPLACE "\\[id\\([0-9]+\\)\\] void ShowAbout\\(\\);" "[id(DISPID_ABOUTBOX)] void ShowAbout();" idl "${idl}")
string(REPLACE "[in,optional] VARIANT /*was: BSTR*/ p_ParamList" "[in, optional, defaultvalue(\"\")] BSTR ParamList"
       idl "${idl}")
string(REGEX REPLACE "([ *])p_([A-Za-z])" "\\1\\2" idl "${idl}")
file(WRITE ${IDL} "${idl}")

# widl is mingw-w64's midl; Wine's IDL files and its stdole2.tlb serve the imports.
if(BITS EQUAL 64)
  set(target --win64)
  set(wine_libraries x86_64-windows)
else()
  set(target --win32)
  set(wine_libraries i386-windows)
endif()
find_path(WINE_IDL_DIR ocidl.idl PATHS /usr/include/wine/wine/windows REQUIRED NO_CACHE)
find_path(STDOLE_DIR stdole2.tlb PATHS /usr/lib/x86_64-linux-gnu/wine/${wine_libraries}
          /usr/lib/i386-linux-gnu/wine/${wine_libraries} REQUIRED NO_CACHE)
execute_process(COMMAND ${WIDL} ${target} -I ${WINE_IDL_DIR} -L ${STDOLE_DIR} -t -o ${TLB} ${IDL}
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "widl could not compile ${IDL} (${rc}):\n${out}")
endif()
