# What is compiled for one processor must not stand in for anybody else's copy: a
# function that another object may define, too, is one that the linker may choose.
foreach(object IN LISTS OBJECTS)
    execute_process(COMMAND "${NM}" --defined-only "${object}" OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[^\n]* W [^\n]*" shared "${symbols}")
    if(shared)
        message(FATAL_ERROR "${object} shares with other objects: ${shared}")
    endif()
endforeach()
