# find_package(vxmgmt): the target vxmgmt::vxmgmt.
include(${CMAKE_CURRENT_LIST_DIR}/vxmgmtTargets.cmake)
get_filename_component(vxmgmt_lib ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
if(MSVC AND EXISTS ${vxmgmt_lib}/vxmgmt.lib)
    get_target_property(vxmgmt_configurations vxmgmt::vxmgmt IMPORTED_CONFIGURATIONS)
    foreach(vxmgmt_configuration ${vxmgmt_configurations})
        set_target_properties(vxmgmt::vxmgmt PROPERTIES
                              IMPORTED_IMPLIB_${vxmgmt_configuration} ${vxmgmt_lib}/vxmgmt.lib)
    endforeach()
endif()
