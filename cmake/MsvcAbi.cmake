# SPDX-License-Identifier: MIT
# Windows builds: what it takes to compile and link for the MSVC ABI next to mingw-w64 (clang for
# the *-pc-windows-msvc targets, lld-link, mingw-w64's runtime and import libraries). Used by the
# DLLs (cmake/MsvcDlls.cmake) and by the test program built for the MSVC ABI.
find_program(QUILLON_CLANGXX NAMES clang++ REQUIRED)
find_program(QUILLON_LLD_LINK NAMES lld-link REQUIRED)
find_program(QUILLON_LLVM_NM NAMES llvm-nm REQUIRED)
find_program(QUILLON_LLVM_UNDNAME NAMES llvm-undname REQUIRED)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

set(QUILLON_MSVC_TRIPLE ${CMAKE_SYSTEM_PROCESSOR}-pc-windows-msvc)
set(QUILLON_MSVC_FLAGS --target=${QUILLON_MSVC_TRIPLE} -std=c++20 -O2 -fno-exceptions -ffp-contract=off
    -Wall -Wextra -Wno-ignored-qualifiers -I${PROJECT_SOURCE_DIR}/include)
set(QUILLON_LINK_FLAGS /nologo /libpath:${CMAKE_FIND_ROOT_PATH}/lib)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-libgcc-file-name
                OUTPUT_VARIABLE QUILLON_LIBGCC OUTPUT_STRIP_TRAILING_WHITESPACE)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^i.86$")
  list(APPEND QUILLON_MSVC_FLAGS -msse2 -mfpmath=sse)
  list(APPEND QUILLON_LINK_FLAGS /machine:x86 /safeseh:no) # mingw-w64 objects carry no SEH table
else()
  list(APPEND QUILLON_LINK_FLAGS /machine:x64)
endif()
# mingw-w64's runtime for its own objects, the C runtime and the system's import libraries.
set(QUILLON_LINK_LIBS libmingw32.a libmsvcrt.a libmingwex.a libkernel32.a ${QUILLON_LIBGCC})

# quillon_msvc_object(OUTPUT SOURCE [DEFINE ...]): one object compiled by clang for the MSVC ABI.
function(quillon_msvc_object output source)
  list(TRANSFORM ARGN PREPEND -D OUTPUT_VARIABLE defines)
  add_custom_command(OUTPUT ${output}
    COMMAND ${QUILLON_CLANGXX} ${QUILLON_MSVC_FLAGS} ${defines} -MD -MF ${output}.d -c ${source} -o ${output}
    DEPFILE ${output}.d
    DEPENDS ${source}
    COMMENT "Compiling ${source} for the MSVC ABI"
    VERBATIM)
endfunction()

