# DLLs of the system that the program does not need to open its window, or that not every system has.

# pixora_delayed(name functions...): makes the target name_delayed; what links it loads name.dll when one of these
# functions is called for the first time, and not when the program starts.
function(pixora_delayed name)
    set(base ${CMAKE_BINARY_DIR}/delayed/${name})
    list(JOIN ARGN "\n" functions)
    file(CONFIGURE OUTPUT ${base}.def CONTENT "LIBRARY ${name}.dll\nEXPORTS\n${functions}\n")
    execute_process(COMMAND ${CMAKE_DLLTOOL} -d ${base}.def -y ${base}.a COMMAND_ERROR_IS_FATAL ANY)
    add_library(${name}_delayed STATIC IMPORTED GLOBAL)
    set_target_properties(${name}_delayed PROPERTIES IMPORTED_LOCATION ${base}.a INTERFACE_LINK_LIBRARIES delayimp)
endfunction()

pixora_delayed(comdlg32 CommDlgExtendedError GetOpenFileNameW)
pixora_delayed(d3d9 Direct3DCreate9)
pixora_delayed(mf MFCreateDeviceSource MFEnumDeviceSources)
pixora_delayed(mfplat MFCopyImage MFCreateAttributes MFCreateMediaType MFGetStrideForBitmapInfoHeader MFShutdown
               MFStartup)
pixora_delayed(mfreadwrite MFCreateSourceReaderFromMediaSource MFCreateSourceReaderFromURL)
pixora_delayed(oleacc AccessibleObjectFromWindow LresultFromObject)
