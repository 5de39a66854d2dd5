# How the project's own code is compiled.

# One level of optimising for each target, below: none from the build type.
if(NOT MSVC)
    foreach(language C CXX)
        set(CMAKE_${language}_FLAGS_RELWITHDEBINFO "-DNDEBUG")
        set(CMAKE_${language}_FLAGS_DEBUG "")
    endforeach()
endif()
set(VXMGMT_LEVEL_OPTIMISED -O2 -g)  # products that other programs wait for
set(VXMGMT_LEVEL_QUICK -O1 -g1)     # programs whose speed does not matter
set(VXMGMT_LEVEL_TEST -O0 -g1)      # built more often than run
if(VXMGMT_SANITIZE OR VXMGMT_FUZZ)
    set(VXMGMT_LEVEL_OPTIMISED -O1 -g)
    set(VXMGMT_LEVEL_QUICK -O0 -g1)
endif()

# vxmgmt_strict(target OPTIMISED|QUICK|TEST): builds without warnings, at that level.
function(vxmgmt_strict target level)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /WX /permissive- /utf-8)
        target_compile_definitions(${target} PRIVATE _CRT_SECURE_NO_WARNINGS)
    else()
        target_compile_options(${target} PRIVATE ${VXMGMT_LEVEL_${level}}
                                                 -Wall -Wextra -Wpedantic -Wshadow -Werror
                               $<$<CXX_COMPILER_ID:Clang>:-Wno-missing-braces>)
    endif()
    if(MINGW AND NOT level STREQUAL TEST)
        target_compile_options(${target} PRIVATE -fstack-protector-strong)
    endif()
    if(WIN32)
        target_compile_definitions(${target} PRIVATE WIN32_LEAN_AND_MEAN NOMINMAX
                                                     _WIN32_WINNT=0x0601)
    endif()
    if(VXMGMT_SANITIZE OR VXMGMT_FUZZ)
        # The tests are not what is tested.
        if(NOT level STREQUAL TEST)
            target_compile_options(${target} PRIVATE -fsanitize=address,undefined
                                                     -fno-sanitize-recover=all)
        endif()
        target_link_options(${target} PRIVATE -fsanitize=address,undefined)
    endif()
    if(VXMGMT_FUZZ)
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
endfunction()

# vxmgmt_without_exceptions(target): no exceptions and no RTTI (the library and the driver).
function(vxmgmt_without_exceptions target)
    if(MSVC)
        target_compile_options(${target} PRIVATE /EHs-c- /GR-)
        target_compile_definitions(${target} PRIVATE _HAS_EXCEPTIONS=0)
    else()
        target_compile_options(${target} PRIVATE -fno-exceptions -fno-rtti)
    endif()
endfunction()

# vxmgmt_precompile(target <header>...): headers that nearly every source needs, compiled once.
function(vxmgmt_precompile target)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        # Of the standard library's own code GCC no longer knows, once it is precompiled, that its
        # doubts about it are nobody's business.
        target_compile_options(${target} PRIVATE -Wno-array-bounds -Wno-restrict
                                                 -Wno-stringop-overflow)
    endif()
    foreach(header ${ARGN})
        target_precompile_headers(${target} PRIVATE
                                  "$<$<COMPILE_LANGUAGE:CXX>:<${header}$<ANGLE-R>>")
    endforeach()
endfunction()
