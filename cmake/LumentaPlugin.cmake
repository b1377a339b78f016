# Plug-ins, for this project and for those that find the installed package.
include_guard(GLOBAL)

# What plug-ins are compiled against, and where below an installation prefix the
# host looks for them. Both are this package's, whatever project asks.
set_property(GLOBAL PROPERTY LUMENTA_PLUGIN_CONTRACT "${Lumenta_VERSION_MAJOR}.${Lumenta_VERSION_MINOR}")
set_property(GLOBAL PROPERTY LUMENTA_PLUGIN_FOLDER "${LUMENTA_PLUGIN_FOLDER}")

# lumenta_add_plugin(TARGET SOURCES file... [LIBRARIES lib...] [NAME name]
#                    [TITLE title] [VERSION version] [FOLDER folder])
# A plug-in from SOURCES. One of them declares the root class, an IPlugin, with
#   Q_PLUGIN_METADATA(IID LUMENTA_PLUGIN_IID FILE "plugin.json")
# where plugin.json is written here: NAME (TARGET by default) is unique among
# the plug-ins of a host, TITLE (NAME by default) is for people, VERSION
# (PROJECT_VERSION by default) is the plug-in's own. The version of the
# contracts is added.
#
# It is built into lib/lumenta/plugins below the project's build folder and
# installed to the same place below the prefix, where the host looks for it. A
# plug-in with a FOLDER is built there and not installed.
function(lumenta_add_plugin target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "NAME;TITLE;VERSION;FOLDER" "SOURCES;LIBRARIES")
    if(arg_UNPARSED_ARGUMENTS OR NOT arg_SOURCES)
        message(FATAL_ERROR "lumenta_add_plugin(${target}): SOURCES are needed; not understood: '${arg_UNPARSED_ARGUMENTS}'")
    endif()
    if(NOT arg_NAME)
        set(arg_NAME "${target}")
    endif()
    if(NOT arg_TITLE)
        set(arg_TITLE "${arg_NAME}")
    endif()
    if(NOT arg_VERSION)
        set(arg_VERSION "${PROJECT_VERSION}")
    endif()
    if(arg_VERSION STREQUAL "")
        message(FATAL_ERROR "lumenta_add_plugin(${target}): give it a VERSION, or one to project()")
    endif()
    get_property(arg_CONTRACT GLOBAL PROPERTY LUMENTA_PLUGIN_CONTRACT)
    get_property(folder GLOBAL PROPERTY LUMENTA_PLUGIN_FOLDER)

    set(metadata "{}")
    foreach(argument NAME TITLE VERSION CONTRACT)
        string(TOLOWER "${argument}" key)
        string(REGEX REPLACE "([\"\\\\])" "\\\\\\1" value "${arg_${argument}}")
        string(JSON metadata SET "${metadata}" "${key}" "\"${value}\"")
    endforeach()
    set(generated "${CMAKE_CURRENT_BINARY_DIR}/${target}.generated")
    file(CONFIGURE OUTPUT "${generated}/plugin.json" CONTENT "@metadata@\n" @ONLY)

    add_library(${target} MODULE ${arg_SOURCES})
    set_target_properties(${target} PROPERTIES
        AUTOMOC ON
        PREFIX ""
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        # From lib/lumenta/plugins to lib.
        INSTALL_RPATH "$ORIGIN/../..")
    # Their .moc files hold the metadata.
    set_property(SOURCE ${arg_SOURCES} APPEND PROPERTY OBJECT_DEPENDS "${generated}/plugin.json")
    target_include_directories(${target} PRIVATE "${generated}")
    target_link_libraries(${target} PRIVATE Lumenta::Core Qt5::Core ${arg_LIBRARIES})
    if(TARGET lumenta-build-options)
        target_link_libraries(${target} PRIVATE lumenta-build-options)
    endif()
    if(NOT LUMENTA_SANITIZE AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
        # What is missing should be missed here, not by the host. Sanitizers
        # leave symbols open on purpose.
        target_link_options(${target} PRIVATE -Wl,-z,defs)
    endif()

    if(arg_FOLDER)
        set_target_properties(${target} PROPERTIES LIBRARY_OUTPUT_DIRECTORY "${arg_FOLDER}")
    else()
        set_target_properties(${target} PROPERTIES LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/${folder}")
        install(TARGETS ${target} LIBRARY DESTINATION "${folder}")
    endif()
endfunction()
