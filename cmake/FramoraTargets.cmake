# One place for what every target of the house shares.

add_library(framora_options INTERFACE)
target_compile_options(framora_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Werror
  # The same input must give the same bytes on every machine: no fused multiply-add behind our back.
  -ffp-contract=off)
target_compile_definitions(framora_options INTERFACE
  QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_KEYWORDS)
target_include_directories(framora_options INTERFACE ${PROJECT_SOURCE_DIR}/src)

# framora_room(NAME SOURCES ... LINK ...): the static library of one room.
function(framora_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
  add_library(${name} STATIC ${ROOM_SOURCES})
  target_link_libraries(${name} PUBLIC framora_options ${ROOM_LINK} PRIVATE ${ROOM_PRIVATE_LINK})
endfunction()

# framora_qml_module(NAME URI ... QML ... SOURCES ... LINK ... [IMPORTS ...]): the static library of one room that is a
# QML module as well.
function(framora_qml_module name)
  cmake_parse_arguments(MODULE "" "URI" "QML;SOURCES;LINK;IMPORTS" ${ARGN})
  string(REPLACE "." "/" folder ${MODULE_URI})
  if(MODULE_IMPORTS)
    list(PREPEND MODULE_IMPORTS IMPORTS)
  endif()
  qt_add_qml_module(${name}
    URI ${MODULE_URI}
    VERSION 1.0
    STATIC
    NO_PLUGIN
    RESOURCE_PREFIX /framora/qml
    DEPENDENCIES QtQuick
    ${MODULE_IMPORTS}
    OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/qml/${folder}
    QML_FILES ${MODULE_QML}
    SOURCES ${MODULE_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC framora_options ${MODULE_LINK} Qt6::Qml Qt6::Quick)

  # What the QML compiler generates is not held to our warnings.
  foreach(file IN LISTS MODULE_QML)
    string(REPLACE ".qml" "_qml.cpp" generated ${file})
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/.rcc/qmlcache/${name}_${generated}
      PROPERTIES COMPILE_OPTIONS -Wno-error\;-w)
  endforeach()
endfunction()

# framora_module(NAME SOURCES ... LINK ...): a part that the program loads at its first use.
function(framora_module name)
  cmake_parse_arguments(MODULE "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} MODULE ${MODULE_SOURCES})
  set_target_properties(${name} PROPERTIES PREFIX "" CXX_VISIBILITY_PRESET hidden
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  target_link_libraries(${name} PRIVATE framora_options ${MODULE_LINK})
  install(TARGETS ${name} DESTINATION ${CMAKE_INSTALL_LIBDIR}/framora)
endfunction()

# framora_test(NAME SOURCES ... LINK ... [LABELS ...] [TIMEOUT s]): one GoogleTest executable, one CTest case a test.
function(framora_test name)
  cmake_parse_arguments(TEST "" "TIMEOUT" "SOURCES;LINK;LABELS" ${ARGN})
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 120)
  endif()
  # A desktop is many processes: two such tests on two cores only slow each other down.
  set(processors 1)
  if("desktop" IN_LIST TEST_LABELS)
    set(processors 2)
  endif()
  add_executable(${name} ${TEST_SOURCES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_link_libraries(${name} PRIVATE framora_options GTest::gmock ${TEST_LINK})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 DISCOVERY_MODE PRE_TEST
    PROPERTIES TIMEOUT ${TEST_TIMEOUT} LABELS "${TEST_LABELS}" PROCESSORS ${processors})
endfunction()
