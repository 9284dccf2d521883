# What the compiler and the linker can check while the program runs, where they have it and it costs the kernels nothing.
include(CheckCXXCompilerFlag)

if(ZERKLSC_HARDENING AND NOT ZERKLSC_SANITIZE)
    # Each is probed with -Werror: a compiler that only warns about a flag does not have it.
    set(CMAKE_REQUIRED_FLAGS -Werror)
    foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection=full -mbranch-protection=standard)
        string(MAKE_C_IDENTIFIER "ZERKLSC_HAS${flag}" has_flag)
        check_cxx_compiler_flag(${flag} ${has_flag})
        if(${has_flag})
            target_compile_options(zerklsc_flags INTERFACE ${flag})
        endif()
    endforeach()
    unset(CMAKE_REQUIRED_FLAGS)

    # The library calls of the C library are only checked in optimised code. A level that the builder names stays.
    if(NOT "${CMAKE_C_FLAGS} ${CMAKE_CXX_FLAGS}" MATCHES "_FORTIFY_SOURCE")
        target_compile_options(zerklsc_flags INTERFACE
                               $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
    endif()
    target_link_options(zerklsc_flags INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack)
endif()
