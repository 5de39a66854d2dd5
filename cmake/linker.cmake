# Which linker a cross build with GCC uses, and how it lays files out. VXMGMT_LLD=OFF takes the
# compiler's own.
find_program(VXMGMT_LLD_PROGRAM ld.lld)
if(VXMGMT_LLD_PROGRAM)
    option(VXMGMT_LLD "Link with lld" ON)
endif()
if(VXMGMT_LLD AND CMAKE_CROSSCOMPILING AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    add_link_options("SHELL:-wrapper \"${CMAKE_CURRENT_LIST_DIR}/link-with-lld.sh\"")
endif()
# What a smashed stack ends in; the driver brings its own.
if(MINGW)
    add_link_options(-fstack-protector-strong)
endif()
# The same sources give the same bytes: no file tells when or, for packages, where it was made.
option(VXMGMT_ANYWHERE "Leave the folders of sources and build out of what is built" OFF)
if(MINGW)
    add_link_options(-Wl,--no-insert-timestamp)
endif()
if(VXMGMT_ANYWHERE)
    add_compile_options(-ffile-prefix-map=${PROJECT_BINARY_DIR}=build
                        -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        # What these views look like hangs on where the compiler's own memory lies.
        add_compile_options(-gno-variable-location-views)
    endif()
endif()
# Wine maps what lies on pages of a file and copies everything else, debug information too, at every
# start of a program.
if(CMAKE_CROSSCOMPILING)
    add_link_options(-Wl,--file-alignment,4096)
endif()
