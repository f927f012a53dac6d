include("${CMAKE_CURRENT_LIST_DIR}/header_library.cmake")
header_library(nlohmann_json::nlohmann_json nlohmann json.hpp)
set(nlohmann_json_FOUND TRUE)
