# Installs `build`, then builds and runs a CMake project in C and C++ against the installed tree, and again after the tree
# was moved. With `tool`, the installed tool finds its library in both places.

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(use prefix)
    file(REMOVE_RECURSE ${work}/build)
    run(${CMAKE_COMMAND} -S ${consumer} -B ${work}/build -G Ninja "-DCMAKE_PREFIX_PATH=${prefix}"
        -D CMAKE_C_COMPILER=${cc} -D CMAKE_CXX_COMPILER=${cxx})
    run(${CMAKE_COMMAND} --build ${work}/build)
    run(${work}/build/consumer_c)
    run(${work}/build/consumer_cxx)
    if(tool)
        run("${prefix}/bin/zerklsc" --version)
    endif()
endfunction()

unset(ENV{LD_LIBRARY_PATH})
file(REMOVE_RECURSE ${work})
run(${CMAKE_COMMAND} --install ${build} --prefix ${work}/prefix)
use(${work}/prefix)
file(RENAME ${work}/prefix "${work}/moved to another place")
use("${work}/moved to another place")
