# Windows language libraries made from text catalogs: a resource-only DLL whose string table
# holds every text of the catalog under its id, the form in which Windows hosts load language
# libraries (LoadLibraryEx as a data file or image resource) and hand their module handle over.
#
# Included by the Windows build, it defines kestrin_language_dll() and builds the bundled English
# catalog into kestrin-en.dll beside the control. Run as a script, it writes the resource script:
#   cmake -DCATALOG=kestrin-en.txt -DRC=kestrin-en.rc -P LanguageDll.cmake

if(CMAKE_SCRIPT_MODE_FILE)
  # The catalog is read as the control reads it: UTF-8 with an optional byte-order mark, one
  # "id=text" a line, blanks around the id, "#" comments, a trailing CR dropped, the last line of
  # an id winning and an empty text leaving the id without one. A line without an id, which the
  # control skips, stops the build instead, so that the DLL never silently lacks a text.
  file(READ "${CATALOG}" content)
  string(ASCII 1 semicolon)
  string(ASCII 2 open)
  string(ASCII 3 close)
  string(ASCII 4 pair)
  string(ASCII 5 backslash)
  string(ASCII 6 escape)
  string(ASCII 239 187 191 bom)
  foreach(marker semicolon open close pair backslash escape)
    string(FIND "${content}" "${${marker}}" found)
    if(NOT found EQUAL -1)
      message(FATAL_ERROR "${CATALOG}: holds control characters that no language text has")
    endif()
  endforeach()
  string(FIND "${content}" "${bom}" found)
  if(found EQUAL 0)
    string(SUBSTRING "${content}" 3 -1 content)
  endif()
  # Semicolons, brackets and backslashes would split or join CMake list entries: they travel
  # as markers.
  string(REPLACE "\\" "${backslash}" content "${content}")
  string(REPLACE ";" "${semicolon}" content "${content}")
  string(REPLACE "[" "${open}" content "${content}")
  string(REPLACE "]" "${close}" content "${content}")
  string(REPLACE "\n" ";" lines "${content}")

  set(ids "")
  set(number 0)
  foreach(line IN LISTS lines)
    math(EXPR number "${number} + 1")
    string(REPLACE "${backslash}" "\\" line "${line}")
    string(REGEX REPLACE "\r$" "" line "${line}")
    if(line MATCHES "^[ \t]*$" OR line MATCHES "^[ \t]*#")
      continue()
    endif()
    string(FIND "${line}" "=" equals)
    if(equals EQUAL -1)
      message(FATAL_ERROR "${CATALOG}:${number}: no '=' between id and text")
    endif()
    string(SUBSTRING "${line}" 0 ${equals} id)
    math(EXPR start "${equals} + 1")
    string(SUBSTRING "${line}" ${start} -1 text)
    if(NOT id MATCHES "^[ \t]*0*([0-9]+)[ \t]*$")
      message(FATAL_ERROR "${CATALOG}:${number}: the id \"${id}\" is not a number from 0 to 65535")
    endif()
    set(id ${CMAKE_MATCH_1})
    string(LENGTH "${id}" digits)
    if(digits GREATER 5 OR id GREATER 65535)
      message(FATAL_ERROR "${CATALOG}:${number}: the id ${id} is not a number from 0 to 65535")
    endif()
    list(REMOVE_ITEM ids ${id})
    if(text STREQUAL "")
      continue()
    endif()
    # The catalog's escapes \n, \r, \t and \\ are the resource compiler's too; any other
    # backslash stands for itself and is doubled. Quotes are doubled, tabs written as \t.
    string(REPLACE "\\\\" "${pair}" text "${text}")
    string(REPLACE "\\n" "${escape}n" text "${text}")
    string(REPLACE "\\r" "${escape}r" text "${text}")
    string(REPLACE "\\t" "${escape}t" text "${text}")
    string(REPLACE "\\" "\\\\" text "${text}")
    string(REPLACE "${escape}" "\\" text "${text}")
    string(REPLACE "${pair}" "\\\\" text "${text}")
    string(REPLACE "\t" "\\t" text "${text}")
    string(REPLACE "\"" "\"\"" text "${text}")
    set(text_${id} "${text}")
    list(APPEND ids ${id})
  endforeach()
  if(NOT ids)
    message(FATAL_ERROR "${CATALOG}: holds no text")
  endif()

  list(SORT ids COMPARE NATURAL)
  get_filename_component(name "${CATALOG}" NAME)
  set(rc "// Made from ${name} by LanguageDll.cmake: change the catalog, not this file.\n")
  string(APPEND rc "#pragma code_page(65001)\nLANGUAGE 0x09, 0x01\nSTRINGTABLE\nBEGIN\n")
  foreach(id IN LISTS ids)
    string(APPEND rc "    ${id}, \"${text_${id}}\"\n")
  endforeach()
  string(APPEND rc "END\n")
  string(REPLACE "${semicolon}" ";" rc "${rc}")
  string(REPLACE "${open}" "[" rc "${rc}")
  string(REPLACE "${close}" "]" rc "${rc}")
  file(WRITE "${RC}.new" "${rc}")
  file(RENAME "${RC}.new" "${RC}")
  return()
endif()

include_guard(GLOBAL)

# Keeps only the resources: a language library has no code, no imports and no entry point.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/language-dll.ld CONTENT [[
SECTIONS
{
  .rsrc __image_base__ + 0x1000 : { *(.rsrc) *(.rsrc$*) }
  /DISCARD/ : { *(*) }
}
]])

# kestrin_language_dll(NAME CATALOG [OUTPUT_DIRECTORY DIR]) builds DIR/NAME.dll (by default in
# the folder of the programs) from the text catalog CATALOG, as the target NAME; its property
# KESTRIN_LANGUAGE_DLL holds the file's path.
function(kestrin_language_dll name catalog)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "OUTPUT_DIRECTORY" "")
  if(NOT arg_OUTPUT_DIRECTORY)
    set(arg_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  endif()
  if(NOT CMAKE_RC_COMPILER OR NOT CMAKE_LINKER)
    message(FATAL_ERROR "A language library needs the resource compiler and the linker of the Windows toolchain.")
  endif()
  set(script ${CMAKE_CURRENT_FUNCTION_LIST_FILE})
  set(layout ${PROJECT_BINARY_DIR}/language-dll.ld)
  set(rc ${CMAKE_CURRENT_BINARY_DIR}/${name}.rc)
  set(object ${CMAKE_CURRENT_BINARY_DIR}/${name}.res.o)
  set(dll ${arg_OUTPUT_DIRECTORY}/${name}.dll)
  add_custom_command(OUTPUT ${rc}
    COMMAND ${CMAKE_COMMAND} -DCATALOG=${catalog} -DRC=${rc} -P ${script}
    DEPENDS ${catalog} ${script}
    COMMENT "Writing the string table of ${name}.dll from ${catalog}" VERBATIM)
  add_custom_command(OUTPUT ${dll}
    COMMAND ${CMAKE_RC_COMPILER} -O coff ${rc} ${object}
    COMMAND ${CMAKE_LINKER} --dll -e 0 -s --no-insert-timestamp -T ${layout} -o ${dll} ${object}
    DEPENDS ${rc} ${layout}
    COMMENT "Linking the language library ${name}.dll" VERBATIM)
  add_custom_target(${name} ALL DEPENDS ${dll})
  set_target_properties(${name} PROPERTIES KESTRIN_LANGUAGE_DLL ${dll})
endfunction()

# The English texts of the bundled catalog as a Windows language library, beside the control.
kestrin_language_dll(kestrin-en ${PROJECT_SOURCE_DIR}/examples/lang/kestrin-en.txt)
