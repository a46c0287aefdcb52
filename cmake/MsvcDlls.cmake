# SPDX-License-Identifier: MIT
# Quillon.dll and "Guard Scalars.dll" for programs built with the platform's own compiler: their
# exports carry MSVC names and conventions. The arithmetic is the library's one implementation,
# compiled by mingw-w64 g++ (the OBJECT libraries below); a thin layer of entry points compiled by
# clang for the MSVC target calls it through plain C functions; lld-link joins both into each DLL
# with mingw-w64's runtime and import libraries. The import libraries Quillon.lib and
# "Guard Scalars.lib" are what callers link.
# The compiler, linker and flags for the MSVC ABI come from cmake/MsvcAbi.cmake.
set(dir ${CMAKE_CURRENT_BINARY_DIR})
set(bin ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})

# The library's side, compiled by g++ as for the static libraries, without C++ exceptions (the
# DLLs carry no C++ runtime).
add_library(guardscalars_dll_objects OBJECT scalars/GuardScalars.cpp msvc/GuardSeam.cpp)
add_library(quillon_dll_objects OBJECT frame/Module.cpp frame/Quillon.rc msvc/Bridge.cpp
  msvc/GuardForward.cpp transform/Transform.cpp transform/RegionMapping.cpp vector/ThreeDVector.cpp)
foreach(objects guardscalars_dll_objects quillon_dll_objects)
  target_link_libraries(${objects} PRIVATE quillon_exactness)
  target_include_directories(${objects} PRIVATE ${PROJECT_SOURCE_DIR}/include)
  target_compile_options(${objects} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions>)
endforeach()
# Quillon.dll calls the guard operations that "Guard Scalars.dll" exports, as every module built
# against that library does; elsewhere they are inlined.
# Its programs expect the platform's rotations, so its sin and cos stay msvcrt's.
target_compile_definitions(quillon_dll_objects PRIVATE QUILLON_BUILDING_MODULE QUILLON_GUARD_OUT_OF_LINE
  QUILLON_PLATFORM_TRIG)

# "Guard Scalars.dll": the 51 exports of the guard classes.
quillon_msvc_object(${dir}/GuardExports.obj ${CMAKE_CURRENT_SOURCE_DIR}/msvc/GuardExports.cpp)
add_custom_command(OUTPUT "${bin}/Guard Scalars.dll" "${bin}/Guard Scalars.lib"
  COMMAND ${QUILLON_LLD_LINK} ${QUILLON_LINK_FLAGS} /dll /noentry "/out:${bin}/Guard Scalars.dll"
          "/implib:${bin}/Guard Scalars.lib" ${dir}/GuardExports.obj
          $<TARGET_OBJECTS:guardscalars_dll_objects> ${QUILLON_LINK_LIBS}
  COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/msvc/ordinal_base.py "${bin}/Guard Scalars.dll"
  DEPENDS ${dir}/GuardExports.obj guardscalars_dll_objects $<TARGET_OBJECTS:guardscalars_dll_objects>
  COMMENT "Linking Guard Scalars.dll"
  VERBATIM COMMAND_EXPAND_LISTS)

# Quillon.dll: the 105 members of Transform<T> by name, ordinals 1..105 in the order of the export
# list (Quillon.def, written from the compiled entry points); the guard members imported from
# "Guard Scalars.dll" by their MSVC names; the region functions from GDI32.dll.
quillon_msvc_object(${dir}/Entry.obj ${CMAKE_CURRENT_SOURCE_DIR}/msvc/Entry.cpp)
quillon_msvc_object(${dir}/GuardImports.obj ${CMAKE_CURRENT_SOURCE_DIR}/msvc/GuardSeam.cpp
                    QUILLON_GUARD_SEAM_IMPORTS)
add_custom_command(OUTPUT ${dir}/Quillon.def
  COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/msvc/msvc_names.py ${QUILLON_LLVM_NM}
          ${QUILLON_LLVM_UNDNAME} ${CMAKE_CURRENT_SOURCE_DIR}/frame/exported_members.txt
          ${dir}/Quillon.def ${dir}/Entry.obj
  DEPENDS ${dir}/Entry.obj ${CMAKE_CURRENT_SOURCE_DIR}/msvc/msvc_names.py
          ${CMAKE_CURRENT_SOURCE_DIR}/frame/exported_members.txt
  VERBATIM)
add_custom_command(OUTPUT ${bin}/Quillon.dll ${bin}/Quillon.lib
  COMMAND ${QUILLON_LLD_LINK} ${QUILLON_LINK_FLAGS} /dll /entry:DllMain
          /out:${bin}/Quillon.dll /implib:${bin}/Quillon.lib /def:${dir}/Quillon.def
          ${dir}/Entry.obj ${dir}/GuardImports.obj $<TARGET_OBJECTS:quillon_dll_objects>
          "${bin}/Guard Scalars.lib" libgdi32.a ${QUILLON_LINK_LIBS}
  COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/msvc/ordinal_base.py ${bin}/Quillon.dll
  DEPENDS ${dir}/Entry.obj ${dir}/GuardImports.obj ${dir}/Quillon.def "${bin}/Guard Scalars.lib"
          ${CMAKE_CURRENT_SOURCE_DIR}/msvc/ordinal_base.py
          quillon_dll_objects $<TARGET_OBJECTS:quillon_dll_objects>
  COMMENT "Linking Quillon.dll"
  VERBATIM COMMAND_EXPAND_LISTS)

add_custom_target(quillon_dlls ALL DEPENDS ${bin}/Quillon.dll "${bin}/Guard Scalars.dll")
install(FILES ${bin}/Quillon.dll "${bin}/Guard Scalars.dll" DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${bin}/Quillon.lib "${bin}/Guard Scalars.lib" DESTINATION ${CMAKE_INSTALL_LIBDIR})
