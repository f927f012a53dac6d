# Only this library's headers: the folder around them is this system's own.
find_path(CLI11_HEADERS CLI/CLI.hpp REQUIRED)
file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/include")
file(CREATE_LINK "${CLI11_HEADERS}/CLI" "${CMAKE_BINARY_DIR}/include/CLI" SYMBOLIC)
if(NOT TARGET CLI11::CLI11)
  add_library(CLI11::CLI11 INTERFACE IMPORTED)
  target_include_directories(CLI11::CLI11 SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/include")
endif()
set(CLI11_FOUND TRUE)
