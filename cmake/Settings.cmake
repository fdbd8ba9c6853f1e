# Settings of our own targets; nothing here reaches the targets of whoever embeds the project.
function(project_adaptors_settings target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
        # Stored doubles are the same to the last bit on every machine: no fused multiply-add.
        -ffp-contract=off)
    # __FILE__ in a log line is the path below the project, not that of the building machine, also where a compiler
    # cache passes paths from the build folder on. The macro alone: counters of coverage need the real paths.
    cmake_path(RELATIVE_PATH PROJECT_SOURCE_DIR BASE_DIRECTORY "${CMAKE_BINARY_DIR}" OUTPUT_VARIABLE upwards)
    target_compile_options(${target} PRIVATE
        "-fmacro-prefix-map=${upwards}/=" "-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")
endfunction()

# A target's sources are the files of its folder: adding a step needs no change here.
function(project_adaptors_library target)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS
        "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
    add_library(${target} STATIC ${sources})
    target_include_directories(${target} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
    project_adaptors_settings(${target})
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
