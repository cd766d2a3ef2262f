add_library(quorix_warnings INTERFACE)
target_compile_options(quorix_warnings INTERFACE -Wall -Wextra -Wshadow -Werror)
if(NOT WIN32)
    # Windows declares its interfaces without virtual destructors.
    target_compile_options(quorix_warnings INTERFACE -Wnon-virtual-dtor)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 reports string concatenation as overlapping copies, wrongly (its bug 105651).
    target_compile_options(quorix_warnings INTERFACE -Wno-restrict)
endif()
