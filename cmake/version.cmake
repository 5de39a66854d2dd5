# What the files say of themselves. The versions of everything stand here and in project(); public
# headers and tests are held against them.
set(VXMGMT_TOOL_VERSION 1.0.0)  # of vxmgr, vxemu and the emulated adapters' driver
string(CONCAT VXMGMT_COPYRIGHT "Copyright (c) 2026 the VXMGMT authors. MIT licence.")

# "1.28.0.197" as "1,28,0,197", with as many numbers as Windows wants.
function(vxmgmt_version_commas version result)
    string(REPLACE "." ";" numbers ${version})
    while(TRUE)
        list(LENGTH numbers count)
        if(count GREATER_EQUAL 4)
            break()
        endif()
        list(APPEND numbers 0)
    endwhile()
    list(JOIN numbers "," commas)
    set(${result} ${commas} PARENT_SCOPE)
endfunction()

# vxmgmt_version(target PROGRAM|LIBRARY|DRIVER file version description): the version resource, and a
# program's manifest.
function(vxmgmt_version target kind file version description)
    set(types_PROGRAM VFT_APP)
    set(types_LIBRARY VFT_DLL)
    set(types_DRIVER VFT_DRV)
    set(VERSION_TYPE ${types_${kind}})
    set(VERSION_FILE ${file})
    set(VERSION_DOTS ${version})
    set(VERSION_DESCRIPTION ${description})
    vxmgmt_version_commas(${version} VERSION_COMMAS)
    vxmgmt_version_commas(${PROJECT_VERSION} PRODUCT_COMMAS)
    set(VERSION_MANIFEST "")
    if(kind STREQUAL PROGRAM AND NOT MSVC)
        set(VERSION_MANIFEST "1 24 \"program.manifest\"")
    endif()
    set(resources ${PROJECT_SOURCE_DIR}/cmake/resources)
    set(script ${PROJECT_BINARY_DIR}/resources/${file}.rc)
    configure_file(${resources}/version.rc.in ${script} @ONLY)
    set_source_files_properties(${script} PROPERTIES OBJECT_DEPENDS ${resources}/program.manifest
                                                     INCLUDE_DIRECTORIES ${resources}
                                                     SKIP_UNITY_BUILD_INCLUSION ON)
    target_sources(${target} PRIVATE ${script})
    if(kind STREQUAL PROGRAM AND MSVC)
        target_sources(${target} PRIVATE ${resources}/program.manifest)
    endif()
endfunction()
