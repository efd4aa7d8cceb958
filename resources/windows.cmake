# The resources are written by a program of the machine that builds, before the module that they go into is linked.
include(ExternalProject)
set(writer_folder ${CMAKE_CURRENT_BINARY_DIR}/writer)
ExternalProject_Add(resource_writer
    SOURCE_DIR ${PROJECT_SOURCE_DIR}
    BINARY_DIR ${writer_folder}
    CMAKE_ARGS -DCMAKE_BUILD_TYPE=Release -DHYMEDIAN_HOST=OFF -DBUILD_TESTING=OFF -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON
    BUILD_COMMAND ${CMAKE_COMMAND} --build . --target write-resources
    BUILD_ALWAYS ON
    BUILD_BYPRODUCTS ${writer_folder}/write-resources
    INSTALL_COMMAND "")

set(mac_resources ${CMAKE_CURRENT_BINARY_DIR}/HybridMedian.rsrc)
set(property_list ${CMAKE_CURRENT_BINARY_DIR}/HybridMedian.pipl)
add_custom_command(
    OUTPUT ${mac_resources} ${property_list}
    COMMAND ${writer_folder}/write-resources ${mac_resources} ${property_list}
    DEPENDS resource_writer ${writer_folder}/write-resources
    VERBATIM)
add_custom_target(resources DEPENDS ${mac_resources} ${property_list})

enable_language(RC)
configure_file(module.rc.in ${CMAKE_CURRENT_BINARY_DIR}/module.rc @ONLY)

# The plug-in's resources, its property list and its version, for whatever links this.
add_library(module_resources OBJECT ${CMAKE_CURRENT_BINARY_DIR}/module.rc)
set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/module.rc PROPERTIES
    OBJECT_DEPENDS "${mac_resources};${property_list};${CMAKE_CURRENT_SOURCE_DIR}/module.manifest")
add_dependencies(module_resources resources)
