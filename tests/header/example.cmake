# Cuts the example out of the comment at the top of `header` into `example`.
file(READ ${header} text)
if(NOT text MATCHES "@code\n(.*)[ ]\\* @endcode")
    message(FATAL_ERROR "${header} has no example")
endif()
string(REGEX REPLACE "(^|\n) \\* ?" "\\1" text "${CMAKE_MATCH_1}")
file(WRITE ${example} "${text}")
