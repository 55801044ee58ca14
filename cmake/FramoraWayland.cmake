# framora_wayland_library(NAME description.xml ...): the client side of Wayland protocols as a static C library.
# Each description x.xml becomes <wayland-protocols/x.h>.
function(framora_wayland_library name)
  find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)
  set(root ${CMAKE_CURRENT_BINARY_DIR}/${name})
  set(folder ${root}/wayland-protocols)
  file(MAKE_DIRECTORY ${folder})
  set(sources)
  foreach(description IN LISTS ARGN)
    get_filename_component(path ${description} ABSOLUTE)
    get_filename_component(stem ${description} NAME_WLE)
    add_custom_command(
      OUTPUT ${folder}/${stem}.h ${folder}/${stem}.c
      COMMAND ${WAYLAND_SCANNER} client-header ${path} ${folder}/${stem}.h
      COMMAND ${WAYLAND_SCANNER} private-code ${path} ${folder}/${stem}.c
      DEPENDS ${path} VERBATIM)
    list(APPEND sources ${folder}/${stem}.h ${folder}/${stem}.c)
  endforeach()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} SYSTEM PUBLIC ${root})
  target_link_libraries(${name} PUBLIC PkgConfig::WAYLAND_CLIENT)
endfunction()

# framora_wayland_server(NAME LIBRARY description.xml ...): the compositor's side of protocols, for tests. LIBRARY is
# one of framora_wayland_library() that holds the same descriptions. x.xml becomes <wayland-server-protocols/x.h>.
function(framora_wayland_server name library)
  find_program(WAYLAND_SCANNER wayland-scanner REQUIRED)
  set(root ${CMAKE_CURRENT_BINARY_DIR}/${name})
  set(folder ${root}/wayland-server-protocols)
  file(MAKE_DIRECTORY ${folder})
  set(headers)
  foreach(description IN LISTS ARGN)
    get_filename_component(path ${description} ABSOLUTE)
    get_filename_component(stem ${description} NAME_WLE)
    add_custom_command(
      OUTPUT ${folder}/${stem}.h
      COMMAND ${WAYLAND_SCANNER} server-header ${path} ${folder}/${stem}.h
      DEPENDS ${path} VERBATIM)
    list(APPEND headers ${folder}/${stem}.h)
  endforeach()
  add_library(${name} INTERFACE)
  target_sources(${name} PRIVATE ${headers})
  add_custom_target(${name}_headers DEPENDS ${headers})
  add_dependencies(${name} ${name}_headers)
  target_include_directories(${name} SYSTEM INTERFACE ${root})
  target_link_libraries(${name} INTERFACE PkgConfig::WAYLAND_SERVER ${library})
endfunction()
