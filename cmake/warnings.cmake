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
