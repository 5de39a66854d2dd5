// Compiler-specific attributes, all in this one header: GCC (MinGW, native) and MSVC.
#pragma once

// The bare file name of the current source, for trace lines.
#if defined(__FILE_NAME__)
#define VX_SOURCE_FILE __FILE_NAME__
#else
#define VX_SOURCE_FILE __FILE__  // HXfprintf cuts the folders off at the last backslash
#endif

// Puts a variable into the data section that every process loading the library shares.
// Such a variable must have an initialiser.
#if defined(_MSC_VER) && !defined(__clang__)
#pragma section("vxshared", read, write, shared)
#define VX_SHARED_BETWEEN_PROCESSES __declspec(allocate("vxshared"))
#elif defined(_WIN32) && defined(__clang__)
// Clang has no attribute for it: the section gets its flag where it is named first.
asm(".section vxshared,\"dws\"\n\t.text");
#define VX_SHARED_BETWEEN_PROCESSES __attribute__((section("vxshared")))
#elif defined(_WIN32)
#define VX_SHARED_BETWEEN_PROCESSES __attribute__((section("vxshared"), shared))
#else
#define VX_SHARED_BETWEEN_PROCESSES
#endif

#if defined(__clang__)
#define VX_PRINTF_FORMAT(formatIndex, firstArgument) \
    __attribute__((format(printf, formatIndex, firstArgument)))
#elif defined(__GNUC__)
#define VX_PRINTF_FORMAT(formatIndex, firstArgument) \
    __attribute__((format(gnu_printf, formatIndex, firstArgument)))
#else
#define VX_PRINTF_FORMAT(formatIndex, firstArgument)
#endif
