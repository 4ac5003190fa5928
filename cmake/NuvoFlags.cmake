# Compile settings shared by every target.
#
# nuvo_flags: language level and floating-point settings that make results
# bit-stable across builds (no contraction into fused multiply-add, no fast-math).
# nuvo_dev_flags: the warning set, an error when NUVO_WERROR is on.
# Sanitizer builds are the build types "Sanitize" (AddressSanitizer + UBSan) and
# "Tsan" (ThreadSanitizer, for clang with LLVM's OpenMP runtime).

add_library(nuvo_flags INTERFACE)
target_compile_options(nuvo_flags INTERFACE
  $<$<COMPILE_LANG_AND_ID:CXX,GNU,Clang>:-ffp-contract=off -fno-fast-math>
  $<$<COMPILE_LANG_AND_ID:C,GNU,Clang>:-ffp-contract=off>)

add_library(nuvo_dev_flags INTERFACE)
target_compile_options(nuvo_dev_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow
  $<$<BOOL:${NUVO_WERROR}>:-Werror>)

if(NUVO_ASSERTIONS)
  foreach(lang C CXX)
    foreach(cfg RELEASE RELWITHDEBINFO MINSIZEREL)
      string(REPLACE "-DNDEBUG" "" CMAKE_${lang}_FLAGS_${cfg} "${CMAKE_${lang}_FLAGS_${cfg}}")
    endforeach()
  endforeach()
endif()

set(NUVO_SANITIZE_FLAGS "-O1 -g -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer")
set(CMAKE_C_FLAGS_SANITIZE "${NUVO_SANITIZE_FLAGS}" CACHE STRING "" FORCE)
set(CMAKE_CXX_FLAGS_SANITIZE "${NUVO_SANITIZE_FLAGS}" CACHE STRING "" FORCE)
set(CMAKE_EXE_LINKER_FLAGS_SANITIZE "-fsanitize=address,undefined" CACHE STRING "" FORCE)
set(CMAKE_SHARED_LINKER_FLAGS_SANITIZE "-fsanitize=address,undefined" CACHE STRING "" FORCE)

# clang needs more constexpr steps for the sieve of the scan primes.
set(NUVO_TSAN_FLAGS
    "-O1 -g -fsanitize=thread -fno-omit-frame-pointer -fconstexpr-steps=100000000")
set(CMAKE_C_FLAGS_TSAN "${NUVO_TSAN_FLAGS}" CACHE STRING "" FORCE)
set(CMAKE_CXX_FLAGS_TSAN "${NUVO_TSAN_FLAGS}" CACHE STRING "" FORCE)
set(CMAKE_EXE_LINKER_FLAGS_TSAN "-fsanitize=thread" CACHE STRING "" FORCE)
set(CMAKE_SHARED_LINKER_FLAGS_TSAN "-fsanitize=thread" CACHE STRING "" FORCE)

# nuvo_add_layer(<name> <folder> [DEPENDS <lower layers>...]): an object library
# of every .cpp in <folder>, compiled with the public headers and the internal
# headers of the layers it depends on.
function(nuvo_add_layer name)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(${name} OBJECT ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE NUVO_BUILDING_LIBRARY)
  if(NOT BUILD_SHARED_LIBS)
    target_compile_definitions(${name} PUBLIC NUVO_STATIC)
  endif()
  target_link_libraries(${name} PUBLIC nuvo_flags OpenMP::OpenMP_CXX ${ARG_DEPENDS} PRIVATE nuvo_dev_flags)
endfunction()
