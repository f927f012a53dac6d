# GoogleTest from the sources that Debian packs with it. A program that has a main()
# takes none from the library.
set(sources /usr/src/googletest/googletest)
add_library(gtest STATIC "${sources}/src/gtest-all.cc" "${sources}/src/gtest_main.cc")
target_compile_options(gtest PRIVATE -w)
target_include_directories(gtest SYSTEM PRIVATE "${sources}")
add_library(GTest::gtest ALIAS gtest)
add_library(GTest::gtest_main ALIAS gtest)
set(GTest_FOUND TRUE)
