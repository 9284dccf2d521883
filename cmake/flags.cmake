# Flags of everything that is compiled here: floating point pinned to what the sources say, warnings, sanitizers.
add_library(zerklsc_flags INTERFACE)
target_compile_options(zerklsc_flags INTERFACE -ffp-contract=off -Wall -Wextra -Wconversion -Wshadow
                                               -Wdouble-promotion $<$<BOOL:${ZERKLSC_WERROR}>:-Werror>)

# The x87 unit keeps excess precision; the results are those of SSE arithmetic.
if(ZERKLSC_TARGET_I386)
    target_compile_options(zerklsc_flags INTERFACE -msse2 -mfpmath=sse)
endif()

if(ZERKLSC_SANITIZE)
    target_compile_options(zerklsc_flags INTERFACE -fsanitize=${ZERKLSC_SANITIZE} -fno-sanitize=vptr
                                                   -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zerklsc_flags INTERFACE -fsanitize=${ZERKLSC_SANITIZE})
endif()
