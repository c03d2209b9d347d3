# Checks what the files of a folder include. Run by the build, as cmake -D... -P CheckIncludes.cmake, with
#   SOURCE_DIR  the tree
#   FOLDER      the folder of the files, relative to the tree
#   FILES       the files
#   OPEN        folders whose headers they may include
#   EXACT       true: every folder in OPEN has to be included by one of them
#   STAMP       written when all is well
# Our own headers are included by their path in the tree, in quotes; one beside the including file may go by its name
# alone. Helpers of tests are open to all tests and benchmarks.

cmake_minimum_required(VERSION 3.25)

set(seen "")
set(faults "")
foreach(file IN LISTS FILES)
  file(STRINGS ${file} lines REGEX "^[ \t]*#[ \t]*include[ \t]")
  foreach(line IN LISTS lines)
    if(NOT line MATCHES "include[ \t]*([\"<])([^\">]+)[\">]")
      continue()
    endif()
    set(form "${CMAKE_MATCH_1}")
    set(header "${CMAKE_MATCH_2}")
    get_filename_component(folder "${header}" DIRECTORY)
    if(header MATCHES "(^|/)\\.\\.?/")
      string(APPEND faults "\n  ${file}: \"${header}\" climbs through folders")
    elseif(form STREQUAL "<")
      if(folder AND EXISTS ${SOURCE_DIR}/${header})
        string(APPEND faults "\n  ${file}: <${header}> is our own and belongs into quotes")
      endif()
    elseif(folder STREQUAL "")
      if(NOT EXISTS ${SOURCE_DIR}/${FOLDER}/${header})
        string(APPEND faults "\n  ${file}: \"${header}\" doesn't stand beside it")
      endif()
    elseif(NOT folder STREQUAL FOLDER)
      list(APPEND seen ${folder})
      if(folder MATCHES "^tests(/|$)" AND FOLDER MATCHES "^(tests|bench)/")
        continue()
      endif()
      if(NOT folder IN_LIST OPEN)
        string(APPEND faults "\n  ${file}: \"${header}\" is not open to ${FOLDER}; it may include ${OPEN}")
      endif()
    endif()
  endforeach()
endforeach()
if(EXACT)
  foreach(folder IN LISTS OPEN)
    if(NOT folder IN_LIST seen)
      string(APPEND faults "\n  ${FOLDER}/CMakeLists.txt names ${folder}, which nothing there includes")
    endif()
  endforeach()
endif()
if(faults)
  message(FATAL_ERROR "Includes:${faults}")
endif()
file(TOUCH ${STAMP})
