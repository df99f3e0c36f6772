# pixora_install_runtime_dlls(COMPONENT name TARGETS targets...): installs every DLL that the targets import, directly
# or through another, and that Windows does not bring: found in the modules' import tables, so that no list can age.
# What the compiler has an import library of its own for is a part of Windows; anything else that is not found beside
# the program stops the installation.
function(pixora_install_runtime_dlls)
    cmake_parse_arguments(ARG "" "COMPONENT" "TARGETS" ${ARGN})
    set(modules)
    foreach(target IN LISTS ARG_TARGETS)
        list(APPEND modules $<TARGET_FILE:${target}>)
    endforeach()
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libkernel32.a OUTPUT_VARIABLE system
                    OUTPUT_STRIP_TRAILING_WHITESPACE)
    get_filename_component(system ${system} DIRECTORY)
    install(CODE "
        set(pixora_modules \"${modules}\")
        set(pixora_objdump \"${CMAKE_OBJDUMP}\")
        set(pixora_beside \"${CMAKE_RUNTIME_OUTPUT_DIRECTORY}\")
        set(pixora_system_libraries \"${system};${CMAKE_BINARY_DIR}/lib\")"
        COMPONENT ${ARG_COMPONENT})
    install(SCRIPT ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/InstallRuntimeDlls.cmake COMPONENT ${ARG_COMPONENT})
endfunction()
