# SPDX-License-Identifier: MIT
# pixman's region code built from Debian's source, for targets with no pixman library to link
# (WebAssembly): the static library quillon_pixman, with <pixman.h>, for the region layer.
# QUILLON_PIXMAN_SOURCE names an unpacked pixman source; when it holds none, tools/wasm/pixman-source.sh
# fetches Debian's there with apt-get source.
set(QUILLON_PIXMAN_SOURCE ${PROJECT_BINARY_DIR}/pixman-source/pixman CACHE PATH
  "An unpacked pixman source tree, for targets without a pixman library (fetched when absent)")
if(NOT EXISTS ${QUILLON_PIXMAN_SOURCE}/pixman/pixman-region32.c)
  cmake_path(GET QUILLON_PIXMAN_SOURCE PARENT_PATH pixman_fetch_dir)
  message(STATUS "Fetching Debian's pixman source into ${pixman_fetch_dir}")
  execute_process(COMMAND ${PROJECT_SOURCE_DIR}/tools/wasm/pixman-source.sh ${pixman_fetch_dir}
    RESULT_VARIABLE pixman_fetch_result)
  if(NOT pixman_fetch_result EQUAL 0 OR NOT EXISTS ${QUILLON_PIXMAN_SOURCE}/pixman/pixman-region32.c)
    message(FATAL_ERROR "No pixman source in ${QUILLON_PIXMAN_SOURCE}: run "
      "tools/wasm/pixman-source.sh ${pixman_fetch_dir}, or point QUILLON_PIXMAN_SOURCE at one")
  endif()
endif()

# The region functions (pixman-region32.c) and pixman's error reporter (pixman-utils.c). The rest
# of pixman, the images the other functions of those two files refer to, is not needed: the
# WebAssembly linker keeps only the functions the program reaches.
set(pixman_dir ${QUILLON_PIXMAN_SOURCE}/pixman)
add_library(quillon_pixman STATIC ${pixman_dir}/pixman-region32.c ${pixman_dir}/pixman-utils.c)
# What pixman's own build would detect for this target: its name for messages, and thread-local
# storage (pixman's images use it; regions do not).
file(WRITE ${PROJECT_BINARY_DIR}/pixman-config/config.h
  "#define PACKAGE \"pixman\"\n#define TLS __thread\n")
target_include_directories(quillon_pixman PUBLIC $<BUILD_INTERFACE:${pixman_dir}>)
target_include_directories(quillon_pixman PRIVATE ${PROJECT_BINARY_DIR}/pixman-config)
target_compile_definitions(quillon_pixman PRIVATE HAVE_CONFIG_H)
# Its code is pixman's, not ours: its warnings are not this project's to fix.
target_compile_options(quillon_pixman PRIVATE -w)
set_target_properties(quillon_pixman PROPERTIES EXPORT_NAME pixman)
