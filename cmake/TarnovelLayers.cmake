# One folder of src/, with the folders in it, is one static library. A layer names its floor, the layers it may include,
# the Qt modules it links, and the outside headers it may include (as regular expressions).
# Arrows run downwards only: a layer that uses one of its own floor or above stops the configuration.
set_property(GLOBAL PROPERTY TARNOVEL_LAYER_ROWS "")

function(tarnovel_layer name)
  cmake_parse_arguments(LAYER "" "FLOOR" "USES;QT;LINKS;OUTSIDE" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp
    ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*/*.cpp)
  file(GLOB headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.h
    ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*/*.h)

  add_library(tarnovel_${name} STATIC ${sources})
  set_target_properties(tarnovel_${name} PROPERTIES TARNOVEL_FLOOR ${LAYER_FLOOR} LINKER_LANGUAGE CXX)
  target_sources(tarnovel_${name} PUBLIC FILE_SET HEADERS BASE_DIRS ${CMAKE_CURRENT_SOURCE_DIR} FILES ${headers})
  target_include_directories(tarnovel_${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(tarnovel_${name} PUBLIC tarnovel_flags)
  tarnovel_use_precompiled(tarnovel_${name} common_headers)
  tarnovel_batches(tarnovel_${name} 8 ${CMAKE_CURRENT_SOURCE_DIR} ${sources})
  foreach(module ${LAYER_QT})
    target_link_libraries(tarnovel_${name} PUBLIC Qt6::${module})
  endforeach()
  foreach(library ${LAYER_LINKS})
    target_link_libraries(tarnovel_${name} PUBLIC ${library})
  endforeach()
  foreach(used ${LAYER_USES})
    if(NOT TARGET tarnovel_${used})
      message(FATAL_ERROR "layer ${name} uses ${used}, which is not below it")
    endif()
    get_target_property(floor tarnovel_${used} TARNOVEL_FLOOR)
    if(floor GREATER_EQUAL LAYER_FLOOR)
      message(FATAL_ERROR "layer ${name} (floor ${LAYER_FLOOR}) uses ${used} (floor ${floor})")
    endif()
    target_link_libraries(tarnovel_${name} PUBLIC tarnovel_${used})
  endforeach()

  list(JOIN LAYER_USES "," uses)
  list(JOIN LAYER_QT "," qt)
  list(JOIN LAYER_OUTSIDE "," outside)
  set_property(GLOBAL APPEND PROPERTY TARNOVEL_LAYER_ROWS "${name};${uses};${qt};${outside}")
endfunction()

# Writes what the layers may include to a file for tools/check_layers.py.
function(tarnovel_write_layer_table file)
  get_property(fields GLOBAL PROPERTY TARNOVEL_LAYER_ROWS)
  set(text "")
  while(fields)
    list(POP_FRONT fields name uses qt outside)
    string(APPEND text "${name}|${uses}|${qt}|${outside}\n")
  endwhile()
  file(WRITE ${file} "${text}")
endfunction()
