# Only this library's headers: the folder around them is this system's own.
find_path(NLOHMANN_JSON_HEADERS nlohmann/json.hpp REQUIRED)
file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/include")
file(CREATE_LINK "${NLOHMANN_JSON_HEADERS}/nlohmann" "${CMAKE_BINARY_DIR}/include/nlohmann" SYMBOLIC)
if(NOT TARGET nlohmann_json::nlohmann_json)
  add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
  target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/include")
endif()
set(nlohmann_json_FOUND TRUE)
