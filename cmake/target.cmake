# What the compiler compiles for, asked of the compiler. CMake's name of the processor says less: in a 32-bit container
# it is that of the 64-bit kernel, and a toolchain file may leave it out.
include(CheckCXXSourceCompiles)

function(zerklsc_check_target variable condition)
    check_cxx_source_compiles("#if !(${condition})\n#error other target\n#endif\nint main() { return 0; }" ${variable})
endfunction()
zerklsc_check_target(ZERKLSC_TARGET_I386 "defined(__i386__)")
zerklsc_check_target(ZERKLSC_TARGET_X86 "defined(__i386__) || defined(__x86_64__)")
zerklsc_check_target(ZERKLSC_TARGET_ARM "defined(__arm__)")

foreach(minimum GNU=11 Clang=13)
    string(REPLACE "=" ";" minimum ${minimum})
    list(GET minimum 0 compiler)
    list(GET minimum 1 version)
    if(CMAKE_CXX_COMPILER_ID STREQUAL compiler AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS version)
        message(FATAL_ERROR "zerklsc needs GCC 11, Clang 13 or newer; ${CMAKE_CXX_COMPILER} is "
                            "${compiler} ${CMAKE_CXX_COMPILER_VERSION}. Choose another one with -DCMAKE_CXX_COMPILER=...")
    endif()
endforeach()
