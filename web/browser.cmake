# What differs when the program in the stand-in desktop is built for browsers, as one WebAssembly module.

add_compile_options(-fwasm-exceptions -ffile-prefix-map=${CMAKE_SOURCE_DIR}=.
                    -Wno-shorten-64-to-32 # sizes have 32 bits here
                    "SHELL:-include ${CMAKE_CURRENT_LIST_DIR}/libcxx.hpp")
# The page brings the memory, one for all plays, and starts main by itself.
add_link_options(-fwasm-exceptions -sMODULARIZE=1 -sEXPORT_NAME=makeTarnwick -sENVIRONMENT=web -sINVOKE_RUN=0
                 -sEXIT_RUNTIME=1 -sIMPORTED_MEMORY=1 -sALLOW_MEMORY_GROWTH=1 -sINITIAL_MEMORY=4MB -sTOTAL_STACK=1MB
                 -sEXPORTED_RUNTIME_METHODS=FS,callMain)

add_library(utf8proc STATIC ${CMAKE_CURRENT_LIST_DIR}/utf8proc/utf8proc.cpp)
target_include_directories(utf8proc PUBLIC ${CMAKE_CURRENT_LIST_DIR}/utf8proc)
