# SPDX-License-Identifier: GPL-3.0-or-later
#
# Every folder is one target. A target's headers are reached through an include folder of its own that holds
# nothing but a link to the folder, so that only what a target links can be included.

function(ek_include_folder target folder prefix)
    set(root ${CMAKE_BINARY_DIR}/include/${target})
    get_filename_component(parent ${root}/${prefix} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${folder} ${root}/${prefix} SYMBOLIC)
    set(EK_INCLUDE_ROOT ${root} PARENT_SCOPE)
endfunction()

# ek_headers(target folder prefix): headers only.
function(ek_headers target folder prefix)
    ek_include_folder(${target} ${folder} ${prefix})
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${EK_INCLUDE_ROOT})
endfunction()

# ek_library(target folder prefix LINK ... PRIVATE_LINK ...): the .cpp files of one folder. An empty prefix is for
# a ui folder, whose headers are reached through its parent's.
function(ek_library target folder prefix)
    cmake_parse_arguments(ARG "" "" "LINK;PRIVATE_LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.cpp)
    if(NOT sources)
        file(WRITE ${CMAKE_BINARY_DIR}/empty_${target}.cpp "")
        set(sources ${CMAKE_BINARY_DIR}/empty_${target}.cpp)
    endif()
    add_library(${target} STATIC ${sources})
    if(prefix)
        ek_include_folder(${target} ${folder} ${prefix})
        target_include_directories(${target} PUBLIC ${EK_INCLUDE_ROOT})
    endif()
    target_link_libraries(${target} PUBLIC ${ARG_LINK} PRIVATE ${ARG_PRIVATE_LINK})
endfunction()

# One precompiled Qt header for all targets that draw.
file(WRITE ${CMAKE_BINARY_DIR}/ek_qt_pch.cpp "")
add_library(ek_qt_pch STATIC ${CMAKE_BINARY_DIR}/ek_qt_pch.cpp)
target_link_libraries(ek_qt_pch PUBLIC Qt6::Widgets Qt6::Svg)
target_precompile_headers(ek_qt_pch PRIVATE <QtWidgets> <QSvgRenderer> <memory> <string> <vector> <functional>)

function(ek_use_qt target)
    target_link_libraries(${target} PUBLIC Qt6::Widgets Qt6::Svg)
    target_precompile_headers(${target} REUSE_FROM ek_qt_pch)
    set_target_properties(${target} PROPERTIES AUTOMOC ON AUTORCC ON)
endfunction()

# ek_qt_library: as ek_library, for a folder that draws. Resource files (.qrc) of the folder are compiled in.
function(ek_qt_library target folder prefix)
    ek_library(${target} ${folder} "${prefix}" ${ARGN})
    ek_use_qt(${target})
    file(GLOB resources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${folder}/*.qrc)
    target_sources(${target} PRIVATE ${resources})
endfunction()

# The module: nothing but the thirteen functions leaves it.
function(ek_module target)
    cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/editor/app/exports/*.cpp)
    file(GLOB resources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/editor/resources/*.qrc)
    add_library(${target} MODULE ${sources} ${resources})
    ek_use_qt(${target})
    set(script ${CMAKE_SOURCE_DIR}/editor/app/exports/exports.map)
    target_compile_definitions(${target} PRIVATE EK_BUILDING_MODULE)
    target_link_libraries(${target} PRIVATE ${ARG_LINK})
    target_link_options(${target} PRIVATE -Wl,--version-script=${script})
    if(NOT EK_SANITIZE)
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
    set_target_properties(${target} PROPERTIES LINK_DEPENDS ${script})
endfunction()
