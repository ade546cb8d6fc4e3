# What every target of ours is compiled with. Two interface targets, so nothing is global.

# The same bits on every build type and processor: no contraction, no fast math, no -march.
add_library(mardle_warnings INTERFACE)
target_compile_options(mardle_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror=format-security -ffp-contract=off
  $<$<BOOL:${MARDLE_WERROR}>:-Werror>)
# In C++, clang counts a change of sign among the conversions and g++ does not.
target_compile_options(mardle_warnings INTERFACE $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>)
target_compile_options(mardle_warnings INTERFACE
  -fstack-protector-strong -fstack-clash-protection
  $<IF:$<STREQUAL:${CMAKE_SYSTEM_PROCESSOR},aarch64>,-mbranch-protection=standard,-fcf-protection>
  $<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
target_link_options(mardle_warnings INTERFACE -Wl,-z,relro,-z,now)

# Sums of 64-bit significands in integers, as on processors that have no other, to the same bits.
if(MOLVA_SOFT_WIDE)
  target_compile_definitions(mardle_warnings INTERFACE MOLVA_SOFT_WIDE)
endif()

# Division by zero of floating numbers is wanted and is not in the undefined group.
add_library(mardle_sanitizers INTERFACE)
if(MARDLE_SANITIZE)
  target_compile_options(mardle_sanitizers INTERFACE
    -fsanitize=${MARDLE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(mardle_sanitizers INTERFACE -fsanitize=${MARDLE_SANITIZE})
endif()
# The library and mardle have every check and are optimized. Tests and tools say by a property that they
# are not: optimizing them takes longer than all that they do, and these checks double the compiler's
# work, while a null pointer ends the process without them. Behind the others only do they count.
if(MARDLE_SANITIZE MATCHES undefined AND NOT MARDLE_FUZZ)
  set(lightly $<BOOL:$<TARGET_PROPERTY:MARDLE_LIGHTLY_CHECKED>>)
  target_compile_options(mardle_sanitizers INTERFACE
    $<${lightly}:-O0> $<${lightly}:-fno-sanitize=null,alignment,object-size,vptr>)
endif()
# What the fuzzers see of a run.
if(MARDLE_FUZZ)
  target_compile_options(mardle_sanitizers INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(mardle_sanitizers INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Reading the headers of the standard library takes longer than most of our files do. Where all is
# built, each library of more than a few files has them read once.
option(MARDLE_PRECOMPILE "Precompile the headers of the standard library" OFF)
set(standard_headers <algorithm> <array> <cmath> <cstdint> <cstdio> <cstring> <filesystem>
  <functional> <limits> <map> <memory> <numeric> <optional> <set> <span> <sstream> <stdexcept>
  <string> <string_view> <utility> <vector>)

function(mardle_target target)
  get_target_property(type ${target} TYPE)
  get_target_property(sources ${target} SOURCES)
  list(LENGTH sources count)
  if(MARDLE_PRECOMPILE AND type STREQUAL STATIC_LIBRARY AND count GREATER 5)
    target_precompile_headers(${target} PRIVATE ${standard_headers})
  endif()
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PRIVATE mardle_warnings mardle_sanitizers)
  set_target_properties(${target} PROPERTIES
    MARDLE_LIGHTLY_CHECKED "${MARDLE_LIGHTLY_CHECKED}"
    C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# Compresses a file into the build folder, the same bytes every time, with the default target.
find_program(GZIP gzip REQUIRED)
function(mardle_compressed source name)
  add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/${name}
    COMMAND ${GZIP} -9nc ${source} > ${PROJECT_BINARY_DIR}/${name} DEPENDS ${source} VERBATIM)
  add_custom_target(compress_${name} ALL DEPENDS ${PROJECT_BINARY_DIR}/${name})
endfunction()

# Installs docs/PAGE compressed, into the section that its name ends with.
function(mardle_install_manual page component)
  string(REGEX MATCH "[0-9]$" section ${page})
  mardle_compressed(${PROJECT_SOURCE_DIR}/docs/${page} ${page}.gz)
  install(FILES ${PROJECT_BINARY_DIR}/${page}.gz
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT ${component})
endfunction()
