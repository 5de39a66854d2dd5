# Cross build for Windows x64 with clang, over the headers and runtime of Debian's
# g++-mingw-w64-x86-64 (posix thread variant), which it does not find by itself.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_SYSROOT /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

file(GLOB gcc_runtimes /usr/lib/gcc/x86_64-w64-mingw32/*-posix)
list(GET gcc_runtimes -1 gcc_runtime)
set(gcc_headers ${gcc_runtime}/include/c++)
set(CMAKE_CXX_FLAGS_INIT "-nostdinc++ -isystem ${gcc_headers} -isystem ${gcc_headers}/x86_64-w64-mingw32 -isystem ${gcc_headers}/backward")
# Debug information as PDB, which Windows' own debuggers read.
string(APPEND CMAKE_CXX_FLAGS_INIT " -gcodeview -Wno-unused-command-line-argument")
set(CMAKE_C_FLAGS_INIT "-gcodeview -Wno-unused-command-line-argument")
# The runtime has type_info::operator==, which clang also puts into its objects.
set(link_flags "-fuse-ld=lld -Wl,--allow-multiple-definition -Wl,--pdb= -B${gcc_runtime} -L${gcc_runtime} -static -pthread")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${link_flags}")
