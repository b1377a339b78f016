# Whether includes run downwards only: each line of our own files is looked at,
# whether this build compiles it or not.
cmake_minimum_required(VERSION 3.25)

# Of lumenta/, from the ground up. A folder includes itself and what lies on lower
# lines, never a neighbour.
set(floors
    "foundation"
    "interfaces  kernels"
    "platform"
    "files  render  skin"
    "materials  scene  serializers"
    "properties  script")

# What runs upwards all the same. Sources only: a header would pass it on.
set(exceptions
    "foundation/CameraMatrices.cpp  interfaces/IFreeCamera.h" # asks a camera for its values
    "foundation/Matrix.cpp          kernels/Kernels.h"        # multiplies with the processor's level
    "kernels/PoseNodes.cpp          skin/Animation.h"         # these three are records of
    "kernels/PoseNodes.cpp          skin/Node.h"              # numbers, which loops read
    "kernels/PoseVertices.cpp       skin/SkinVertex.h")       # and write

# skin can be read alone: of what lies below it, it takes no more than this.
set(skin_needs "lumenta/(Export.h|(foundation|kernels|skin)/.*|platform/IMeshNodeBuilder.h)")

# Who sees whom.
set(sees_lumenta    "lumenta")
set(sees_reference  "lumenta reference")
set(sees_docs       "lumenta reference docs")
set(sees_benchmarks "lumenta reference benchmarks")
set(sees_tests      "lumenta reference benchmarks tests docs")
set(sees_fuzz       "lumenta reference benchmarks fuzz")
set(sees_matrix     "lumenta benchmarks matrix")

# From outside, the library is its public headers. These look inside, to force a
# processor's level.
set(looks_inside "(tests/kernels|benchmarks|fuzz)/.*")
set(inside "lumenta/(kernels/.*|scene/TraceTriangles.h|skin/SkinKernels.h)")

# Who may use what others made.
set(uses_assimp    "(reference/plugins/assimp-(exporter|loader)|tests/(plugins|scene))/.*")
set(uses_benchmark "benchmarks/.*")
set(uses_Eigen     "benchmarks/.*")
set(uses_embree3   "(reference/plugins/embree-renderer|benchmarks|tests/scene)/.*")
set(uses_glm       "benchmarks/.*")
set(uses_QtWidgets "(reference|tests)/desk/.*")
set(uses_QtXml     "lumenta/materials/MaterialXml.cpp|tests/materials/.*")
set(uses_QtScript  "lumenta/script/.*.cpp|reference/host/script/.*|(tests|docs|fuzz|matrix)/.*")

# Includes that the build makes, or tables of text in the folder that reads them.
set(made ".*\\.moc|AllContracts\\.h")

set(found "")
macro(complain text)
    string(APPEND found "${where}: ${text}\n")
endmacro()

# floor_of(FOLDER RESULT): its line in the table.
function(floor_of folder result)
    set(number 0)
    foreach(line IN LISTS floors)
        if(" ${line} " MATCHES " ${folder} ")
            set(${result} ${number} PARENT_SCOPE)
            return()
        endif()
        math(EXPR number "${number} + 1")
    endforeach()
    message(FATAL_ERROR "lumenta/${folder} lies on no floor")
endfunction()

macro(look_at_floors)
    string(REGEX REPLACE "^lumenta/([a-z]+)/.*" "\\1" from "${file}")
    string(REGEX REPLACE "^lumenta/([a-z]+)/.*" "\\1" to "${name}")
    if(NOT name STREQUAL "lumenta/Export.h" AND NOT from STREQUAL to)
        floor_of(${from} from_floor)
        floor_of(${to} to_floor)
        if(NOT to_floor LESS from_floor)
            string(REGEX REPLACE "([^ ]+) ([^ ]+)" "\\1 +\\2" wanted "${file} ${name}")
            string(REPLACE "lumenta/" "" wanted "${wanted}")
            set(excepted ${exceptions})
            list(FILTER excepted INCLUDE REGEX "^${wanted}$")
            if(excepted)
                list(REMOVE_ITEM unused ${excepted})
            else()
                complain("${from} includes ${name}, which is no lower floor")
            endif()
        endif()
    endif()
    if(from STREQUAL "skin" AND NOT name MATCHES "^${skin_needs}$")
        complain("skin needs no ${name}")
    endif()
    if(file IN_LIST public AND NOT name IN_LIST public)
        complain("a public header includes ${name}, which is none")
    endif()
endmacro()

macro(look_at_own_include)
    string(REGEX REPLACE "/.*" "" room "${name}")
    if(NOT EXISTS "${ROOT}/${name}" AND NOT name STREQUAL "lumenta/Export.h")
        if(NOT name MATCHES "^(${made})$" AND NOT (name MATCHES "\\.txt$" AND EXISTS "${ROOT}/${folder}/${name}")
            AND NOT top STREQUAL "docs") # examples are projects of their own
            complain("${name} is not written from the repository's root")
        endif()
    elseif(NOT " ${sees_${top}} " MATCHES " ${room} ")
        complain("${top} must not know ${name}")
    elseif(top STREQUAL "lumenta")
        look_at_floors()
    elseif(room STREQUAL "lumenta" AND NOT name IN_LIST public
        AND NOT (file MATCHES "^${looks_inside}$" AND name MATCHES "^${inside}$"))
        complain("${name} is no public header")
    endif()
endmacro()

macro(look_at_foreign_include)
    set(maker "")
    if(name MATCHES "^(.+)/")
        set(maker ${CMAKE_MATCH_1})
    elseif(name MATCHES "^Qt?[A-Z]")
        foreach(module QtWidgets QtXml QtScript)
            if(EXISTS "${QT}/${module}/${name}")
                set(maker ${module})
            endif()
        endforeach()
    endif()
    if(maker AND DEFINED uses_${maker} AND NOT file MATCHES "^(${uses_${maker}})$")
        complain("${maker} is not for this file")
    elseif(top STREQUAL "lumenta" AND name MATCHES "/")
        complain("the library needs Qt and the language alone")
    endif()
endmacro()

list(TRANSFORM PUBLIC_HEADERS PREPEND "lumenta/" OUTPUT_VARIABLE public)
list(APPEND public lumenta/Export.h)
set(unused ${exceptions})
set(count 0)
foreach(top lumenta reference docs benchmarks tests fuzz matrix)
    file(GLOB_RECURSE files RELATIVE "${ROOT}" "${ROOT}/${top}/*.h" "${ROOT}/${top}/*.cpp")
    foreach(file IN LISTS files)
        math(EXPR count "${count} + 1")
        get_filename_component(folder "${file}" DIRECTORY)
        string(REGEX REPLACE "\\.cpp$" ".h" own_header "${file}")
        set(is_first TRUE)
        file(STRINGS "${ROOT}/${file}" includes REGEX "^ *# *include")
        foreach(include IN LISTS includes)
            set(where "${file}: ${include}")
            if(include MATCHES "include +\"([^\"]+)\"")
                set(name "${CMAKE_MATCH_1}")
                look_at_own_include()
            elseif(include MATCHES "include +<([^>]+)>")
                set(name "${CMAKE_MATCH_1}")
                look_at_foreign_include()
            else()
                complain("this is no include of ours")
            endif()
            # So each header is compiled with nothing before it.
            if(is_first AND NOT own_header STREQUAL file AND EXISTS "${ROOT}/${own_header}"
                AND NOT own_header MATCHES "(^|/)${name}$")
                complain("${own_header} comes first")
            endif()
            set(is_first FALSE)
        endforeach()
    endforeach()
endforeach()
foreach(exception IN LISTS unused)
    string(APPEND found "tests/floors/floors.cmake: nobody needs the exception ${exception}\n")
endforeach()

if(count LESS 100)
    message(FATAL_ERROR "${ROOT} has ${count} files only")
elseif(found)
    message(FATAL_ERROR "${found}")
endif()
