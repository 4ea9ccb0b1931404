# Toolchain: from Linux to macOS with Debian's clang 19 and lld 19, open headers and link stubs (sysroot.py).
# CMAKE_OSX_ARCHITECTURES names the processor, TARNWICK_HEADERS and TARNWICK_STUBS the two folders.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${CMAKE_OSX_ARCHITECTURES})
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TARNWICK_HEADERS TARNWICK_STUBS)

find_program(CMAKE_CXX_COMPILER clang++-19 REQUIRED)
find_program(CMAKE_AR llvm-ar-19 REQUIRED)
find_program(CMAKE_RANLIB llvm-ranlib-19 REQUIRED)
find_program(CMAKE_LINKER ld64.lld-19 REQUIRED)
find_program(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-19 REQUIRED)
set(CMAKE_CXX_COMPILER_TARGET ${CMAKE_OSX_ARCHITECTURES}-apple-macos13.0)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")

# The order matters: libc++, then the compiler's own headers, then the C library's.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-resource-dir OUTPUT_VARIABLE resources
                OUTPUT_STRIP_TRAILING_WHITESPACE)
set(CMAKE_CXX_FLAGS_INIT "-nostdinc -isystem ${TARNWICK_HEADERS}/libcxx/include -isystem ${resources}/include \
-isystem ${TARNWICK_HEADERS}/include -include ${CMAKE_CURRENT_LIST_DIR}/libcxx_config.h")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld -nostdlib -F${TARNWICK_STUBS} -L${TARNWICK_STUBS} \
-Wl,-adhoc_codesign")
