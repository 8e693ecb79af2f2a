# How every target of Tarn is built: language, warnings, sanitizers, and one library per folder.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(TARN_SANITIZE "" CACHE STRING "Sanitizers to build with: empty, address,undefined or thread")

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

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

# tarn_library(NAME LIBRARY...): a static library of every source in the current folder but main.cpp, and the arrows it
# may follow.
function(tarn_library name)
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
  if(NOT sources)
    # A folder whose first source is still to come only passes its arrows on.
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE tarn_options ${ARGN})
    return()
  endif()
  list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC tarn_options ${ARGN})
endfunction()
