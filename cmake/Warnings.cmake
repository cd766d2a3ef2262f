add_library(quorix_warnings INTERFACE)
target_compile_options(quorix_warnings INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Werror)
