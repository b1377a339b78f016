# Runs PROGRAM, and runs it under gdb: each `name = value` has to be the same.
# PRINTERS lie in WORK_DIR the way that they are installed: by the library's path.
cmake_minimum_required(VERSION 3.25)

get_filename_component(library "${LIBRARY}" REALPATH)
configure_file("${PRINTERS}" "${WORK_DIR}${library}-gdb.py" COPYONLY)
set(options -iex "add-auto-load-scripts-directory ${WORK_DIR}" -iex "add-auto-load-safe-path ${WORK_DIR}")

execute_process(COMMAND "${PROGRAM}" OUTPUT_VARIABLE printed COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "," printed "${printed}") # which would end an item of a list
string(REGEX MATCHALL "[a-z]+ = [^\n]+" expected "${printed}")
list(LENGTH expected count)
if(count LESS 9)
    message(FATAL_ERROR "${PROGRAM} printed ${count} values only:\n${printed}")
endif()

set(commands "set width 0\nbreak Stop\nrun\nup\n")
foreach(value IN LISTS expected)
    string(REGEX MATCH "^[a-z]+" name "${value}")
    # Marked, since the program itself prints into the same stream.
    string(APPEND commands "printf \"gdb: ${name} = \"\noutput ${name}\nprintf \"\\n\"\n")
endforeach()
file(WRITE "${WORK_DIR}/commands" "${commands}")
execute_process(COMMAND "${GDB}" --batch --nx ${options} --command "${WORK_DIR}/commands" "${PROGRAM}"
    OUTPUT_VARIABLE shown ERROR_VARIABLE complained)
if("${shown}${complained}" MATCHES "ptrace: Operation not permitted|Cannot trace")
    message("skipped: this system lets no debugger run")
    return()
endif()
string(REPLACE ";" "," shown "${shown}")
string(REGEX REPLACE "\\(const [A-Za-z0-9<>]+ &\\) @0x[0-9a-f]+: " "" shown "${shown}") # of references
foreach(value IN LISTS expected)
    string(FIND "${shown}" "gdb: ${value}\n" place)
    if(place EQUAL -1)
        message(FATAL_ERROR "Debug output: ${value}\ngdb:\n${shown}${complained}")
    endif()
endforeach()
