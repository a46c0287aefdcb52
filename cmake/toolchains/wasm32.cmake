# SPDX-License-Identifier: MIT
# WebAssembly (wasm32) with Debian's Emscripten (em++, clang 14's WebAssembly back end); programs
# are .js files with their .wasm beside them and run under node. Emscripten's own toolchain file,
# with this project's settings. The exactness flags are the project's as for every clang build
# (cmake/Exactness.cmake). WebAssembly has no fused multiply-add instruction: em++ contracts by
# default (-ffp-contract=on, llvm.fmuladd in its IR) and the back end splits each into a multiply
# and an add, but the project's -ffp-contract=off keeps contraction out of the IR in the first place.
if(DEFINED ENV{EMSCRIPTEN})
  set(QUILLON_EMSCRIPTEN_ROOT $ENV{EMSCRIPTEN})
else()
  set(QUILLON_EMSCRIPTEN_ROOT /usr/share/emscripten)
endif()
# Emscripten calls its processor x86 for projects that test it for the word size; here it would
# bring the x86 flags and kernels (SSE2).
set(EMSCRIPTEN_SYSTEM_PROCESSOR wasm32)
include(${QUILLON_EMSCRIPTEN_ROOT}/cmake/Modules/Platform/Emscripten.cmake)

# C++ exceptions are caught, as on every other platform: the region functions turn a failed
# allocation into their failure value (Emscripten's default would abort instead).
set(CMAKE_CXX_FLAGS_INIT "-fexceptions")
# Programs see the machine's files (the conformance battery writes its dumps there) and grow their
# memory as they need. The module is compiled synchronously: Emscripten 3.1.6 would load it with
# fetch() where that exists, which node 18 and later provide but which cannot open a file path.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fexceptions -sNODERAWFS=1 -sALLOW_MEMORY_GROWTH=1 -sWASM_ASYNC_COMPILATION=0")

# Debian's emscripten runs JavaScript tools of its own under node when it links, with modules
# (acorn) where Debian's nodejs looks for them; a node from elsewhere must be told.
if(EXISTS /usr/share/nodejs/acorn)
  set(CMAKE_C_LINKER_LAUNCHER ${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs)
  set(CMAKE_CXX_LINKER_LAUNCHER ${CMAKE_COMMAND} -E env NODE_PATH=/usr/share/nodejs)
endif()
