# Fails when a file of a layer includes a header of a layer above it.
# Usage: cmake -DSOURCE_DIR=<dir holding the layer folders> -P CheckLayers.cmake
# The order is the one written in docs/ARCHITECTURE.md; each layer may include its own
# headers and those of the layers before it.
set(layers storage data boq formula calc award billing costs exchange app desktop)

if(NOT IS_DIRECTORY "${SOURCE_DIR}")
  message(FATAL_ERROR "CheckLayers: SOURCE_DIR '${SOURCE_DIR}' is not a directory")
endif()

get_filename_component(SOURCE_DIR "${SOURCE_DIR}" ABSOLUTE)
set(violations "")
list(LENGTH layers layer_count)
math(EXPR last "${layer_count} - 1")
foreach(index RANGE ${last})
  list(GET layers ${index} layer)
  file(GLOB_RECURSE files "${SOURCE_DIR}/${layer}/*.h" "${SOURCE_DIR}/${layer}/*.cpp")
  foreach(file IN LISTS files)
    file(STRINGS "${file}" includes REGEX "^[ \t]*#[ \t]*include[ \t]*\"[a-z_]+/")
    foreach(line IN LISTS includes)
      string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*\"([a-z_]+)/.*$" "\\1" target "${line}")
      list(FIND layers "${target}" target_index)
      if(target_index GREATER index)
        file(RELATIVE_PATH shown "${SOURCE_DIR}" "${file}")
        string(STRIP "${line}" line)
        list(APPEND violations "  ${shown}: ${line} (${layer} may not use ${target})")
      endif()
    endforeach()
  endforeach()
endforeach()

if(violations)
  list(JOIN violations "\n" text)
  message(FATAL_ERROR "Includes that reach a higher layer:\n${text}")
endif()
message(STATUS "Layers: every include reaches its own or a lower layer")
