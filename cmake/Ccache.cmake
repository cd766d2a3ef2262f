# What was compiled before is not compiled again, where the machine has a compiler cache.
find_program(QUORIX_CCACHE ccache)
mark_as_advanced(QUORIX_CCACHE)
if(QUORIX_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${QUORIX_CCACHE})
endif()
