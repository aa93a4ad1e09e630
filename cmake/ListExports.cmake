# Writes the module definition file of the DLL: all that its objects define of what the list of symbols names.
#
#   cmake -DNM=... -DOBJECTS=... -DLIST=... -DOUT=... -P ListExports.cmake
#
# The list is demangled and of a host where a unit is char16_t and long has 64 bits. What stands in it and is not defined is an error.

# A name as the lists of all hosts have it in common.
function(to_common name result)
  string(REPLACE "char16_t" "wchar_t" name "${name}")
  string(REPLACE "long long" "long" name "${name}")
  # A long goes with the integers of its width.
  string(REGEX REPLACE "DWord([(](unsigned )?long)" "QWord\\1" name "${name}")
  set(${result} "${name}" PARENT_SCOPE)
endfunction()

file(STRINGS "${LIST}" listed)
set(wanted "\n")
foreach(name IN LISTS listed)
  to_common("${name}" name)
  string(APPEND wanted "${name}\n")
endforeach()

# In the order of the objects, so that the lines of both correspond.
set(list_symbols ${NM} --no-sort --extern-only --defined-only --format=posix)
execute_process(COMMAND ${list_symbols} ${OBJECTS} OUTPUT_VARIABLE mangled COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${list_symbols} --demangle ${OBJECTS} OUTPUT_VARIABLE demangled COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" mangled "${mangled}")
string(REPLACE "\n" ";" demangled "${demangled}")

set(exports)
set(found "\n")
foreach(symbol readable IN ZIP_LISTS mangled demangled)
  if(NOT symbol MATCHES "^([^ ]+) ([A-Za-z]) ")
    continue()
  endif()
  set(symbol ${CMAKE_MATCH_1})
  set(kind ${CMAKE_MATCH_2})
  string(REGEX REPLACE " [A-Za-z]( [0-9a-f]+)* *$" "" readable "${readable}")
  to_common("${readable}" name)
  string(FIND "${wanted}" "\n${name}\n" place)
  if(place EQUAL -1)
    continue()
  endif()
  string(APPEND found "${name}\n")
  if(symbol STREQUAL DllMain)
    # A DLL that is linked with this one must not take it for its own.
    string(APPEND symbol " PRIVATE")
  elseif(NOT kind STREQUAL T)
    string(APPEND symbol " DATA")
  endif()
  list(APPEND exports "  ${symbol}")
endforeach()

foreach(name IN LISTS listed)
  to_common("${name}" common)
  string(FIND "${found}" "\n${common}\n" place)
  if(place EQUAL -1)
    message(SEND_ERROR "${name}: listed in ${LIST}, and not defined")
  endif()
endforeach()

list(REMOVE_DUPLICATES exports)
list(JOIN exports "\n" exports)
file(WRITE "${OUT}" "EXPORTS\n${exports}\n")
