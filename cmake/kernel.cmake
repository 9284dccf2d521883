# Kernels that are compiled once per instruction set.

# The instruction sets above the base of each processor family. Their names are the namespaces of the kernels and the
# words that ZERKLSC_CPU takes (src/frame/cpu_level.h).
set(ZERKLSC_LEVELS base)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
    list(APPEND ZERKLSC_LEVELS avx2 avx512)
    set(ZERKLSC_FLAGS_avx2 -mavx2)
    set(ZERKLSC_FLAGS_avx512 -mavx512f -mavx512bw -mavx512vl -mavx512dq)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
    list(APPEND ZERKLSC_LEVELS neon)
    set(ZERKLSC_FLAGS_neon -mfpu=neon)
endif()

# Compiles `source` once for every level, with ZERKLSC_LEVEL naming the level.
function(zerklsc_add_kernel source)
    get_filename_component(name ${source} NAME_WE)
    foreach(level IN LISTS ZERKLSC_LEVELS)
        set(object zerklsc_${name}_${level})
        add_library(${object} OBJECT ${source})
        target_compile_definitions(${object} PRIVATE ZERKLSC_LEVEL=${level})
        target_link_libraries(${object} PRIVATE zerklsc_library_flags)
        target_compile_options(${object} PRIVATE ${ZERKLSC_FLAGS_${level}} -O3)
        set_property(TARGET zerklsc_objects APPEND PROPERTY ZERKLSC_KERNELS $<TARGET_OBJECTS:${object}>)
    endforeach()
endfunction()
