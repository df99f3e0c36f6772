# What every target of this tree shares: language level, warnings, hardening, output folder, and the functions that
# make libraries and tests.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# One folder for programs, DLLs and tests: a Windows program finds its DLLs beside itself.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    # Paths below the tree are cached as relative ones, so that every working copy of the tree shares the results.
    # A precompiled header is known by the .sum beside it, which is the same in each of them.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 CCACHE_PCH_EXTSUM=1
        CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
    set(CMAKE_C_COMPILER_LAUNCHER ${CMAKE_CXX_COMPILER_LAUNCHER})
endif()

add_library(pixora_options INTERFACE)
target_include_directories(pixora_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(pixora_options INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Wno-unknown-pragmas
                                                -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
# A compiler that nobody here has seen may warn of what is sound: it shall keep nobody from building.
option(PIXORA_STRICT "Warnings stop the build" OFF)
if(PIXORA_STRICT)
    target_compile_options(pixora_options INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 gives this warning for sound uses of operator+ of std::string.
    target_compile_options(pixora_options INTERFACE -Wno-restrict)
endif()
if(WIN32)
    target_compile_definitions(pixora_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
                                                        _WIN32_WINNT=0x0A00 NTDDI_VERSION=0x0A000006)
    target_compile_options(pixora_options INTERFACE -fstack-protector-strong
        $<$<NOT:$<BOOL:$<TARGET_PROPERTY:PIXORA_TEST>>>:-g1$<SEMICOLON>-gdwarf-4>)
    target_compile_definitions(pixora_options INTERFACE $<$<CONFIG:Release>:_FORTIFY_SOURCE=2>
                                                        $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
    target_link_options(pixora_options INTERFACE -Wl,--dynamicbase,--high-entropy-va,--nxcompat)
    # Windows 10 is the oldest that the program runs on. The same sources give the same bytes, so no time of the build
    # goes in; the build id ties a module to its symbols instead.
    target_link_options(pixora_options INTERFACE
        -Wl,--major-os-version,10,--minor-os-version,0,--major-subsystem-version,10,--minor-subsystem-version,0
        -Wl,--no-insert-timestamp,--build-id)
    # After every object that refers to it, hence a library and not an option.
    target_link_libraries(pixora_options INTERFACE ssp)
elseif(PIXORA_SANITIZE)
    target_compile_options(pixora_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                                    -fno-omit-frame-pointer -D_GLIBCXX_ASSERTIONS)
    target_link_options(pixora_options INTERFACE -fsanitize=address,undefined)
endif()

# pixora_core(name files...): pure logic, no Windows header; built for every system, linked into its layer's library.
function(pixora_core name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PUBLIC pixora_options)
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()

# pixora_dll(name export-macro files...): a shipped DLL; the macro is defined while the DLL itself is compiled.
function(pixora_dll name macro)
    add_library(${name} SHARED ${ARGN})
    target_link_libraries(${name} PUBLIC pixora_options)
    target_compile_definitions(${name} PRIVATE ${macro}=1)
    set_target_properties(${name} PROPERTIES PREFIX "" OUTPUT_NAME ${name})
    pixora_shipped(${name})
endfunction()

# pixora_static(name files...): a Windows layer that is linked into the program and its tests.
function(pixora_static name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PUBLIC pixora_options)
endfunction()

# pixora_test_options(target): tests are compiled far more often than they compute anything, and mostly the headers of
# GoogleTest, Windows and the standard library: those are compiled once for all of them.
function(pixora_test_options name)
    set_target_properties(${name} PROPERTIES PIXORA_TEST ON)
    if(WIN32)
        target_compile_options(${name} PRIVATE -O1)
        if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 15)
            # GCC 12 and 14 give these warnings for short wide strings of the precompiled header's std::wstring.
            target_compile_options(${name} PRIVATE -Wno-array-bounds -Wno-stringop-overread -Wno-stringop-overflow)
        endif()
    endif()
    if(NOT ${name} STREQUAL pixora_test_headers)
        target_precompile_headers(${name} REUSE_FROM pixora_test_headers)
    endif()
endfunction()

# pixora_windows_test(name SOURCES files... LIBS targets...): a GoogleTest program that ctest runs under Wine, on a
# desktop of its own: mouse, keyboard, registry, pipes and folders are shared with no other test. COST: the seconds it
# takes on a small machine, when they are many; the longest tests begin first when tests run side by side.
function(pixora_windows_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT;COST" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE pixora_options ${ARG_LIBS} pixora_gtest_main)
    pixora_test_options(${name})
    add_test(NAME ${name} COMMAND ${name})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
    if(ARG_COST)
        set_tests_properties(${name} PROPERTIES COST ${ARG_COST})
    endif()
endfunction()

# pixora_unit_test(name SOURCES files... LIBS targets...): a native GoogleTest program over pure logic.
function(pixora_unit_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE pixora_options ${ARG_LIBS} pixora_gtest_main)
    pixora_test_options(${name})
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 120)
endfunction()
