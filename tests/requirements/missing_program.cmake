# What is said of a program that is not there.
cmake_minimum_required(VERSION 3.21)
include("${CMAKE_CURRENT_LIST_DIR}/../../cmake/SamltokenRequirements.cmake")
samltoken_require_program(no_such_program its-package FOR "the tests" WITHOUT -DSAMLTOKEN_BUILD_TESTS=OFF)
