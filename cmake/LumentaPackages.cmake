# Debian packages, by cpack: the library, what is needed to compile against it, the
# reference host, and the site of documentation where it was made. Configured with
# the prefix /usr and without run paths; `./run package` does it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumenta)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_CONTACT "Lumenta maintainers <lumenta@lists.invalid>")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(library liblumenta-core${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(CPACK_COMPONENTS_ALL "")

# lumenta_add_package(COMPONENT NAME SECTION TITLE DESCRIPTION [DEPENDS dependency...] [ALL])
# With ALL it holds nothing that is of one architecture.
function(lumenta_add_package component name section title description)
    cmake_parse_arguments(PARSE_ARGV 5 arg "ALL" "" "DEPENDS")
    string(TOUPPER "${component}" key)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    list(JOIN arg_DEPENDS ", " depends)
    set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
    set(CPACK_COMPONENT_${key}_DESCRIPTION "${title}\n${description}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
    if(arg_ALL)
        set(CPACK_DEBIAN_${key}_PACKAGE_ARCHITECTURE all PARENT_SCOPE)
    endif()
    set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} PARENT_SCOPE)

    # Each package tells who made it and what changed, in files that Debian's policy names.
    set(notes "${PROJECT_BINARY_DIR}/generated/debian/${component}")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in" "${notes}/changelog" @ONLY)
    execute_process(COMMAND gzip --best --no-name --force --keep "${notes}/changelog" COMMAND_ERROR_IS_FATAL ANY)
    install(FILES "${PROJECT_SOURCE_DIR}/cmake/debian/copyright" "${notes}/changelog.gz"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${name}" COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

# The time of the last change, where the caller knows it (SOURCE_DATE_EPOCH).
set(ENV{LC_ALL} C)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)

lumenta_add_package(runtime ${library} libs
    "vocabulary of a 3D mock-up application and its plug-ins"
    "One library that both sides link, where they agree on values, errors, meshes\nand motion: matrices and boxes, posed and skinned models, a tree of nodes,\nmaterials, and the contracts between host and plug-ins.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    "${PROJECT_SOURCE_DIR}/cmake/debian/triggers" "${PROJECT_BINARY_DIR}/generated/debian/runtime/shlibs")
# Any patch version serves programs of this minor one.
file(WRITE "${PROJECT_BINARY_DIR}/generated/debian/runtime/shlibs"
    "liblumenta-core ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR} ${library}\n")

lumenta_add_package(dev liblumenta-core-dev libdevel
    "vocabulary of a 3D mock-up application (for compiling)"
    "Headers, the CMake package Lumenta, lumenta-core.pc, and printers with which\ngdb shows vectors, boxes, colours and matrices."
    DEPENDS "${library} (= ${PROJECT_VERSION})" "qtbase5-dev (>= 5.15)")
install(FILES "${PROJECT_SOURCE_DIR}/cmake/debian/liblumenta-core-dev.lintian-overrides"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/lintian/overrides" RENAME liblumenta-core-dev
    COMPONENT dev EXCLUDE_FROM_ALL)

if(LUMENTA_BUILD_REFERENCE)
    lumenta_add_package(tools lumenta-tools graphics
        "reference host of Lumenta: a command and a window"
        "The command lumenta tells what a model holds, draws it, picks in it, converts\nit and runs scripts on it. The window lumenta-desk shows and edits documents.\nTheir plug-ins read, write and draw models, scenes and images."
        DEPENDS "${library} (= ${PROJECT_VERSION})")
    set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
    # Without it textures in TGA, TIFF and WebP can't be read, and no font draws captions.
    set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "qt5-image-formats-plugins, fonts-dejavu-core")
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/lib")
endif()

set(LUMENTA_DOCS "" CACHE PATH "Folder of the site that ./run docs made, to be packaged")
if(LUMENTA_DOCS)
    lumenta_add_package(doc lumenta-doc doc
        "vocabulary of a 3D mock-up application (documentation)"
        "Guides, a page for each subsystem, and the reference of all public headers."
        ALL)
    install(DIRECTORY "${LUMENTA_DOCS}/" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/lumenta-doc/html"
        COMPONENT doc EXCLUDE_FROM_ALL)
endif()

include(CPack)
