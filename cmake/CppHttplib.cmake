# Debian's libcpp-httplib-dev brings a compiled library and a pkg-config file, but no CMake package.
# The definitions are those the library was built with; they change the layout of its classes.
include_guard(GLOBAL)

find_path(CPP_HTTPLIB_INCLUDE_DIR httplib.h REQUIRED)
find_library(CPP_HTTPLIB_LIBRARY cpp-httplib REQUIRED)

add_library(CppHttplib::CppHttplib UNKNOWN IMPORTED GLOBAL)
set_target_properties(CppHttplib::CppHttplib PROPERTIES
    IMPORTED_LOCATION ${CPP_HTTPLIB_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${CPP_HTTPLIB_INCLUDE_DIR}
    INTERFACE_COMPILE_DEFINITIONS
        "CPPHTTPLIB_OPENSSL_SUPPORT;CPPHTTPLIB_ZLIB_SUPPORT;CPPHTTPLIB_BROTLI_SUPPORT"
    INTERFACE_LINK_LIBRARIES "OpenSSL::SSL;OpenSSL::Crypto;Threads::Threads")
