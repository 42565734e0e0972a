# Runs the port as vcpkg would for a static triplet of Release builds that compile quickly, with
# stand-ins for vcpkg's functions, which Debian does not have:
#   cmake -DPORT=FOLDER -DCOMPILER=C++ -DWORK=FOLDER -P vcpkg_stand_in.cmake
# The stand-ins take what the port passes and no more. The package comes to WORK/packages.
cmake_minimum_required(VERSION 3.22)
set(CURRENT_PACKAGES_DIR ${WORK}/packages)
set(FEATURES core)

function(run)
    execute_process(COMMAND ${ARGV} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(vcpkg_check_features)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" OUT_FEATURE_OPTIONS FEATURES)
    set(options)
    while(arg_FEATURES)
        list(POP_FRONT arg_FEATURES feature option)
        if(NOT feature IN_LIST features)
            message(FATAL_ERROR "vcpkg.json has no feature ${feature}")
        endif()
        list(APPEND options -D${option}=OFF)
    endwhile()
    set(${arg_OUT_FEATURE_OPTIONS} ${options} PARENT_SCOPE)
endfunction()

function(vcpkg_cmake_configure)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" SOURCE_PATH OPTIONS)
    run(${CMAKE_COMMAND} -S ${arg_SOURCE_PATH} -B ${WORK}/build -G Ninja ${arg_OPTIONS}
        -DBUILD_SHARED_LIBS=OFF -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O0
        -DCMAKE_CXX_COMPILER=${COMPILER}
        -DCMAKE_INSTALL_LIBDIR:STRING=lib -DCMAKE_INSTALL_PREFIX=${CURRENT_PACKAGES_DIR})
endfunction()

function(vcpkg_cmake_install)
    run(${CMAKE_COMMAND} --build ${WORK}/build --target install)
endfunction()

# Moves the package's files to share/PORT, one folder nearer to the prefix, and removes what is then
# empty.
function(vcpkg_cmake_config_fixup)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" CONFIG_PATH "")
    file(MAKE_DIRECTORY ${CURRENT_PACKAGES_DIR}/share)
    file(RENAME ${CURRENT_PACKAGES_DIR}/${arg_CONFIG_PATH} ${CURRENT_PACKAGES_DIR}/share/${name})
    file(GLOB others ${CURRENT_PACKAGES_DIR}/lib/cmake/*)
    if(NOT others)
        file(REMOVE_RECURSE ${CURRENT_PACKAGES_DIR}/lib/cmake)
    endif()
    set(up "get_filename_component(_IMPORT_PREFIX \"\${_IMPORT_PREFIX}\" PATH)\n")
    file(GLOB targets ${CURRENT_PACKAGES_DIR}/share/${name}/*Targets.cmake)
    foreach(target IN LISTS targets)
        file(READ ${target} text)
        string(REPLACE "${up}${up}${up}" "${up}${up}" text "${text}")
        file(WRITE ${target} "${text}")
    endforeach()
endfunction()

function(vcpkg_fixup_pkgconfig)
    if(NOT EXISTS ${CURRENT_PACKAGES_DIR}/lib/pkgconfig/${name}.pc)
        message(FATAL_ERROR "no ${name}.pc to look at")
    endif()
endfunction()

function(vcpkg_install_copyright)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "" FILE_LIST)
    foreach(file IN LISTS arg_FILE_LIST)
        file(READ ${file} text)
        file(APPEND ${CURRENT_PACKAGES_DIR}/share/${name}/copyright "${text}")
    endforeach()
endfunction()

file(READ ${PORT}/vcpkg.json manifest)
string(JSON name GET "${manifest}" name)
string(JSON version GET "${manifest}" version)
string(JSON features MEMBER "${manifest}" features 0)
include(${PORT}/portfile.cmake)

file(READ ${CURRENT_PACKAGES_DIR}/share/${name}/pelkraftConfigVersion.cmake text)
if(NOT text MATCHES "PACKAGE_VERSION \"${version}\"")
    message(FATAL_ERROR "vcpkg.json has another version than the package: ${version}")
endif()
if(EXISTS ${CURRENT_PACKAGES_DIR}/share/doc OR EXISTS ${CURRENT_PACKAGES_DIR}/lib/cmake)
    message(FATAL_ERROR "vcpkg allows neither share/doc nor lib/cmake")
endif()
