# Compile settings that every target shares, and the helpers that keep the folders' rules.

add_library(sg_settings INTERFACE)
target_compile_options(sg_settings INTERFACE -Wall -Wextra -Wpedantic -Werror)
target_compile_definitions(sg_settings INTERFACE SWIFTGATE_VERSION=L"${PROJECT_VERSION}")
# The compiler collects its garbage less often.
target_compile_options(sg_settings INTERFACE
  $<$<CXX_COMPILER_ID:GNU>:--param=ggc-min-heapsize=400000 --param=ggc-min-expand=300>)
# Null and misaligned pointers are left to the fuzzers' build: their checks stand at every access, and
# cost the compiler a fifth of its time.
if(SWIFTGATE_SANITIZE)
  target_compile_options(sg_settings INTERFACE -fsanitize=address,undefined,float-cast-overflow
                         -fno-sanitize=null,alignment -fno-omit-frame-pointer
                         -fno-sanitize-recover=undefined,float-cast-overflow)
  target_link_options(sg_settings INTERFACE -fsanitize=address,undefined)
endif()
# What the sources of tests have besides. It is the product's code that is looked at: a test's own is
# compiled quickly, and under the sanitizers without the checks that cost the compiler most.
add_library(sg_test_settings INTERFACE)
target_compile_options(sg_test_settings INTERFACE -O0 -fPIC)
if(SWIFTGATE_SANITIZE)
  target_compile_options(sg_test_settings INTERFACE -fno-sanitize=undefined)
endif()

if(SWIFTGATE_FUZZ)
  target_compile_options(sg_settings INTERFACE -fsanitize=fuzzer-no-link,address,undefined
                         -fno-sanitize-recover=undefined)
  target_link_options(sg_settings INTERFACE -fsanitize=address,undefined)
endif()

# Headers that most sources include, compiled once for all that are built with the same options. A
# source still includes what it uses: the presets `debug` and `fuzz`, and other compilers, do without.
set(SG_PRECOMPILED <algorithm> <cmath> <cstdint> <functional> <map> <memory> <optional> <set> <span>
                   <string> <string_view> <unordered_map> <utility> <vector>)
function(sg_precompile name owner)
  if(NOT SWIFTGATE_PRECOMPILE OR NOT CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  elseif(name STREQUAL owner)
    target_precompile_headers(${name} PRIVATE ${SG_PRECOMPILED} ${ARGN})
  else()
    target_precompile_headers(${name} REUSE_FROM ${owner})
  endif()
endfunction()

# A view is an include root with one folder of src/ in it. A target sees only the folders whose
# views it is given, so that an include of any other folder does not compile.
function(sg_view folder)
  set(root ${CMAKE_BINARY_DIR}/views/${folder})
  get_filename_component(parent ${root}/${folder} DIRECTORY)
  file(MAKE_DIRECTORY ${parent})
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${folder} ${root}/${folder} SYMBOLIC)
endfunction()

# sg_component(NAME folder SEES folder... WITHOUT folder...): an object library of every source under
# src/<folder>, but for the folders WITHOUT, which may include its own folder and the folders it SEES.
function(sg_component name folder)
  cmake_parse_arguments(ARG "" "" "SEES;LINKS;WITHOUT" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp)
  foreach(other ${ARG_WITHOUT})
    list(FILTER sources EXCLUDE REGEX "/src/${other}/")
  endforeach()
  add_library(${name} OBJECT ${sources})
  target_link_libraries(${name} PUBLIC sg_settings fmt::fmt-header-only ${ARG_LINKS})
  sg_precompile(${name} sg_base)
  foreach(seen ${folder} ${ARG_SEES})
    sg_view(${seen})
    target_include_directories(${name} PUBLIC ${CMAKE_BINARY_DIR}/views/${seen})
  endforeach()
endfunction()
