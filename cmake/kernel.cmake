# Kernels that are compiled once per instruction set.

# The instruction sets above the base of each processor family. Their names are the namespaces of the kernels
# (src/cpu/dispatch.h) and the words of src/cpu/instruction_set.h.
set(ZERKLSC_INSTRUCTION_SETS base)
set(ZERKLSC_NARROW_INSTRUCTION_SET base)
if(ZERKLSC_TARGET_X86)
    list(APPEND ZERKLSC_INSTRUCTION_SETS avx2 avx512)
    set(ZERKLSC_FLAGS_avx2 -mavx2)
    set(ZERKLSC_FLAGS_avx512 -mavx512f -mavx512bw -mavx512vl -mavx512dq)
elseif(ZERKLSC_TARGET_ARM)
    list(APPEND ZERKLSC_INSTRUCTION_SETS neon)
    set(ZERKLSC_NARROW_INSTRUCTION_SET neon)
    set(ZERKLSC_FLAGS_neon -mfpu=neon)
endif()

# Compiles `source` once for every instruction set, which ZERKLSC_INSTRUCTION_SET names. With NARROW only for the
# lowest one whose vectors have 16 bytes.
function(zerklsc_add_kernel source)
    cmake_parse_arguments(PARSE_ARGV 1 kernel NARROW "" "")
    get_filename_component(name ${source} NAME_WE)
    set(instruction_sets ${ZERKLSC_INSTRUCTION_SETS})
    if(kernel_NARROW)
        set(instruction_sets ${ZERKLSC_NARROW_INSTRUCTION_SET})
    endif()
    foreach(instruction_set IN LISTS instruction_sets)
        set(object zerklsc_${name}_${instruction_set})
        add_library(${object} OBJECT ${source})
        target_compile_definitions(${object} PRIVATE ZERKLSC_INSTRUCTION_SET=${instruction_set})
        target_link_libraries(${object} PRIVATE zerklsc_library_flags)
        target_compile_options(${object} PRIVATE ${ZERKLSC_FLAGS_${instruction_set}} -O3)
        if(NOT kernel_NARROW AND ZERKLSC_TARGET_X86)
            # Three copies: loops are written out up to a size above which it no longer made them faster.
            target_compile_options(${object} PRIVATE
                                   $<$<CXX_COMPILER_ID:GNU>:--param=max-completely-peeled-insns=60>)
        endif()
        # Nine tenths of the compile time would go into the intrinsics.
        if(ZERKLSC_TARGET_X86 AND NOT instruction_set STREQUAL base)
            get_property(first GLOBAL PROPERTY zerklsc_first_kernel_${instruction_set})
            if(first)
                target_precompile_headers(${object} REUSE_FROM ${first})
            else()
                target_precompile_headers(${object} PRIVATE <immintrin.h>)
                set_property(GLOBAL PROPERTY zerklsc_first_kernel_${instruction_set} ${object})
            endif()
        endif()
        # Not the precompiled header, which counts as one too.
        set_property(TARGET zerklsc_objects APPEND PROPERTY ZERKLSC_KERNELS
                                                            $<FILTER:$<TARGET_OBJECTS:${object}>,INCLUDE,[.]o$>)
        set_property(TARGET zerklsc_objects APPEND PROPERTY ZERKLSC_KERNEL_TARGETS ${object})
    endforeach()
endfunction()
