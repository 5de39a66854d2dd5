# vxmgmt_strict(target): the project's own code builds without warnings.
function(vxmgmt_strict target)
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src
                                                 ${PROJECT_SOURCE_DIR}/include)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /WX /permissive- /utf-8)
        target_compile_definitions(${target} PRIVATE _CRT_SECURE_NO_WARNINGS)
    else()
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Werror)
    endif()
    if(WIN32)
        target_compile_definitions(${target} PRIVATE WIN32_LEAN_AND_MEAN NOMINMAX
                                                     _WIN32_WINNT=0x0601)
    endif()
    if(VXMGMT_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=address,undefined
                                                 -fno-sanitize-recover=all)
        target_link_options(${target} PRIVATE -fsanitize=address,undefined)
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

# vxmgmt_quick_to_build(target <header>...): for programs whose speed does not matter. The headers are
# compiled once.
function(vxmgmt_quick_to_build target)
    if(NOT MSVC)
        # Of the standard library's own code GCC no longer knows, once it is precompiled, that its
        # doubts about it are nobody's business.
        target_compile_options(${target} PRIVATE -O1 -g1 -Wno-array-bounds -Wno-restrict
                                                 -Wno-stringop-overflow)
    endif()
    foreach(header ${ARGN})
        target_precompile_headers(${target} PRIVATE
                                  "$<$<COMPILE_LANGUAGE:CXX>:<${header}$<ANGLE-R>>")
    endforeach()
endfunction()
