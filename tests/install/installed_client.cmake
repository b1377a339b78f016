cmake_minimum_required(VERSION 3.25)

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE code OUTPUT_VARIABLE said ERROR_VARIABLE complained)
    if(NOT code EQUAL 0)
        message(FATAL_ERROR "${ARGN} ended with ${code}:\n${said}\n${complained}")
    endif()
    set(output "${said}" PARENT_SCOPE)
endfunction()

# print(PROGRAM): writes what the client prints to PROGRAM.txt. All clients print the same.
function(print program)
    execute_process(COMMAND "${WORK_DIR}/${program}" RESULT_VARIABLE code
        OUTPUT_FILE "${WORK_DIR}/${program}.txt" ERROR_VARIABLE complained)
    file(STRINGS "${WORK_DIR}/${program}.txt" printed)
    list(LENGTH printed lines)
    if(NOT code EQUAL 0 OR NOT complained STREQUAL "" OR lines LESS 100)
        message(FATAL_ERROR "${program} printed ${lines} lines and ended with ${code}: ${complained}")
    endif()
    file(STRINGS "${WORK_DIR}/plain/client.txt" expected)
    foreach(found wanted IN ZIP_LISTS printed expected)
        if(NOT found STREQUAL wanted)
            message(FATAL_ERROR "${program} computes other bits:\n${found}\ninstead of\n${wanted}")
        endif()
    endforeach()
endfunction()

# build_client(SOURCE NAME PREFIX FLAGS TARGET): through find_package.
function(build_client source name prefix flags target)
    run("${CMAKE_COMMAND}" -S "${source}" -B "${WORK_DIR}/${name}" -G "${GENERATOR}"
        "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_FLAGS=${sanitizer_flag} ${flags}"
        "-DCMAKE_PREFIX_PATH=${prefix}")
    run("${CMAKE_COMMAND}" --build "${WORK_DIR}/${name}" --target ${target} --parallel 2)
endfunction()

set(sanitizer_flag "")
if(SANITIZE)
    # The library brings the sanitizers' runtime, which must be the program's first.
    set(sanitizer_flag "-fsanitize=${SANITIZE}")
endif()

file(REMOVE_RECURSE "${WORK_DIR}")
run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/first place")
build_client("${CLIENT_DIR}" plain "${WORK_DIR}/first place" "" all)
print(plain/client)

# Once moved, nothing may lead back to where it was.
file(RENAME "${WORK_DIR}/first place" "${WORK_DIR}/moved")
set(tuned "-O3")
file(STRINGS /proc/cpuinfo features REGEX "^flags.* avx2 .*")
if(features MATCHES " fma ")
    set(tuned "-O3 -march=x86-64-v3")
else()
    message(STATUS "This processor has no AVX2 and FMA: the tuned client is built without.")
endif()
build_client("${CLIENT_DIR}" tuned "${WORK_DIR}/moved" "${tuned}" client)
print(tuned/client)

set(ENV{PKG_CONFIG_PATH} "${WORK_DIR}/moved/${LIBDIR}/pkgconfig:$ENV{PKG_CONFIG_PATH}")
run(pkg-config --cflags --libs "lumenta-core >= 0.1")
separate_arguments(flags UNIX_COMMAND "${output}")
run("${COMPILER}" -std=c++17 ${sanitizer_flag} "${CLIENT_DIR}/main.cpp" -o "${WORK_DIR}/by-pkg-config" ${flags}
    "-Wl,-rpath,${WORK_DIR}/moved/${LIBDIR}")
print(by-pkg-config)

# Each verb has its page for man.
if(REFERENCE)
    run("${WORK_DIR}/moved/bin/lumenta" help)
    string(REGEX REPLACE "^.*The verbs are:" "" verbs "${output}")
    string(REGEX MATCHALL "\n    [a-z]+ - " verbs "${verbs}")
    list(TRANSFORM verbs REPLACE "\n    ([a-z]+) - " "-\\1")
    foreach(verb IN ITEMS "" LISTS verbs)
        run(gzip --decompress --stdout "${WORK_DIR}/moved/share/man/man1/lumenta${verb}.1.gz")
        if(NOT output MATCHES "\n\\.SH SYNOPSIS\n.*lumenta")
            message(FATAL_ERROR "There is no page of lumenta${verb}: ${output}")
        endif()
    endforeach()
endif()

# A plug-in of somebody else: found where it was built, then where it was installed.
if(REFERENCE)
    build_client("${EXAMPLE_DIR}" plugin "${WORK_DIR}/moved" "" all)
    run("${CMAKE_CTEST_COMMAND}" --test-dir "${WORK_DIR}/plugin" --no-tests=error)
    run("${CMAKE_COMMAND}" --install "${WORK_DIR}/plugin" --prefix "${WORK_DIR}/moved")
    run("${WORK_DIR}/moved/bin/lumenta" info --json "${EXAMPLE_DIR}/tetrahedron.tri")
    if(NOT output MATCHES "\"triangles\": 4")
        message(FATAL_ERROR "The installed plug-in was not used: ${output}")
    endif()
endif()
