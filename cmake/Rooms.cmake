# A room is a folder of the tree and one static library. It names the rooms that it includes directly, all of them and no
# others. An #include of any other room stops the build, so the layers can't be bent by accident.

# check_includes(TARGET FOLDER [EXACT] FILES file... OPEN folder...): TARGET isn't built before its includes are as they
# should be. See CheckIncludes.cmake.
function(check_includes target folder)
  cmake_parse_arguments(CHECK "EXACT" "" "FILES;OPEN" ${ARGN})
  set(stamp ${CMAKE_CURRENT_BINARY_DIR}/${target}.includes)
  string(REPLACE ";" "$<SEMICOLON>" files "${CHECK_FILES}")
  string(REPLACE ";" "$<SEMICOLON>" open "${CHECK_OPEN}")
  add_custom_command(OUTPUT ${stamp}
    COMMAND ${CMAKE_COMMAND} -DSOURCE_DIR=${PROJECT_SOURCE_DIR} -DFOLDER=${folder} "-DFILES=${files}" "-DOPEN=${open}"
      -DEXACT=${CHECK_EXACT} -DSTAMP=${stamp} -P ${PROJECT_SOURCE_DIR}/cmake/CheckIncludes.cmake
    DEPENDS ${CHECK_FILES} ${PROJECT_SOURCE_DIR}/cmake/CheckIncludes.cmake
    COMMENT "Includes of ${folder}"
    VERBATIM)
  add_custom_target(includes_${target} ALL DEPENDS ${stamp})
  add_dependencies(${target} includes_${target})
endfunction()

# rooms_below(RESULT room...): the rooms and all that they stand on.
function(rooms_below result)
  set(all "")
  foreach(room IN LISTS ARGN)
    get_property(known GLOBAL PROPERTY TONALIGN_REACH_${room} SET)
    if(NOT known)
      message(FATAL_ERROR "${CMAKE_CURRENT_SOURCE_DIR} names the room ${room}, which doesn't stand below it")
    endif()
    get_property(below GLOBAL PROPERTY TONALIGN_REACH_${room})
    list(APPEND all ${room} ${below})
  endforeach()
  list(REMOVE_DUPLICATES all)
  set(${result} "${all}" PARENT_SCOPE)
endfunction()

# add_room([ROOMS room...] [LIBRARIES target...] [EXCLUDE file...])
# The name is the folder's path, the target's name the path with underscores. The files to EXCLUDE are those of a program
# or module beside the library.
function(add_room)
  cmake_parse_arguments(ROOM "" "" "ROOMS;LIBRARIES;EXCLUDE" ${ARGN})
  file(RELATIVE_PATH room ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  string(REPLACE "/" "_" target ${room})

  rooms_below(reach ${ROOM_ROOMS})
  set_property(GLOBAL PROPERTY TONALIGN_REACH_${room} "${reach}")
  string(REPLACE "/" "_" links "${ROOM_ROOMS}")

  file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  file(GLOB headers CONFIGURE_DEPENDS *.h)
  set(all ${sources} ${headers})
  foreach(name IN LISTS ROOM_EXCLUDE)
    list(REMOVE_ITEM sources ${CMAKE_CURRENT_SOURCE_DIR}/${name})
  endforeach()

  if(sources)
    add_library(${target} STATIC ${sources} ${headers})
    target_link_libraries(${target} PUBLIC ${links} ${ROOM_LIBRARIES} PRIVATE tonalign_options)
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
  else()
    add_library(${target} INTERFACE)
    target_link_libraries(${target} INTERFACE ${links} ${ROOM_LIBRARIES})
    target_include_directories(${target} INTERFACE ${PROJECT_SOURCE_DIR})
  endif()
  if(all)
    check_includes(${target} ${room} EXACT FILES ${all} OPEN ${ROOM_ROOMS})
  endif()
endfunction()
