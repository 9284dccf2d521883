include("${CMAKE_CURRENT_LIST_DIR}/zerklsc-targets.cmake")
