# Installs `build`, then builds and runs against the installed tree: a CMake project in C and C++, and the C example of
# the README through pkg-config.

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${work})
set(prefix ${work}/prefix)
run(${CMAKE_COMMAND} --install ${build} --prefix ${prefix})

run(${CMAKE_COMMAND} -S ${consumer} -B ${work}/build -G Ninja -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_C_COMPILER=${cc}
    -D CMAKE_CXX_COMPILER=${cxx})
run(${CMAKE_COMMAND} --build ${work}/build)
run(${work}/build/consumer_c)
run(${work}/build/consumer_cxx)

file(READ ${readme} text)
if(NOT text MATCHES "```c\n([^`]*)```")
    message(FATAL_ERROR "README.md has no C example")
endif()
file(WRITE ${work}/example.c "${CMAKE_MATCH_1}")
set(ENV{PKG_CONFIG_PATH} ${prefix}/${libdir}/pkgconfig)
execute_process(COMMAND pkg-config --define-variable=prefix=${prefix} --cflags --libs zerklsc OUTPUT_VARIABLE flags
                COMMAND_ERROR_IS_FATAL ANY OUTPUT_STRIP_TRAILING_WHITESPACE)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${cc} -std=c99 -Wall -Wextra -Werror ${work}/example.c -o ${work}/example ${flags})
set(ENV{LD_LIBRARY_PATH} ${prefix}/${libdir})
run(${work}/example)
