# What exists for the tools and tests alone: command-line parsing, JSON, deflate and the test
# framework.
# The library itself depends on nothing but the platform.
#
# A cross build takes the header-only Debian packages through a folder of links of its own, so that
# the compiler never sees the build machine's /usr/include.
set(VXMGMT_THIRD_PARTY ${CMAKE_BINARY_DIR}/third_party)

add_library(vxmgmt_cli11 INTERFACE)
add_library(vxmgmt_json INTERFACE)
add_library(vxmgmt_json_schema INTERFACE)
if(CMAKE_CROSSCOMPILING OR NOT WIN32)
    foreach(package CLI nlohmann valijson)
        if(NOT EXISTS /usr/include/${package})
            message(FATAL_ERROR "/usr/include/${package} is missing: run scripts/setup.sh")
        endif()
        file(MAKE_DIRECTORY ${VXMGMT_THIRD_PARTY}/${package}-headers)
        file(CREATE_LINK /usr/include/${package}
             ${VXMGMT_THIRD_PARTY}/${package}-headers/${package} SYMBOLIC)
    endforeach()
    target_include_directories(vxmgmt_cli11 SYSTEM INTERFACE ${VXMGMT_THIRD_PARTY}/CLI-headers)
    target_include_directories(vxmgmt_json SYSTEM INTERFACE ${VXMGMT_THIRD_PARTY}/nlohmann-headers)
    target_include_directories(vxmgmt_json_schema SYSTEM
                               INTERFACE ${VXMGMT_THIRD_PARTY}/valijson-headers)
else()
    find_package(CLI11 CONFIG REQUIRED)
    find_package(nlohmann_json CONFIG REQUIRED)
    find_package(valijson CONFIG REQUIRED)
    target_link_libraries(vxmgmt_json_schema INTERFACE ValiJSON::valijson)
    target_link_libraries(vxmgmt_cli11 INTERFACE CLI11::CLI11)
    target_link_libraries(vxmgmt_json INTERFACE nlohmann_json::nlohmann_json)
endif()

# Into the program itself in a cross build: Wine and Windows have no such DLL.
add_library(vxmgmt_zlib INTERFACE)
if(CMAKE_CROSSCOMPILING)
    find_library(VXMGMT_ZLIB libz.a)
    if(NOT VXMGMT_ZLIB)
        message(FATAL_ERROR "libz.a is missing: run scripts/setup.sh")
    endif()
    target_link_libraries(vxmgmt_zlib INTERFACE ${VXMGMT_ZLIB})
else()
    find_package(ZLIB REQUIRED)
    target_link_libraries(vxmgmt_zlib INTERFACE ZLIB::ZLIB)
endif()

if(VXMGMT_TESTS)
    if(EXISTS /usr/src/googletest/CMakeLists.txt)
        set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
        set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
        add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
        add_library(vxmgmt_gtest ALIAS gtest_main)
        target_compile_options(gtest PRIVATE -O0 -g1)
    else()
        find_package(GTest CONFIG REQUIRED)
        add_library(vxmgmt_gtest ALIAS GTest::gtest_main)
    endif()
endif()
