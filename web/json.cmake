# The folder that nlohmann/ lies in has the host's own headers too.
find_path(PELKRAFT_JSON_HEADERS nlohmann/json.hpp PATHS /usr/include
    CMAKE_FIND_ROOT_PATH_BOTH REQUIRED)
set(headers ${CMAKE_CURRENT_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${headers})
file(CREATE_LINK ${PELKRAFT_JSON_HEADERS}/nlohmann ${headers}/nlohmann SYMBOLIC)
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
target_include_directories(nlohmann_json::nlohmann_json INTERFACE ${headers})
