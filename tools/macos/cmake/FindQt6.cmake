# Qt for macOS: the headers, tools and CMake functions of this system's Qt, and the
# real frameworks to link with. Both are Qt 6, which keeps binary compatibility.

# Dependencies of Qt's own that its users do not link with here.
foreach(dependency IN ITEMS WrapAtomic WrapOpenGL WrapVulkanHeaders)
  if(NOT TARGET ${dependency}::${dependency})
    add_library(${dependency}::${dependency} INTERFACE IMPORTED GLOBAL)
  endif()
endforeach()

find_package(Qt6 ${Qt6_FIND_VERSION} CONFIG REQUIRED COMPONENTS ${Qt6_FIND_COMPONENTS})

# Qt's own build for macOS cannot unpack resources that are packed like this.
set(QT_FEATURE_zstd OFF)

get_property(targets DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" PROPERTY IMPORTED_TARGETS)
foreach(target IN LISTS targets)
  string(REGEX REPLACE "^Qt6::" "Qt" name "${target}")
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "SHARED_LIBRARY" AND target MATCHES "^Qt6::")
    set_target_properties(${target} PROPERTIES
      IMPORTED_CONFIGURATIONS RELEASE
      IMPORTED_LOCATION_RELEASE "${ORVANE_MACOS_QT}/lib/lib${name}.dylib"
      IMPORTED_SONAME_RELEASE "@rpath/${name}.framework/Versions/A/${name}")
  endif()
endforeach()
