# The warning, sanitizer and test settings that every target of the project shares.

add_library(ovrin_options INTERFACE)
target_compile_options(ovrin_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 reports overlapping copies inside std::string's own operators (GCC bug 105651).
  target_compile_options(ovrin_options INTERFACE -Wno-restrict)
endif()
target_include_directories(ovrin_options INTERFACE "${CMAKE_SOURCE_DIR}/src")
if(OVRIN_SANITIZE)
  target_compile_options(ovrin_options INTERFACE -fsanitize=${OVRIN_SANITIZE} -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer)
  target_link_options(ovrin_options INTERFACE -fsanitize=${OVRIN_SANITIZE})
  # Every program gets it, those too that tests start.
  add_library(ovrin_sanitizers OBJECT "${CMAKE_SOURCE_DIR}/tests/sanitizers.cpp")
  target_compile_definitions(ovrin_sanitizers PRIVATE OVRIN_SANITIZER_REPORTS="${CMAKE_BINARY_DIR}/sanitizer_reports")
  target_sources(ovrin_options INTERFACE
    "$<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:$<TARGET_OBJECTS:ovrin_sanitizers>>")
endif()

# ovrin_sources(VARIABLE FOLDER...): the .cpp files that lie directly in the folders.
function(ovrin_sources variable)
  set(files)
  foreach(folder IN LISTS ARGN)
    file(GLOB found CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp")
    list(APPEND files ${found})
  endforeach()
  set(${variable} ${files} PARENT_SCOPE)
endfunction()

# ovrin_wayland_protocols(TARGET DESCRIPTION...): a library of the C code that the scanner makes of the XML files.
function(ovrin_wayland_protocols target)
  set(code)
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/generated")
  file(MAKE_DIRECTORY "${folder}")
  foreach(description IN LISTS ARGN)
    get_filename_component(name "${description}" NAME_WE)
    set(generated "${folder}/${name}")
    add_custom_command(OUTPUT "${generated}.c" "${generated}-client.h" DEPENDS "${description}"
      COMMAND ${WAYLAND_SCANNER} --strict client-header "${description}" "${generated}-client.h"
      COMMAND ${WAYLAND_SCANNER} --strict private-code "${description}" "${generated}.c")
    list(APPEND code "${generated}.c" "${generated}-client.h")
  endforeach()
  add_library(${target} STATIC ${code})
  target_include_directories(${target} SYSTEM PUBLIC "${folder}")
  target_link_libraries(${target} PUBLIC PkgConfig::Wayland)
endfunction()

# ovrin_test(NAME folder LABEL unit|platform|desktop LIBRARIES ... [WHOLE] [ALONE]): one test program from tests/NAME/*.cpp.
# WHOLE runs the program as a single CTest entry, for programs whose start-up is expensive; ALONE runs its tests one at a
# time.
function(ovrin_test)
  cmake_parse_arguments(ARG "WHOLE;ALONE" "NAME;LABEL" "LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${ARG_NAME}/*.cpp")
  if(NOT sources)
    return()
  endif()
  string(REPLACE "/" "_" target "test_${ARG_NAME}")
  add_executable(${target} ${sources})
  target_include_directories(${target} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_link_libraries(${target} PRIVATE ovrin_options GTest::gmock GTest::gtest GTest::gtest_main ${ARG_LIBRARIES})
  # Only programs that start others know where this checkout lies; a compiler cache shares the objects of the rest.
  if(NOT ARG_LABEL STREQUAL "unit")
    target_compile_definitions(${target} PRIVATE OVRIN_SOURCE_DIR="${CMAKE_SOURCE_DIR}" OVRIN_BINARY_DIR="${CMAKE_BINARY_DIR}")
  endif()
  set(properties LABELS ${ARG_LABEL})
  if(ARG_ALONE)
    list(APPEND properties RESOURCE_LOCK ${target} TIMEOUT 180)
  endif()
  if(ARG_WHOLE)
    add_test(NAME ${ARG_NAME} COMMAND ${target})
    set_tests_properties(${ARG_NAME} PROPERTIES ${properties})
  else()
    gtest_discover_tests(${target} TEST_PREFIX "${ARG_NAME}/" DISCOVERY_MODE PRE_TEST PROPERTIES ${properties})
  endif()
endfunction()
