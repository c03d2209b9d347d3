# Gives the check of includes one faulty line after the other; each has to stop the build, and the good ones must not.
cmake_minimum_required(VERSION 3.25)

set(folder ${BINARY_DIR}/includes-test)
function(expect outcome line)
  file(WRITE ${folder}/Probe.cpp "${line}\n")
  execute_process(COMMAND ${CMAKE_COMMAND} -DSOURCE_DIR=${SOURCE_DIR} -DFOLDER=state/tree -DFILES=${folder}/Probe.cpp
      "-DOPEN=foundation/text;foundation/streams" -DEXACT=${ARGN} -DSTAMP=${folder}/stamp
      -P ${SOURCE_DIR}/cmake/CheckIncludes.cmake
    RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
  if(result EQUAL 0 AND outcome STREQUAL "refused" OR NOT result EQUAL 0 AND outcome STREQUAL "taken")
    message(SEND_ERROR "not ${outcome}: ${line}")
  endif()
endfunction()

expect(taken "#include \"foundation/text/MString.h\"")
expect(taken "#include \"state/tree/MAttribute.h\"")
expect(taken "#include \"MAttribute.h\"")
expect(taken "#include <vector>\n#include <sys/stat.h>")
expect(refused "#include \"effect/TonalignInterface.h\"")
expect(refused "  #  include \"effect/TonalignInterface.h\"")
expect(refused "#include <foundation/text/MString.h>")
expect(refused "#include \"../tree/MAttribute.h\"")
expect(refused "#include \"foundation/text/../threads/MLock.h\"")
expect(refused "#include \"NotThere.h\"")
expect(refused "#include \"tests/TestMain.h\"")
expect(refused "#include \"foundation/text/MString.h\"" TRUE)
expect(taken "#include \"foundation/text/MString.h\"\n#include \"foundation/streams/MFile.h\"" TRUE)
