# CHECK=symbols  the exported symbols are those of symbols.txt
# CHECK=types    layouts, virtual operations and signatures are those of lumenta-core.abi.xml
# CHECK=renew    writes both anew
cmake_minimum_required(VERSION 3.25)
set(ENV{LC_ALL} C)

set(list "${CMAKE_CURRENT_LIST_DIR}/symbols.txt")
set(baseline "${CMAKE_CURRENT_LIST_DIR}/lumenta-core.abi.xml")
set(fresh "${WORK_DIR}/lumenta-core.abi.xml")
string(REGEX MATCH "^[0-9]+\\.[0-9]+" contract "${VERSION}")

string(CONCAT advice
    "What compiled plug-ins and hosts rely on is not what it was (docs/abi-policy.md). Either\n"
    "- undo the change, if it was not meant; or\n"
    "- raise the version, as docs/abi-policy.md says under 'How to raise the version', and then\n"
    "  run './run abi-baseline' and commit what it writes, in the same commit.\n"
    "While nobody has version ${contract} yet, './run abi-baseline --unreleased' alone will do.")

# get_symbols(LIBRARY RESULT): the names, sorted, as the linker reads them.
function(get_symbols library result)
    execute_process(COMMAND "${NM}" --dynamic --defined-only --format=just-symbols "${library}"
        OUTPUT_VARIABLE names COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX REPLACE "\n$" "" names "${names}")
    string(REPLACE "\n" ";" names "${names}")
    list(SORT names)
    set(${result} "${names}" PARENT_SCOPE)
endfunction()

# show(NAMES RESULT): as people read them, one a line.
function(show names result)
    list(JOIN names "\n  " names)
    file(WRITE "${WORK_DIR}/names.txt" "  ${names}\n")
    execute_process(COMMAND c++filt INPUT_FILE "${WORK_DIR}/names.txt" OUTPUT_VARIABLE text
        COMMAND_ERROR_IS_FATAL ANY)
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

function(check_symbols)
    get_symbols("${LIBRARY}" exported)
    file(STRINGS "${list}" expected REGEX "^[^#]")
    set(missing ${expected})
    list(REMOVE_ITEM missing ${exported})
    set(added ${exported})
    list(REMOVE_ITEM added ${expected})
    set(report "")
    if(missing)
        show("${missing}" text)
        string(APPEND report "No longer exported:\n${text}")
    endif()
    if(added)
        show("${added}" text)
        string(APPEND report "Exported, but not in tests/abi/symbols.txt:\n${text}")
        string(APPEND report "What is not ours, or private, is hidden in lumenta/exports.map or by its class.\n")
    endif()
    if(report)
        message("${report}\n${advice}")
        message(FATAL_ERROR "The exported symbols changed.")
    endif()
endfunction()

function(describe)
    execute_process(COMMAND "${ABIDW}" --exported-interfaces-only
        --suppressions "${CMAKE_CURRENT_LIST_DIR}/public.abignore"
        --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed --no-parameter-names --no-write-default-sizes
        --out-file "${fresh}" "${LIBRARY}" COMMAND_ERROR_IS_FATAL ANY)
    file(READ "${fresh}" text)

    # Nothing public may be left out, for nobody would notice its change. (It lacks
    # a type, too, if g++ described it by its name only.)
    file(STRINGS "${SOURCE_DIR}/lumenta/CMakeLists.txt" headers REGEX "^ +[a-z]+/[A-Za-z0-9]+\\.h\\)?$")
    list(LENGTH headers count)
    if(count LESS 60)
        message(FATAL_ERROR "Of the public headers only ${count} were found.")
    endif()
    file(READ "${CMAKE_CURRENT_LIST_DIR}/reached.cpp" reached)
    set(missing "")
    foreach(header IN LISTS headers)
        string(REGEX MATCH "[a-z]+/[A-Za-z0-9]+\\.h" header "${header}")
        file(STRINGS "${SOURCE_DIR}/lumenta/${header}" declared
            REGEX "^ *(struct|class|enum) (LUMENTA_EXPORT )?[A-Za-z0-9]+( final)?( :[^;]*)?( {.*)?$")
        foreach(line IN LISTS declared)
            string(REGEX MATCH "^ *(struct|class|enum) (LUMENTA_EXPORT )?([A-Za-z0-9]+)" name "${line}")
            set(name "${CMAKE_MATCH_3}")
            if(NOT reached MATCHES "void Reach\\(${name}(<[a-z]+>)?\\*\\)"
                OR NOT text MATCHES "<(class|enum)-decl name='${name}(&lt;[^']*)?'( [a-z-]+='[a-z0-9]+')* id='[^']*'>")
                string(APPEND missing "  ${name} of lumenta/${header}\n")
            endif()
        endforeach()
    endforeach()
    if(missing)
        message(FATAL_ERROR "These types are not compared. Name them in tests/abi/reached.cpp:\n${missing}")
    endif()
    if(text MATCHES "[^'\n]*(${SOURCE_DIR}|/home/|/usr/|/tmp/)[^'\n]*")
        message(FATAL_ERROR "The description holds a path of this machine: ${CMAKE_MATCH_0}")
    endif()
endfunction()

# compare(CODE TEXT): bit 4 of CODE stands for any change, bit 8 for an incompatible one.
function(compare code text)
    execute_process(COMMAND "${ABIDIFF}" --harmless --no-default-suppression "${baseline}" "${fresh}"
        RESULT_VARIABLE result OUTPUT_VARIABLE said ERROR_VARIABLE complained)
    if(NOT result MATCHES "^[0-9]+$" OR result MATCHES "^(1|2|3)$")
        message(FATAL_ERROR "abidiff ended with ${result}: ${said}${complained}")
    endif()
    set(${code} ${result} PARENT_SCOPE)
    set(${text} "${said}" PARENT_SCOPE)
endfunction()

if(CHECK STREQUAL "symbols")
    check_symbols()
elseif(CHECK STREQUAL "types")
    describe()
    compare(code text)
    if(NOT code EQUAL 0)
        message("${text}\n${advice}")
        message(FATAL_ERROR "The binary contract changed.")
    endif()
elseif(CHECK STREQUAL "renew")
    describe()
    if(EXISTS "${baseline}")
        compare(code text)
        file(STRINGS "${baseline}" stored REGEX "soname=" LIMIT_COUNT 1)
        string(FIND "${stored}" "soname='liblumenta-core.so.${contract}'" same)
        message("${text}")
        if(NOT code EQUAL 0 AND NOT same EQUAL -1 AND NOT "$ENV{LUMENTA_ABI_UNRELEASED}")
            message(FATAL_ERROR "Version ${contract} promised what stood here. Raise it first "
                "(docs/abi-policy.md), or say --unreleased if nobody has it yet.")
        endif()
    endif()
    configure_file("${fresh}" "${baseline}" COPYONLY)
    get_symbols("${RELEASE_LIBRARY}" exported)
    list(JOIN exported "\n" exported)
    file(WRITE "${list}" "# What liblumenta-core exports. './run abi-baseline' writes it; c++filt makes it readable.\n${exported}\n")
    message("Written: ${list}\nWritten: ${baseline}")
else()
    message(FATAL_ERROR "CHECK is symbols, types or renew, not '${CHECK}'")
endif()
