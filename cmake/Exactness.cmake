# SPDX-License-Identifier: MIT
# Floating-point rules that every translation unit doing library arithmetic must follow, the
# callers' included: the header templates are instantiated in their code too. Attached to an
# interface target that the libraries pass on to whoever links them; quillon.pc carries the same
# list (QUILLON_EXACTNESS_FLAGS), so that both ways of building against Quillon compile alike.
add_library(quillon_exactness INTERFACE)
set(QUILLON_EXACTNESS_FLAGS)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  # No contraction into fused multiply-add, and SSE2 arithmetic on 32-bit x86 (no x87 excess
  # precision); -ffast-math is never used.
  list(APPEND QUILLON_EXACTNESS_FLAGS -ffp-contract=off -fno-fast-math)
  # Where sin and cos come from the platform's C library (QUILLON_PLATFORM_TRIG, Quillon.dll), the
  # compiler must not merge a sin and a cos of one angle into a call of sincos, which is another
  # routine (under mingw-w64 not even the C runtime's) and need not give the same last bits.
  list(APPEND QUILLON_EXACTNESS_FLAGS -fno-builtin-sin -fno-builtin-cos)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12's basic-block (SLP) vectorizer was caught reusing a double where the code converts it
    # to float and back (so the float rounding vanished); the conformance battery shows it at -O3.
    list(APPEND QUILLON_EXACTNESS_FLAGS -fno-tree-slp-vectorize)
  endif()
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i.86|x86)$")
    list(APPEND QUILLON_EXACTNESS_FLAGS -msse2 -mfpmath=sse)
  endif()
elseif(MSVC)
  list(APPEND QUILLON_EXACTNESS_FLAGS /fp:precise /fp:contract-)
endif()
# Rotations take sin and cos from the C library instead of the library's own, as the first release
# did: every unit that instantiates a rotation must agree, so the choice travels with the flags.
if(QUILLON_PLATFORM_TRIG)
  list(APPEND QUILLON_EXACTNESS_FLAGS -DQUILLON_PLATFORM_TRIG)
endif()
target_compile_options(quillon_exactness INTERFACE ${QUILLON_EXACTNESS_FLAGS})
set_target_properties(quillon_exactness PROPERTIES EXPORT_NAME exactness)
