# What a static library must be linked with; headers need none of it.
include(CMakeFindDependencyMacro)
find_dependency(LibXml2)
find_dependency(EXPAT)
find_dependency(OpenSSL)
find_dependency(PkgConfig)
pkg_check_modules(GLIB REQUIRED IMPORTED_TARGET gio-2.0)
include(${CMAKE_CURRENT_LIST_DIR}/quorix-targets.cmake)
