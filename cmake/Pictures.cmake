# The libraries of the program and its tests that read and write pictures. For Windows they are
# static, as far as CMake knows how.
if(WIN32)
    set(ZLIB_USE_STATIC_LIBS ON)
endif()
find_package(PNG REQUIRED)
find_package(TIFF REQUIRED)
if(WIN32)
    # A static libtiff doesn't say what it calls.
    find_package(JPEG REQUIRED)
    find_package(ZLIB REQUIRED)
    find_library(PELKRAFT_DEFLATE deflate REQUIRED)
    set_property(TARGET TIFF::TIFF APPEND PROPERTY
        INTERFACE_LINK_LIBRARIES JPEG::JPEG ZLIB::ZLIB ${PELKRAFT_DEFLATE})
endif()
