# Builds the macOS program on Linux, to look at what a Mac would get. Needs clang 19, lld 19, the tools of llvm 19 and
# an SDK, which the user has:
#
#   cmake -S . -B build/macos -G Ninja --toolchain cmake/macos-cross.cmake -D ORV_MACOS_SDK=/path/to/SDK
#
# ORV_MACOS_SDK is a folder with Apple's own layout (usr, System) or one with include, lib and Frameworks.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_OSX_DEPLOYMENT_TARGET 10.15 CACHE STRING "The oldest macOS, on Intel; clang takes 11.0 for arm64")
set(ORV_MACOS_SDK "" CACHE PATH "The macOS SDK")
if(NOT DEFINED ORV_CROSS_FOLDER)
  set(ORV_CROSS_FOLDER "${CMAKE_BINARY_DIR}/macos-cross")
endif()
# Every check that CMake makes reads this file again, in a folder of its own.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORV_MACOS_SDK ORV_CROSS_FOLDER)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

include("${CMAKE_CURRENT_LIST_DIR}/macos-cross-sdk.cmake")
set(CMAKE_OSX_SYSROOT "${orv_sysroot}" CACHE PATH "" FORCE)
set(CMAKE_FIND_ROOT_PATH "${orv_sysroot}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)

find_program(orv_clang NAMES clang++-19 REQUIRED) # which takes each language by the ending of its files
foreach(language IN ITEMS CXX OBJCXX OBJC)
  set(CMAKE_${language}_COMPILER "${orv_clang}")
  set(CMAKE_${language}_COMPILER_TARGET arm64-apple-macosx)
endforeach()

# clang joins the processors of one file by a program named lipo.
find_program(orv_lipo NAMES llvm-lipo-19 llvm-lipo REQUIRED)
find_program(orv_libtool NAMES llvm-libtool-darwin-19 llvm-libtool-darwin REQUIRED)
find_program(orv_linker NAMES ld64.lld-19 ld64.lld REQUIRED)
find_program(CMAKE_AR NAMES llvm-ar-19 llvm-ar REQUIRED)
find_program(CMAKE_RANLIB NAMES llvm-ranlib-19 llvm-ranlib REQUIRED)
find_program(CMAKE_INSTALL_NAME_TOOL NAMES llvm-install-name-tool-19 llvm-install-name-tool REQUIRED)
file(CREATE_LINK "${orv_lipo}" "${ORV_CROSS_FOLDER}/lipo" SYMBOLIC)

# The SDK's C++ library, not the one that clang itself came with.
set(orv_compile_flags "-B${ORV_CROSS_FOLDER} -nostdinc++ -isystem ${orv_sysroot}/usr/include/c++/v1")
set(CMAKE_CXX_FLAGS_INIT "${orv_compile_flags}")
set(CMAKE_OBJCXX_FLAGS_INIT "${orv_compile_flags}")
set(CMAKE_OBJC_FLAGS_INIT "-B${ORV_CROSS_FOLDER}")
# What asks for the system's version comes from a library that only Apple's clang has.
set(CMAKE_EXE_LINKER_FLAGS_INIT
  "--ld-path=${orv_linker} -mlinker-version=711 -Wl,-U,___isPlatformVersionAtLeast ${orv_link_flags}")

# ar cannot hold objects of more than one processor.
foreach(language IN ITEMS CXX OBJCXX OBJC)
  set(CMAKE_${language}_CREATE_STATIC_LIBRARY "${orv_libtool} -static -o <TARGET> <OBJECTS>")
endforeach()
