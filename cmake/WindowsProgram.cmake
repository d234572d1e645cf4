# corvane_program(<target> <description> [GUI])
# Windows resources of a program: its version, a manifest (paths and text in UTF-8, long paths, per-monitor scaling) and the
# icon. No console opens for a GUI program.
function(corvane_program target description)
  if(NOT WIN32)
    return()
  endif()
  cmake_parse_arguments(PROGRAM "GUI" "" "" ${ARGN})
  set(PROGRAM ${target})
  set(DESCRIPTION "${description}")
  set_target_properties(${target} PROPERTIES WIN32_EXECUTABLE ${PROGRAM_GUI})
  set(folder "${CMAKE_CURRENT_BINARY_DIR}")
  configure_file("${PROJECT_SOURCE_DIR}/packaging/windows/program.manifest.in" "${folder}/${target}.manifest" @ONLY)
  configure_file("${PROJECT_SOURCE_DIR}/packaging/windows/program.rc.in" "${folder}/${target}.rc" @ONLY)
  target_sources(${target} PRIVATE "${folder}/${target}.rc")
  set_source_files_properties("${folder}/${target}.rc" PROPERTIES
    COMPILE_OPTIONS "-I${folder}" OBJECT_DEPENDS "${folder}/${target}.manifest;${PROJECT_SOURCE_DIR}/icon/app.ico")
endfunction()
