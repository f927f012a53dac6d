# Builds for macOS on Linux: tools/macos.sh says where things are.
#
#   ORVANE_ARCHITECTURE    arm64 or x86_64
#   ORVANE_MACOS_TOOLS     the folder of the cross compiler
#   ORVANE_MACOS_QT        the folder of Qt for macOS

set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ORVANE_ARCHITECTURE ORVANE_MACOS_TOOLS ORVANE_MACOS_QT)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR "${ORVANE_ARCHITECTURE}")
set(CMAKE_CXX_COMPILER "${ORVANE_MACOS_TOOLS}/ziglang/zig" c++)
string(REPLACE arm64 aarch64 architecture "${ORVANE_ARCHITECTURE}")
set(CMAKE_CXX_COMPILER_TARGET "${architecture}-macos.11.5")
set(CMAKE_PROJECT_INCLUDE "${CMAKE_CURRENT_LIST_DIR}/cmake/project.cmake")
find_program(CMAKE_AR NAMES llvm-ar-14 llvm-ar REQUIRED)
find_program(CMAKE_RANLIB NAMES llvm-ranlib-14 llvm-ranlib REQUIRED)
find_program(CMAKE_INSTALL_NAME_TOOL NAMES llvm-install-name-tool-14 llvm-install-name-tool REQUIRED)

get_filename_component(sdk "${CMAKE_CURRENT_LIST_DIR}/../macos-sdk" ABSOLUTE)
# The compiler's own headers belong to a newer library than that of macOS 11. The
# marks keep the code to what that one has. They also stand for a library that is
# linked in, and so would export its inline functions from each program. Without
# optimisation the compiler would add checks that need a library of its own.
string(JOIN " " CMAKE_CXX_FLAGS_INIT
  -U_LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS -D_LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS=1
  -U_LIBCPP_DISABLE_VISIBILITY_ANNOTATIONS -U_LIBCXXABI_DISABLE_VISIBILITY_ANNOTATIONS
  -fno-sanitize=undefined
  "-iframework \"${sdk}/Frameworks\"" "-isystem \"${CMAKE_BINARY_DIR}/include\"")
# One C++ library in the process, the system's: Qt uses it too. No debug map (-S): it would name the
# folder of the build, and the linker makes the program's identifier over it. With -x, too, this
# linker writes chance bytes.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-nostdlib++ -F \"${sdk}/Frameworks\" -Wl,-dead_strip -Wl,-S")
set(CMAKE_CXX_LINKER_LAUNCHER "${CMAKE_CURRENT_LIST_DIR}/link.sh")
set(CMAKE_CXX_STANDARD_LIBRARIES "\"${sdk}/lib/libc++.tbd\" \"${sdk}/lib/libobjc.tbd\"")

# Nothing built here runs here.
set(CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE PRE_TEST)

# Where the application has its frameworks.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "@executable_path/../Frameworks")

# Packages of this system that are headers alone serve as they are, but without the
# folder around them, which holds the system's own. The modules stand for the others.
foreach(library IN ITEMS CLI gtest nlohmann)
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/include")
  file(CREATE_LINK "/usr/include/${library}" "${CMAKE_BINARY_DIR}/include/${library}" SYMBOLIC)
endforeach()
list(PREPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}/cmake")
set(CMAKE_LIBRARY_ARCHITECTURE x86_64-linux-gnu)
