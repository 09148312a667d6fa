# One module of src/, a small target whose links are the map of the project: it sees its own headers
# and those of the modules it links, and nothing else, so that a wrong include does not compile.
#
#   tindelwax_module(name [OBJECT] SOURCES ... HEADERS ... [PRIVATE_HEADERS ...]
#                    [LINKS ...] [PRIVATE_LINKS ...])
#
# HEADERS are for whoever links the module, and LINKS are the modules whose headers those include.
# PRIVATE_HEADERS and PRIVATE_LINKS are the module's own. Headers are included by their path from
# src/: each target gets a folder with links to its headers under those paths.
function(tindelwax_module name)
    cmake_parse_arguments(
        PARSE_ARGV 1 module "OBJECT" "" "SOURCES;HEADERS;PRIVATE_HEADERS;LINKS;PRIVATE_LINKS")
    set(root ${PROJECT_BINARY_DIR}/include/${name})
    file(REMOVE_RECURSE ${root})
    tindelwax_link_headers(${root}/public ${module_HEADERS})
    tindelwax_link_headers(${root}/private ${module_PRIVATE_HEADERS})

    if(NOT module_SOURCES)
        add_library(${name} INTERFACE)
        target_include_directories(${name} INTERFACE ${root}/public)
        target_link_libraries(${name} INTERFACE ${module_LINKS})
        return()
    endif()
    set(kind STATIC)
    if(module_OBJECT)
        set(kind OBJECT)
    endif()
    add_library(${name} ${kind} ${module_SOURCES})
    target_include_directories(${name} PUBLIC ${root}/public PRIVATE ${root}/private)
    target_link_libraries(
        ${name} PUBLIC ${module_LINKS} PRIVATE ${module_PRIVATE_LINKS} tindelwax_options)
    if(TINDELWAX_SANITIZER STREQUAL realtime)
        target_compile_options(${name} PRIVATE -Wfunction-effects)
    endif()
endfunction()

function(tindelwax_link_headers root)
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
    file(MAKE_DIRECTORY ${root}/${folder})
    foreach(header ${ARGN})
        file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${header} ${root}/${folder}/${header} SYMBOLIC)
    endforeach()
endfunction()
