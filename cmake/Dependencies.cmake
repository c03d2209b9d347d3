# The libraries that the rooms name. The module is loaded into hosts of every kind, sandboxed ones too: what has an
# archive is linked in (and hidden by the module's version script), so that it asks nothing of the machine that runs it.

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

# tonalign_library(NAME PKGCONFIG [ARCHIVE file.a...]): makes the target NAME out of a pkg-config module, with the archives
# in place of the shared library where all of them are installed.
function(tonalign_library name module)
  cmake_parse_arguments(LIBRARY "" "" "ARCHIVE" ${ARGN})
  pkg_check_modules(${name} REQUIRED IMPORTED_TARGET ${module})
  add_library(${name} INTERFACE)
  set(archives "")
  foreach(file IN LISTS LIBRARY_ARCHIVE)
    find_library(TONALIGN_${file} NAMES ${file} HINTS ${${name}_LIBRARY_DIRS} ${${name}_LIBDIR})
    mark_as_advanced(TONALIGN_${file})
    list(APPEND archives ${TONALIGN_${file}})
  endforeach()
  if(LIBRARY_ARCHIVE AND NOT archives MATCHES "NOTFOUND")
    target_include_directories(${name} SYSTEM INTERFACE ${${name}_INCLUDE_DIRS})
    target_link_libraries(${name} INTERFACE ${archives} m)
    set(${name}_IS_ARCHIVE TRUE PARENT_SCOPE)
  else()
    target_link_libraries(${name} INTERFACE PkgConfig::${name})
    set(${name}_IS_ARCHIVE FALSE PARENT_SCOPE)
  endif()
endfunction()

tonalign_library(fftw fftw3f ARCHIVE libfftw3f.a)
tonalign_library(zlib zlib ARCHIVE libz.a)
tonalign_library(flac flac ARCHIVE libFLAC.a libogg.a)
# Debian has no archive of it.
tonalign_library(mpg123 libmpg123)
# Hosts bring copies of their own, older ones too: ours is linked in and hidden.
tonalign_library(png libpng ARCHIVE libpng16.a libz.a)
tonalign_library(freetype freetype2 ARCHIVE libfreetype.a libpng16.a libbrotlidec.a libbrotlicommon.a libbz2.a libz.a)
# The program alone: its outputs.
tonalign_library(sndfile sndfile)

# Of Highway the headers alone: its library would only choose the instruction set, see InstructionSets.
find_path(TONALIGN_HIGHWAY hwy/highway.h REQUIRED)
mark_as_advanced(TONALIGN_HIGHWAY)
add_library(highway_headers INTERFACE)
target_include_directories(highway_headers SYSTEM INTERFACE ${TONALIGN_HIGHWAY})

find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
