# What a compiler that stops at C++14 is told.
cmake_minimum_required(VERSION 3.21)
set(CMAKE_CXX_COMPILE_FEATURES cxx_std_98 cxx_std_11 cxx_std_14)
set(CMAKE_CXX_COMPILER_ID GNU)
set(CMAKE_CXX_COMPILER_VERSION 4.9.2)
include("${CMAKE_CURRENT_LIST_DIR}/../../cmake/SamltokenRequirements.cmake")
samltoken_require_compiler()
