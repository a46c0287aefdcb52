# Floating-point rules that every translation unit doing library arithmetic must follow, the
# callers' included: the header templates are instantiated in their code too. Attached to an
# interface target that the libraries pass on to whoever links them.
add_library(quillon_exactness INTERFACE)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  # No contraction into fused multiply-add, and SSE2 arithmetic on 32-bit x86 (no x87 excess
  # precision); -ffast-math is never used.
  target_compile_options(quillon_exactness INTERFACE -ffp-contract=off -fno-fast-math)
  # sin and cos are called as such, from the platform's C library: the compiler must not merge a
  # sin and a cos of one angle into a call of sincos, which is another routine (under mingw-w64 not
  # even the C runtime's) and need not give the same last bits.
  target_compile_options(quillon_exactness INTERFACE -fno-builtin-sin -fno-builtin-cos)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12's basic-block (SLP) vectorizer was caught reusing a double where the code converts it
    # to float and back (so the float rounding vanished); the conformance battery shows it at -O3.
    target_compile_options(quillon_exactness INTERFACE -fno-tree-slp-vectorize)
  endif()
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i.86|x86)$")
    target_compile_options(quillon_exactness INTERFACE -msse2 -mfpmath=sse)
  endif()
elseif(MSVC)
  target_compile_options(quillon_exactness INTERFACE /fp:precise /fp:contract-)
endif()
set_target_properties(quillon_exactness PROPERTIES EXPORT_NAME exactness)
