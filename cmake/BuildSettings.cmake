# Build settings of every target: warnings as errors, hardening, sanitizers, ccache.

set(CORVANE_SANITIZE "" CACHE STRING "Sanitizers to build with: empty, \"address,undefined\" or \"thread\"")

option(CORVANE_FUZZ "Build what fuzz/ needs; for clang" OFF)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()

# Linked by every target of this project; never by generated or foreign code.
add_library(corvane_settings INTERFACE)
target_compile_options(corvane_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Werror)
target_compile_definitions(corvane_settings INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_FOREACH)

if(WIN32)
  # Switches off what windows.h defines besides its calls: names such as ERROR, min and DELETE, and the ANSI forms of the calls.
  target_compile_definitions(corvane_settings INTERFACE
    NOGDI NOMINMAX WIN32_LEAN_AND_MEAN UNICODE _UNICODE _WIN32_WINNT=0x0A00)
endif()

include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

if(CORVANE_SANITIZE)
  add_compile_options(-fsanitize=${CORVANE_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${CORVANE_SANITIZE})
  if(CORVANE_SANITIZE MATCHES "thread")
    add_compile_options(-Wno-tsan) # Asio's fences are not analysed; each of its loops runs on one thread here
  endif()
  if(CORVANE_SANITIZE MATCHES "undefined")
    # The vptr check opens pipes, and reports every object as bad when a test has used up the descriptors.
    add_compile_options(-fno-sanitize=vptr)
  endif()
else()
  add_compile_options(-fstack-protector-strong)
  if(WIN32)
    add_link_options(-fstack-protector-strong) # links the library of the checks
  endif()
  add_compile_options($<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
endif()
if(CORVANE_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
if(NOT WIN32)
  add_link_options(-Wl,-z,relro -Wl,-z,now)
endif()

# corvane_module(<target> FOLDER <path> [QT] [REPLACEABLE] SOURCES ... [PUBLIC ...] [PRIVATE ...])
# A module: a static library with the headers of one folder, which are included with that folder's path
# ("canvas/qmaskwidget.h"). A module sees the headers of the modules it names, and of those that these
# name as PUBLIC; any other include does not compile. PUBLIC is for what its own headers include, PRIVATE for all else.
# Tests replace functions of a REPLACEABLE module when they are linked: each of its sources stays an object, also where
# others are compiled together.
function(corvane_module target)
  cmake_parse_arguments(MODULE "QT;REPLACEABLE" "FOLDER" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${target} STATIC ${MODULE_SOURCES})
  corvane_headers(${target} "${MODULE_FOLDER}")
  target_link_libraries(${target} PUBLIC ${MODULE_PUBLIC} PRIVATE ${MODULE_PRIVATE} corvane_settings)
  if(MODULE_REPLACEABLE)
    set_target_properties(${target} PROPERTIES UNITY_BUILD OFF)
  endif()
  if(MODULE_QT)
    set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
  endif()
endfunction()

# Lets users of a target include the headers of the current folder as "<folder>/X.h": a separate include tree
# that contains only a link to the folder.
function(corvane_headers target folder)
  set(tree "${PROJECT_BINARY_DIR}/include/${target}")
  cmake_path(GET folder PARENT_PATH parent)
  file(MAKE_DIRECTORY "${tree}/${parent}")
  file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}" "${tree}/${folder}" SYMBOLIC)
  target_include_directories(${target} PUBLIC "${tree}")
endfunction()
