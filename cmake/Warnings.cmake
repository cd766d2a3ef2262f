add_library(quorix_warnings INTERFACE)
target_compile_options(quorix_warnings INTERFACE -Wall -Wextra -Wshadow -Werror)
if(WIN32)
    # Windows declares its interfaces without virtual destructors, and at -O3 this compiler (GCC 12) takes the
    # insides of std::string for overlapping copies.
    target_compile_options(quorix_warnings INTERFACE -Wno-restrict)
else()
    target_compile_options(quorix_warnings INTERFACE -Wnon-virtual-dtor)
endif()
