# What makes a fault harder to exploit: checked copies, a guarded stack, tables that are read-only once the program
# runs, and programs at addresses that nobody knows. The sanitizers have checks of their own instead.
include(CheckPIESupported)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
check_pie_supported()
if(NOT QUORIX_SANITIZE AND NOT QUORIX_FUZZ)
    add_compile_options(-fstack-protector-strong)
    add_link_options(-fstack-protector-strong)
    # The copies are checked by what the optimizer knows.
    string(TOUPPER "${CMAKE_BUILD_TYPE}" kind)
    set(flags "${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${kind}}")
    if(flags MATCHES "-O[123s]" AND NOT flags MATCHES "_FORTIFY_SOURCE")
        add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endif()
    if(NOT WIN32)
        # There the linker asks for random addresses and for data that cannot be run by itself.
        add_link_options(-Wl,-z,relro,-z,now)
    endif()
endif()
