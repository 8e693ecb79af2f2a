# How every target of Tarn is built: language, warnings, hardening, sanitizers, batches, and one library per folder.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(TARN_SANITIZE "" CACHE STRING "Sanitizers to build with: empty, address,undefined or thread")

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

# Sources are compiled several at a time: most of the time of a source goes into the headers that all of them share.
option(CMAKE_UNITY_BUILD "Compile several sources at a time" ON)
set(CMAKE_UNITY_BUILD_BATCH_SIZE 12)

# No path of the build in what is built, so that two folders give the same bytes.
add_compile_options("-ffile-prefix-map=${CMAKE_BINARY_DIR}=build" "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.")

add_library(tarn_options INTERFACE)
target_compile_options(tarn_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Werror)
target_include_directories(tarn_options INTERFACE "${CMAKE_SOURCE_DIR}")
find_package(Threads REQUIRED)
target_link_libraries(tarn_options INTERFACE Threads::Threads)
if(TARN_SANITIZE)
  # The check of virtual calls needs a descriptor, and takes their absence, which a test brings about, for a fault.
  target_compile_options(tarn_options INTERFACE -fsanitize=${TARN_SANITIZE} -fno-sanitize-recover=all -fno-sanitize=vptr
                         -fno-omit-frame-pointer)
  target_link_options(tarn_options INTERFACE -fsanitize=${TARN_SANITIZE})
endif()

# What is released is hardened; the checks of the standard library cost nothing that a benchmark sees.
add_library(tarn_hardening INTERFACE)
if(CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo" AND NOT TARN_SANITIZE)
  target_compile_options(tarn_hardening INTERFACE -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
  target_compile_definitions(tarn_hardening INTERFACE _GLIBCXX_ASSERTIONS)
  target_link_options(tarn_hardening INTERFACE -pie -Wl,-z,relro,-z,now)
endif()

# Tests are run once and rarely debugged: what they cost is compiling them.
add_library(tarn_test_options INTERFACE)
target_link_libraries(tarn_test_options INTERFACE tarn_options)
# In a batch a fixture stands in an included file, where GCC distrusts a nameless namespace.
target_compile_options(tarn_test_options INTERFACE -O0 -g1 $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)

# tarn_library(NAME LIBRARY...): a static library of every source in the current folder and below it, but main.cpp, and
# the arrows it may follow.
function(tarn_library name)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC tarn_options ${ARGN} PRIVATE tarn_hardening)
endfunction()
