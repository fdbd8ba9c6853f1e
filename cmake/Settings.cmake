# Settings of our own targets; nothing here reaches the targets of whoever embeds the project.
function(project_adaptors_settings target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${PROJECT_ADAPTORS_WARNINGS_AS_ERRORS}>:-Werror>
        # Stored doubles are the same to the last bit on every machine: no fused multiply-add.
        -ffp-contract=off)
    # __FILE__ in a log line is the path below the project, not that of the building machine, also where a compiler
    # cache passes paths from the build folder on. The macro alone: counters of coverage need the real paths.
    cmake_path(RELATIVE_PATH PROJECT_SOURCE_DIR BASE_DIRECTORY "${CMAKE_BINARY_DIR}" OUTPUT_VARIABLE upwards)
    target_compile_options(${target} PRIVATE
        "-fmacro-prefix-map=${upwards}/=" "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")
endfunction()

# Adds the library of this folder. Its sources are the files of the folder: adding a step needs no change here.
#
#   project_adaptors_library(TARGET NAME NAME [PRIVATE_HEADERS HEADER...])
#
# NAME is that of the file and of its pkg-config file. Headers are installed, but not those in folders Internal/ and
# those in PRIVATE_HEADERS. A shared library shows the symbols that the file symbols.map of the folder lists.
function(project_adaptors_library target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAME" "PRIVATE_HEADERS")
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS
        "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
    add_library(${target} ${sources})
    project_adaptors_settings(${target})
    string(REPLACE "ProjectAdaptors" "" short ${target})
    add_library(ProjectAdaptors::${short} ALIAS ${target})
    target_include_directories(${target} PUBLIC
        "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}>"
        "$<INSTALL_INTERFACE:${PROJECT_ADAPTORS_INSTALL_HEADERS}>")
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${short} OUTPUT_NAME ${arg_NAME} DEFINE_SYMBOL ""
        VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
        INSTALL_RPATH "$ORIGIN") # shared libraries find each other in any folder
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "SHARED_LIBRARY")
        set(symbols "${CMAKE_CURRENT_SOURCE_DIR}/symbols.map")
        target_link_options(${target} PRIVATE "LINKER:--version-script=${symbols}")
        set_target_properties(${target} PROPERTIES LINK_DEPENDS "${symbols}")
    endif()
    if(PROJECT_ADAPTORS_INSTALL)
        install(TARGETS ${target} EXPORT ProjectAdaptors
            LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT libraries NAMELINK_COMPONENT development
            ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
        set(excluded PATTERN "Internal" EXCLUDE)
        foreach(header ${arg_PRIVATE_HEADERS})
            list(APPEND excluded PATTERN "${header}" EXCLUDE)
        endforeach()
        install(DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}/"
            DESTINATION "${PROJECT_ADAPTORS_INSTALL_HEADERS}" COMPONENT development
            FILES_MATCHING PATTERN "*.h" ${excluded})
    endif()
endfunction()

# Documents are masses of small nodes, and after tens of thousands of them were freed the C library's allocator
# stops to sort what it has. A program links this one instead where it is there and no sanitizer brings its own.
find_library(PROJECT_ADAPTORS_JEMALLOC jemalloc)
set(PROJECT_ADAPTORS_CMAKE_FOLDER "${CMAKE_CURRENT_LIST_DIR}")
function(project_adaptors_allocator target)
    if(PROJECT_ADAPTORS_JEMALLOC AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
        target_sources(${target} PRIVATE "${PROJECT_ADAPTORS_CMAKE_FOLDER}/jemalloc.cpp")
        target_link_libraries(${target} PRIVATE
            -Wl,--push-state,--no-as-needed "${PROJECT_ADAPTORS_JEMALLOC}" -Wl,--pop-state)
    endif()
endfunction()
