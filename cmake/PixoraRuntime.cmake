# What the shipped modules need beside the code: the compiler's runtime DLLs next to the program, and separate
# symbol files.

# The C++ objects that cross DLL borders need one shared runtime, so the runtime DLLs are shipped with the program.
foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll libssp-0.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll} OUTPUT_VARIABLE path
                    OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT EXISTS ${path})
        find_file(path_${dll} ${dll} PATHS /usr/x86_64-w64-mingw32/lib NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
        set(path ${path_${dll}})
    endif()
    set(copy ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${dll})
    add_custom_command(OUTPUT ${copy} COMMAND ${CMAKE_STRIP} -p -o ${copy} ${path} DEPENDS ${path} VERBATIM)
    list(APPEND PIXORA_RUNTIME_DLLS ${copy})
endforeach()
add_custom_target(pixora_runtime ALL DEPENDS ${PIXORA_RUNTIME_DLLS})

# pixora_stripped(target): its symbols go to symbols/<file>.debug. -p keeps the linker's time stamp, where the tools
# would write that of now.
function(pixora_stripped target)
    set(symbols ${CMAKE_BINARY_DIR}/symbols/$<TARGET_FILE_NAME:${target}>.debug)
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/symbols
        COMMAND ${CMAKE_OBJCOPY} -p --only-keep-debug $<TARGET_FILE:${target}> ${symbols}
        COMMAND ${CMAKE_STRIP} -p --strip-debug --strip-unneeded $<TARGET_FILE:${target}>
        COMMAND ${CMAKE_OBJCOPY} -p --add-gnu-debuglink=${symbols} $<TARGET_FILE:${target}>
        VERBATIM)
endfunction()

# pixora_shipped(target): the module is part of the installation.
function(pixora_shipped target)
    pixora_stripped(${target})
    add_dependencies(${target} pixora_runtime)
    set_property(GLOBAL APPEND PROPERTY PIXORA_SHIPPED_TARGETS ${target})
endfunction()
