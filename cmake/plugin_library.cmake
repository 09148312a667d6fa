# A library that hosts load, of the modules that are named: it exports what exports.map beside it says
# (on Windows exports.def) and nothing else, and brings its C++ runtime along.
#
#   tindelwax_plugin_library(name module...)
function(tindelwax_plugin_library name)
    set(common ${PROJECT_SOURCE_DIR}/src/platform/plugin_library)
    add_library(${name} MODULE ${common}/unload.cpp)
    set_target_properties(${name} PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${TINDELWAX_DIST})
    target_link_libraries(${name} PRIVATE ${ARGN} tindelwax_options)
    if(WIN32)
        target_sources(
            ${name} PRIVATE exports.def ${common}/module_handle_windows.cpp
                            ${common}/pthread_once_windows.cpp)
        target_link_libraries(${name} PRIVATE module_handle)
        target_link_options(
            ${name}
            PRIVATE
            -static
            LINKER:--wrap=pthread_once
            LINKER:--no-insert-timestamp
            ${TINDELWAX_STRIP})
        return()
    endif()
    set(exports ${CMAKE_CURRENT_SOURCE_DIR}/exports.map)
    set_target_properties(${name} PROPERTIES LINK_DEPENDS ${exports})
    target_link_options(
        ${name}
        PRIVATE
        -static-libstdc++
        -static-libgcc
        LINKER:--version-script=${exports}
        ${TINDELWAX_STRIP}
        LINKER:--gc-sections
        # A sanitizer's functions may be the program's.
        $<$<NOT:$<STREQUAL:${TINDELWAX_SANITIZER},realtime>>:LINKER:-z,defs>
        LINKER:--as-needed)
endfunction()
