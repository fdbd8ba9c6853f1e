# What lets other projects find the installed libraries: find_package(ProjectAdaptors) and pkg-config.
include(CMakePackageConfigHelpers)

set(packageFolder "${CMAKE_INSTALL_LIBDIR}/cmake/ProjectAdaptors")
install(EXPORT ProjectAdaptors
    NAMESPACE ProjectAdaptors:: FILE ProjectAdaptorsTargets.cmake
    DESTINATION "${packageFolder}" COMPONENT development)
configure_package_config_file(cmake/ProjectAdaptorsConfig.cmake.in "${PROJECT_BINARY_DIR}/ProjectAdaptorsConfig.cmake"
    INSTALL_DESTINATION "${packageFolder}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ProjectAdaptorsConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/ProjectAdaptorsConfig.cmake" "${PROJECT_BINARY_DIR}/ProjectAdaptorsConfigVersion.cmake"
    DESTINATION "${packageFolder}" COMPONENT development)

# Paths in the pkg-config files are relative to them, so that the installed folder can be moved.
set(pkgConfigFolder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
foreach(folder LIBDIR INCLUDEDIR)
    cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_${folder} BASE_DIRECTORY "/prefix" OUTPUT_VARIABLE absolute)
    cmake_path(ABSOLUTE_PATH pkgConfigFolder BASE_DIRECTORY "/prefix" OUTPUT_VARIABLE base)
    cmake_path(RELATIVE_PATH absolute BASE_DIRECTORY "${base}" OUTPUT_VARIABLE pc_${folder})
endforeach()
function(project_adaptors_pkg_config name description requires requiresPrivate)
    set(file "${PROJECT_BINARY_DIR}/${name}.pc")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/library.pc.in" "${file}" @ONLY)
    install(FILES "${file}" DESTINATION "${pkgConfigFolder}" COMPONENT development)
endfunction()
project_adaptors_pkg_config(project-adaptors-platform
    "Services that the project adaptors use" "Qt5Core >= 5.15 nlohmann_json >= 3.10.5" "")
project_adaptors_pkg_config(project-adaptors
    "Steps that migrate a video editor's projects"
    "project-adaptors-platform = ${PROJECT_VERSION} Qt5Xml Qt5Gui" "Qt5Svg libglog")
project_adaptors_pkg_config(project-adaptors-reader
    "Migration of a video editor's projects" "project-adaptors = ${PROJECT_VERSION}" "libglog")
