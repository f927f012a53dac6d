# CMake would ask the system on which it runs how old it is, and take no answer for very old.
foreach(kind IN ITEMS SHARED_LIBRARY_RUNTIME_C SHARED_LIBRARY_RUNTIME_CXX EXECUTABLE_RUNTIME_CXX)
  set(CMAKE_${kind}_FLAG -Wl,-rpath,)
endforeach()
set(CMAKE_LINK_DEPENDENT_LIBRARY_FILES 0)
# That system's own headers lie there.
list(APPEND CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES /usr/include)
