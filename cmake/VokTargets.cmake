# SPDX-License-Identifier: GPL-2.0-or-later
# Helpers that keep the CMakeLists.txt of each folder to a line or two.

option(VOK_WERROR "Treat warnings as errors" ON)
option(VOK_FUZZ "Offer the fuzzers, which want clang" OFF)
set(VOK_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. address,undefined or thread")

function(vok_compile_settings target scope)
  target_compile_options(${target} ${scope} -Wall -Wextra -Wpedantic -Wold-style-cast)
  if(VOK_WERROR)
    target_compile_options(${target} ${scope} -Werror)
  endif()
  target_compile_definitions(${target} ${scope} QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS)
  if(VOK_SANITIZE)
    target_compile_options(${target} ${scope} -fsanitize=${VOK_SANITIZE} -fno-omit-frame-pointer
                           -fno-sanitize-recover=undefined)
    target_link_options(${target} ${scope} -fsanitize=${VOK_SANITIZE})
  endif()
endfunction()

# vok_library(NAME [LIBRARY...]): every source of the current folder as the library vok_NAME.
# Headers are included as "NAME/Header.h".
function(vok_library name)
  file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
  if(NOT sources)
    add_library(vok_${name} INTERFACE)
    return()
  endif()
  add_library(vok_${name} STATIC ${sources})
  set_target_properties(vok_${name} PROPERTIES LINKER_LANGUAGE CXX)
  target_include_directories(vok_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(vok_${name} PUBLIC Qt5::Widgets ${ARGN})
  vok_compile_settings(vok_${name} PRIVATE)
endfunction()

# vok_shared_by_tests(TARGET LIBRARY...): the sources of the current folder that aren't tests
# themselves, compiled once for all of its tests.
function(vok_shared_by_tests target)
  file(GLOB sources CONFIGURE_DEPENDS *.cpp *.h)
  list(FILTER sources EXCLUDE REGEX "/tst_[^/]*$")
  add_library(${target} STATIC ${sources})
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/tests
                             ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${target} PUBLIC ${ARGN})
  vok_compile_settings(${target} PRIVATE)
endfunction()

# vok_tests(AREA LIBRARY...): each tst_*.cpp of the current folder becomes the executable and CTest
# test AREA.<name>, run without a display of its own. Other *.cpp files are shared by all of them.
function(vok_tests area)
  file(GLOB tests CONFIGURE_DEPENDS tst_*.cpp)
  file(GLOB shared CONFIGURE_DEPENDS *.cpp)
  list(FILTER shared EXCLUDE REGEX "/tst_[^/]*$")
  set(libraries ${ARGN} vok_testsupport Qt5::Test)
  if(shared)
    vok_shared_by_tests(test_${area} ${libraries})
    list(PREPEND libraries test_${area})
  endif()
  foreach(source IN LISTS tests)
    get_filename_component(name ${source} NAME_WE)
    string(REGEX REPLACE "^tst_" "" short ${name})
    set(target test_${area}_${short})
    add_executable(${target} ${source})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${target} PRIVATE ${libraries})
    vok_compile_settings(${target} PRIVATE)
    add_test(NAME ${area}.${short} COMMAND ${target})
    set_tests_properties(${area}.${short} PROPERTIES
      TIMEOUT 120
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;VOKSHARE=${PROJECT_SOURCE_DIR}/share;LC_ALL=C.UTF-8")
  endforeach()
endfunction()
